// Values, texts and stored records of parameter entries.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterInterface.h"
#include "MXTools/Stream.h"

namespace {

// Members are reached byte by byte, since an entry does not know their C++ type for sure.
template <typename T>
double Get(const void* pValue) {
  T tValue;
  std::memcpy(&tValue, pValue, sizeof(tValue));
  return static_cast<double>(tValue);
}

template <typename T>
void Put(void* pTarget, double dValue) {
  const T tValue = ElementFromDouble<T>(dValue);
  std::memcpy(pTarget, &tValue, sizeof(tValue));
}

template <typename T>
void Write(ClStream& oStream, double dValue) {
  oStream.WriteAutoSwap(ElementFromDouble<T>(dValue));
}

/// Reads numbers and remembers whether one came short, since a stream without its failure flag does not
/// raise.
class ClRecord {
 public:
  explicit ClRecord(ClStream& oStream) : m_oStream(oStream) {}

  template <typename T>
  T Read() {
    T tValue = 0;
    m_bWhole &= m_oStream.ReadAutoSwap(tValue) == sizeof(T);
    return tValue;
  }
  bool IsWhole() const { return m_bWhole; }

 private:
  ClStream& m_oStream;
  bool m_bWhole = true;
};

double ReadRecordValue(ClRecord& rRecord, ClParameterInterface::EType eType) {
  switch (eType) {
    case ClParameterInterface::eByte:
      return rRecord.Read<uint8_t>();
    case ClParameterInterface::eShort:
      return rRecord.Read<int16_t>();
    case ClParameterInterface::eAngle:
      return rRecord.Read<uint16_t>();
    case ClParameterInterface::eLong:
      return rRecord.Read<int32_t>();
    case ClParameterInterface::eDouble:
      return rRecord.Read<double>();
    case ClParameterInterface::eFloat:
      return static_cast<double>(rRecord.Read<float>());
    default:
      return 0;
  }
}

void Copy(char* szText, unsigned int nSize, const char* szSource) {
  const size_t nLength = std::strlen(szSource);
  if (nLength >= nSize) KLV_RAISE(ClException, "The buffer size is too small.", -21);
  std::memcpy(szText, szSource, nLength + 1);
}

}  // namespace

using ClEntry = ClParameterInterface::ClParameter;

ClEntry& ClEntry::operator=(const ClEntry& oOther) {
  if (this == &oOther) return *this;
  m_eType = oOther.m_eType;
  m_eDirection = oOther.m_eDirection;
  m_bFixedRange = oOther.m_bFixedRange;
  m_dMinimum = oOther.m_dMinimum;
  m_dMaximum = oOther.m_dMaximum;
  m_dDefault = oOther.m_dDefault;
  m_pValue = oOther.m_pValue;
  m_nValueSize = oOther.m_nValueSize;
  m_szEnumList = oOther.m_szEnumList;
  m_aEnumValues = oOther.m_aEnumValues;
  m_bMarked = oOther.m_bMarked;
  m_bLocked = oOther.m_bLocked;
  m_szName = oOther.m_szName;
  m_szDescription = oOther.m_szDescription;
  return *this;
}

const char* ClEntry::szType() const {
  switch (m_eType) {
    case eByte:
      return "eByte";
    case eShort:
      return "eShort";
    case eAngle:
      return "eAngle";
    case eLong:
      return "eLong";
    case eDouble:
      return "eDouble";
    case eFloat:
      return "eFloat";
    case eVoid:
      return "eVoid";
    case eImage:
      return "eImage";
    case eBool:
      return "eBool";
    case eEnum:
      return "eEnum";
    case eGraph:
      return "eGraph";
    default:
      return "Unknown";
  }
}

const char* ClEntry::szDir() const {
  switch (m_eDirection) {
    case eIn:
      return "eIn";
    case eOut:
      return "eOut";
    case eInOut:
      return "eInOut";
    case eOptional:
      return "eOptional";
    default:
      return "Unknown";
  }
}

void ClEntry::SetRange(double dMinimum, double dMaximum) {
  m_dMinimum = dMinimum;
  m_dMaximum = dMaximum;
  if (dMinimum == dMaximum) m_bFixedRange = true;
}

void ClEntry::SetEnumList(const char* szList, const long* pValues) {
  m_szEnumList.clear();
  m_aEnumValues.clear();
  if (szList == nullptr) return;
  size_t nNames = 0;
  for (const char* szName = szList; *szName != 0; szName += std::strlen(szName) + 1) {
    m_szEnumList.append(szName, std::strlen(szName) + 1);
    ++nNames;
  }
  m_szEnumList += '\0';
  for (size_t n = 0; pValues != nullptr && n < nNames; ++n)
    m_aEnumValues.push_back(static_cast<int>(pValues[n]));
}

