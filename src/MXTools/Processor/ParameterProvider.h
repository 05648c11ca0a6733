// Root of everything that has parameters of its own.
#pragma once

class ClParameterContainer;
class ClParameterInterface;
class ClParameterRows;

/// Describes its settings as named parameters that are bound to its members.
///
/// Ownership  a container filled here refers to members of this object and must not outlive it.
/// Threads    thread-bound.
class ClParameterProvider {
 public:
  ClParameterProvider() = default;
  ClParameterProvider(const ClParameterProvider&) = delete;
  ClParameterProvider& operator=(const ClParameterProvider&) = delete;
  virtual ~ClParameterProvider() = default;

  /// One row for each parameter, bound to the member that holds it: both descriptions are made of the rows.
  virtual void DeclareParameters(ClParameterRows& oRows);
  /// Describes the parameters in the older list form.
  virtual void QueryParameters(ClParameterInterface& oInterface);
  /// Restores every parameter; constructors call it.
  virtual void SetParametersToDefault();
  /// Adds the parameters, bound to the members that hold the values.
  virtual void PublishParameters(ClParameterContainer& oContainer);

  /// Publishes so that values are the current ones and defaults the provider's defaults.
  void QueryParameters(ClParameterContainer& oContainer);
  /// Gives the other provider, of the same class, this one's values; image connectors stay as they are.
  void CopyParametersTo(ClParameterProvider& oOther);
  /// Publishes into a new sub-container of that name, or into the container itself when szName is NULL.
  void PublishParamSubContainer(ClParameterContainer& oContainer, const char* szName);
};
