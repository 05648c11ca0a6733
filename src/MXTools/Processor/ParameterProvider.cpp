// How a provider's values and defaults get into a container.
#include "MXTools/ParameterProvider.h"

#include "MXTools/ParameterRows.h"

void ClParameterProvider::DeclareParameters(ClParameterRows&) {}
void ClParameterProvider::SetParametersToDefault() {}

void ClParameterProvider::QueryParameters(ClParameterInterface& oInterface) {
  ClParameterRows oRows(oInterface);
  DeclareParameters(oRows);
}

void ClParameterProvider::PublishParameters(ClParameterContainer& oContainer) {
  ClParameterRows oRows(oContainer);
  DeclareParameters(oRows);
}

void ClParameterProvider::QueryParameters(ClParameterContainer& oContainer) {
  PublishParameters(oContainer);
  // The container's parameters are bound to the members: with the current values parked in the defaults, the
  // provider can set its members to their defaults, and the second exchange puts each where it belongs.
  oContainer.SwapDefaultAndValue();
  SetParametersToDefault();
  oContainer.SwapDefaultAndValue();
}

void ClParameterProvider::CopyParametersTo(ClParameterProvider& oOther) {
  ClParameterContainer oSource;
  ClParameterContainer oDestination;
  QueryParameters(oSource);
  oOther.QueryParameters(oDestination);
  oDestination.CopyValuesFrom(&oSource, false);
}

void ClParameterProvider::PublishParamSubContainer(ClParameterContainer& oContainer, const char* szName) {
  PublishParameters(szName != nullptr ? *oContainer.AddContainer(szName) : oContainer);
}