double ClEntry::GetValue() const {
  if (m_pValue == nullptr) return 0;
  switch (m_eType) {
    case eByte:
      return Get<uint8_t>(m_pValue);
    case eShort:
      return Get<int16_t>(m_pValue);
    case eAngle:
      return Get<uint16_t>(m_pValue);
    case eLong:
      return m_nValueSize == sizeof(int32_t) ? Get<int32_t>(m_pValue) : Get<long>(m_pValue);
    case eEnum:
      return Get<int32_t>(m_pValue);
    case eDouble:
      return Get<double>(m_pValue);
    case eFloat:
      return Get<float>(m_pValue);
    case eBool:
      return Get<uint8_t>(m_pValue);
    default:
      return 0;
  }
}

void ClEntry::SetValue(void* pTarget, double dValue) const {
  switch (m_eType) {
    case eByte:
      Put<uint8_t>(pTarget, dValue);
      return;
    case eShort:
      Put<int16_t>(pTarget, dValue);
      return;
    case eAngle:
      Put<uint16_t>(pTarget, dValue);
      return;
    case eLong:
      if (m_nValueSize == sizeof(int32_t)) {
        Put<int32_t>(pTarget, dValue);
      } else {
        Put<long>(pTarget, dValue);
      }
      return;
    case eEnum:
      Put<int32_t>(pTarget, dValue);
      return;
    case eDouble:
      Put<double>(pTarget, dValue);
      return;
    case eFloat:
      Put<float>(pTarget, dValue);
      return;
    case eBool:
      *static_cast<bool*>(pTarget) = dValue != 0;
      return;
    default:
      KLV_RAISE(ClException, "The parameter is no number.", -44);
  }
}

void ClEntry::SetValue(double dValue) {
  if (!m_bLocked && m_pValue != nullptr) SetValue(m_pValue, dValue);
}

void ClEntry::SetPointer(EType eType, const void* pValue) {
  if (m_eType != eType) KLV_RAISE(ClException, "The parameter is of another type.", -44);
  if (!m_bLocked && m_pValue != nullptr) std::memcpy(m_pValue, &pValue, sizeof(pValue));
}

const void* ClEntry::GetPointer(EType eType) const {
  const void* pValue = nullptr;
  if (m_eType == eType && m_pValue != nullptr) std::memcpy(&pValue, m_pValue, sizeof(pValue));
  return pValue;
}

void ClEntry::SetValue(ClImage* pImage) {
  SetPointer(eImage, pImage);
}

void ClEntry::SetValue(ClGraph* pGraph) {
  SetPointer(eGraph, pGraph);
}

// The pointer was not const when it was set.
ClImage* ClEntry::GetImage() const {
  return static_cast<ClImage*>(const_cast<void*>(GetPointer(eImage)));
}

ClGraph* ClEntry::GetGraph() const {
  return static_cast<ClGraph*>(const_cast<void*>(GetPointer(eGraph)));
}

const char* ClEntry::EnumToStr(long nValue) const {
  if (m_szEnumList.empty()) return "No Enum Val";
  size_t nIndex = 0;
  for (const char* szName = m_szEnumList.data(); *szName != 0; szName += std::strlen(szName) + 1, ++nIndex) {
    const long nOfName = m_aEnumValues.empty() ? static_cast<long>(nIndex) : m_aEnumValues[nIndex];
    if (nOfName == nValue) return szName;
  }
  return "No Enum Val";
}

void ClEntry::SetEnum(const char* szName) {
  if (m_szEnumList.empty()) KLV_RAISE(ClException, "m_szEnumList is not set", -37);
  // Names without values count from 0 for enumerations and bools only: a number's names need values too.
  if (m_aEnumValues.empty() && m_eType != eEnum && m_eType != eBool)
    KLV_RAISE(ClException, "m_aEnumValues is not set", -37);
  size_t nIndex = 0;
  for (const char* szEntry = m_szEnumList.data(); *szEntry != 0;
       szEntry += std::strlen(szEntry) + 1, ++nIndex) {
    if (std::strcmp(szEntry, szName) != 0) continue;
    SetEnum(m_aEnumValues.empty() ? static_cast<long>(nIndex) : m_aEnumValues[nIndex]);
    return;
  }
  KLV_RAISE(ClException, szName, -209);
}

