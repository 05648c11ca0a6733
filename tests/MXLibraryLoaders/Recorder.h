// What stand-ins for run-time libraries share: they write down each call with its arguments and answer with a number
// that the test sets.
#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>

namespace {

std::string szRecord;
long nAnswer = 0;
int nLent = 0;
/// Handles are addresses in here and are written down by their place.
char aHandles[128];

/// Texts as they are, numbers as numbers, what lies behind a pointer with an asterisk, and handles as their value.
template <typename T>
void Put(std::ostream& rOut, const T& rValue) {
  if constexpr (std::is_convertible_v<T, const char*>) {
    rOut << (rValue == nullptr ? "NULL" : static_cast<const char*>(rValue));
  } else if constexpr (std::is_convertible_v<T, const wchar_t*>) {
    rOut << 'L' << static_cast<char>(rValue[0]);
  } else if constexpr (std::is_same_v<T, void*>) {
    rOut << (rValue == nullptr ? 0 : static_cast<char*>(rValue) - aHandles);
  } else if constexpr (std::is_pointer_v<T>) {
    if (rValue == nullptr) {
      rOut << "NULL";
    } else {
      rOut << '*';
      Put(rOut, *rValue);
    }
  } else {
    // The plus makes a number of a character.
    rOut << +rValue;
  }
}

/// Named as the caller, with the arguments that it was called with.
template <typename... T>
long Record(const char* szFunction, const T&... aArguments) {
  std::ostringstream oLine;
  ((Put(oLine, aArguments), oLine << ','), ...);
  szRecord += std::string(szFunction) + '(' + oLine.str();
  if (sizeof...(T) != 0) szRecord.pop_back();
  szRecord += ')';
  return nAnswer;
}

}  // namespace

/// A function that does nothing but record: its name, its parameters and what of them is written down.
#define RECORDING(Name, Parameters, ...) \
  long Name Parameters {                 \
    return Record(#Name, __VA_ARGS__);   \
  }

extern "C" {

void* TestHandle(int nPlace) {
  return aHandles + nPlace;
}
const char* TestRecord() {
  return szRecord.c_str();
}
/// What every call answers from now on, and the place of the sequence that is lent, 0 for none.
void TestAnswer(long nNumber, int nSequence) {
  szRecord.clear();
  nAnswer = nNumber;
  nLent = nSequence;
}

}  // extern "C"
