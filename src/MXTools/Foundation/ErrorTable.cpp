// The look-ups of the error table.
#include "MXTools/ErrorTable.h"

#include <cstring>
#include <cwchar>

namespace {

#define KLV_ERROR(number, name, message) {number, message, L##message, #name, L## #name},
constexpr ST_ErrorMapEntry s_aErrorTable[] = {
#include "ErrorTable.inc"
};
#undef KLV_ERROR

/// Compares a row with a key; each kind of key has a form of its own.
bool Matches(const ST_ErrorMapEntry& oRow, long nNumber) {
  return oRow.nNumber == nNumber;
}
bool Matches(const ST_ErrorMapEntry& oRow, const char* szName) {
  return szName != nullptr && std::strcmp(oRow.szName, szName) == 0;
}
bool Matches(const ST_ErrorMapEntry& oRow, const wchar_t* wszName) {
  return wszName != nullptr && std::wcscmp(oRow.wszName, wszName) == 0;
}

template <typename T>
struct GetErrorInfoT {
  static const ST_ErrorMapEntry sUnknown;

  static const ST_ErrorMapEntry& Find(T key) {
    for (const ST_ErrorMapEntry& oRow : s_aErrorTable) {
      if (Matches(oRow, key)) return oRow;
    }
    return sUnknown;
  }
};

template <typename T>
const ST_ErrorMapEntry GetErrorInfoT<T>::sUnknown = {0x7FFFFFFF, "Unknown error code.",
                                                     L"Unknown error code.", "XSC_ERROR_UNKOWN_ERROR_CODE",
                                                     L"XSC_ERROR_UNKOWN_ERROR_CODE"};

}  // namespace

const ST_ErrorMapEntry& GetKlvErrorInfo(long nNumber) {
  return GetErrorInfoT<long>::Find(nNumber);
}
const ST_ErrorMapEntry& GetKlvErrorInfo(const char* szName) {
  return GetErrorInfoT<const char*>::Find(szName);
}
const ST_ErrorMapEntry& GetKlvErrorInfo(const wchar_t* wszName) {
  return GetErrorInfoT<const wchar_t*>::Find(wszName);
}

const char* GetErrorDescriptionIntern(long nNumber) {
  return GetKlvErrorInfo(nNumber).szDescription;
}
const wchar_t* GetErrorDescriptionInternW(long nNumber) {
  return GetKlvErrorInfo(nNumber).wszDescription;
}
