// Texts and flags of parameters.
#include "MXTools/Parameter.h"

namespace {

/// The text of an operation that follows the size convention; oGet(char*, unsigned int&) is asked a second
/// time with the size that it reported.
template <typename TGet>
std::string TextOf(TGet&& oGet) {
  std::string szText(256, '\0');
  unsigned int nSize = static_cast<unsigned int>(szText.size());
  if (!oGet(szText.data(), nSize)) {
    szText.assign(nSize, '\0');
    oGet(szText.data(), nSize);
  }
  return szText.c_str();
}

}  // namespace

ClParameter::~ClParameter() {
  delete[] m_szName;
  delete[] m_szDescription;
}

void ClParameter::CopyTo(ClParameterBase* pOther) {
  ClParameter& oOther = CastParameter<ClParameter>(pOther);
  oOther.m_pType = m_pType;
  oOther.m_nFlags = m_nFlags;
  if (&oOther == this) return;
  oOther.SetName(m_szName);
  oOther.SetDescription(m_szDescription);
}

void ClParameter::SetContainer(ClParameterContainer* /*pContainer*/) {}

std::string ClParameter::GetValue() {
  return TextOf([this](char* psz, unsigned int& rnSize) { return GetValue(psz, rnSize); });
}

std::string ClParameter::GetDefaultValue() {
  return TextOf([this](char* psz, unsigned int& rnSize) { return GetDefaultValue(psz, rnSize); });
}

void ClParameter::SetAccess(unsigned char nAccess) {
  constexpr unsigned int cnAccess = cnWritable | cnReadable;
  m_nFlags = static_cast<unsigned char>((m_nFlags & ~cnAccess) | (nAccess & cnAccess));
}