void ClEntry::FmtInt(char* szText, unsigned int nSize, long nValue) const {
  if (!m_szEnumList.empty()) {
    Copy(szText, nSize, EnumToStr(nValue));
    return;
  }
  char szNumber[64];
  if (m_eType == eAngle) {
    const unsigned short nAngle = static_cast<unsigned short>(nValue);
    std::snprintf(szNumber, sizeof(szNumber), "%hu=%.3f", nAngle, (nAngle * 360 + 0.5) / 65535);
  } else {
    std::snprintf(szNumber, sizeof(szNumber), "%ld", nValue);
  }
  Copy(szText, nSize, szNumber);
}

void ClEntry::GetszValue(char* szText, unsigned int nSize) const {
  switch (m_eType) {
    case eDouble:
    case eFloat: {
      char szNumber[400];  // the largest double has 309 digits before the point
      std::snprintf(szNumber, sizeof(szNumber), "%.5f", GetValue());
      Copy(szText, nSize, szNumber);
      return;
    }
    case eImage:
      Copy(szText, nSize, "Image");
      return;
    case eGraph:
      Copy(szText, nSize, "Graph");
      return;
    case eString:
      Copy(szText, nSize, m_pValue != nullptr ? static_cast<const char*>(m_pValue) : "");
      return;
    case eVoid:
    case eComment:
      Copy(szText, nSize, "");
      return;
    default:
      FmtInt(szText, nSize, ElementFromDouble<long>(GetValue()));
      return;
  }
}

std::string ClEntry::szValue() const {
  char szText[512];
  GetszValue(szText, sizeof(szText));
  return szText;
}

void ClEntry::WriteToStream(ClStream& oStream) const {
  oStream.WriteString(GetName());
  oStream.WriteAutoSwap(static_cast<uint8_t>(m_eDirection));
  oStream.WriteAutoSwap(static_cast<uint8_t>(m_bFixedRange));
  oStream.WriteAutoSwap(m_dMinimum);
  oStream.WriteAutoSwap(m_dMaximum);
  oStream.WriteAutoSwap(m_dDefault);
  oStream.WriteAutoSwap(static_cast<uint8_t>(m_bMarked));
  oStream.WriteAutoSwap(static_cast<uint8_t>(m_bLocked));
  oStream.WriteAutoSwap(static_cast<uint8_t>(m_eType));
  WriteValue(oStream);
}

void ClEntry::WriteValue(ClStream& oStream) const {
  switch (m_eType) {
    case eByte:
      Write<uint8_t>(oStream, GetValue());
      return;
    case eShort:
      Write<int16_t>(oStream, GetValue());
      return;
    case eAngle:
      Write<uint16_t>(oStream, GetValue());
      return;
    case eLong:
      Write<int32_t>(oStream, GetValue());
      return;
    case eDouble:
      Write<double>(oStream, GetValue());
      return;
    case eFloat:
      Write<float>(oStream, GetValue());
      return;
    default:
      return;
  }
}

long ClEntry::ReadFromStream(ClStream& oStream) {
  char* szStored = nullptr;
  oStream.ReadString(&szStored);
  const std::unique_ptr<char[]> szName(szStored);
  if (szStored == nullptr || m_szName != szStored) return -33;
  ClRecord oRecord(oStream);
  const uint8_t nDirection = oRecord.Read<uint8_t>();
  const bool bFixedRange = oRecord.Read<uint8_t>() != 0;
  const double dMinimum = oRecord.Read<double>();
  const double dMaximum = oRecord.Read<double>();
  const double dDefault = oRecord.Read<double>();
  const bool bMarked = oRecord.Read<uint8_t>() != 0;
  const bool bLocked = oRecord.Read<uint8_t>() != 0;
  const uint8_t nType = oRecord.Read<uint8_t>();
  if (!oRecord.IsWhole()) return -201;
  // The member has the size of this entry's type, whatever the record says.
  if (nType != static_cast<uint8_t>(m_eType)) return -33;
  const double dValue = ReadRecordValue(oRecord, m_eType);
  if (!oRecord.IsWhole()) return -201;
  if (m_eType <= eFloat) SetValue(dValue);
  m_eDirection = static_cast<EDirection>(nDirection & 3);
  m_bFixedRange = bFixedRange;
  m_dMinimum = dMinimum;
  m_dMaximum = dMaximum;
  m_dDefault = dDefault;
  m_bMarked = bMarked;
  m_bLocked = bLocked;
  return 0;
}
