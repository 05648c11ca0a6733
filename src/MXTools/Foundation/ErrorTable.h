// The table of error numbers, names and messages that every failure of the library comes from.
#pragma once

/// One row of the error table.
struct ST_ErrorMapEntry {
  long nNumber;                   ///< error number: 0 for success, negative for failures
  const char* szDescription;      ///< message
  const wchar_t* wszDescription;  ///< the same message
  const char* szName;             ///< symbolic name
  const wchar_t* wszName;         ///< the same name
};

/// The row of a number or of a name, compared exactly; where two rows answer, the first one in the table.
///
/// Range    a number or name outside the table (NULL too) gives the row of number 0x7FFFFFFF,
///          "Unknown error code.".
/// Threads  reentrant: the table is constant.
const ST_ErrorMapEntry& GetKlvErrorInfo(long nNumber);
const ST_ErrorMapEntry& GetKlvErrorInfo(const char* szName);
const ST_ErrorMapEntry& GetKlvErrorInfo(const wchar_t* wszName);

extern "C" {
/// The message of a number; never NULL.
const char* GetErrorDescriptionIntern(long nNumber);
const wchar_t* GetErrorDescriptionInternW(long nNumber);
}
