// The table of exported functions as a test sees it: arguments with the parts that they play, and calls with
// any arguments.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "KelvarinLiveScannerVT40.h"

namespace Interface {

enum ERole {
  eHandle,
  eClose,
  eIn,
  eName,
  eOut,
  eSerial,
  eImage,
  eRoom,
  eCells,
  eSize,
  eData,
  eCount,
  eRange,
  eValue,
  eUnread
};

struct StArgument {
  ERole eRole;
  long nNull = 0;     ///< what answers NULL
  long nRefused = 0;  ///< what answers too little room, or a number out of the range
  long nLow = 0;
  long nHigh = 0;
};

/// The value of an argument of any type.
struct StValue {
  void* p = nullptr;
  int64_t n = 0;
  double d = 0.0;
};
using Values = std::vector<StValue>;

/// What the C type of an argument is.
struct StType {
  bool bPointer = false;
  bool bFloating = false;
  size_t nPointee = 0;  ///< bytes; 0 of void
  int64_t nLow = 0;     ///< limits of a whole number
  int64_t nHigh = 0;
};

struct StFunction {
  std::string sName;
  std::vector<StArgument> aArguments;
  unsigned nModes = 0;  ///< one bit for each
  std::vector<long> aNumbers;
  double dSeconds = 0.0;  ///< that it takes at most
  std::vector<StType> aTypes;
  std::function<long(const Values&)> fnCall;
};

/// Stands among the numbers for those of the scan library.
constexpr long cnOwn = 1;

template <typename T>
StType TypeOf() {
  StType oType;
  if constexpr (std::is_pointer_v<T>) {
    oType.bPointer = true;
    if constexpr (!std::is_void_v<std::remove_pointer_t<T>>)
      oType.nPointee = sizeof(std::remove_pointer_t<T>);
  } else if constexpr (std::is_floating_point_v<T>) {
    oType.bFloating = true;
  } else {
    oType.nLow = static_cast<int64_t>(std::numeric_limits<T>::min());
    oType.nHigh = static_cast<int64_t>(std::numeric_limits<T>::max());
  }
  return oType;
}

template <typename T>
T As(const StValue& oValue) {
  if constexpr (std::is_pointer_v<T>) {
    return static_cast<T>(oValue.p);
  } else if constexpr (std::is_floating_point_v<T>) {
    return oValue.d;
  } else {
    return static_cast<T>(oValue.n);
  }
}

template <typename TResult, typename... TArguments, size_t... cnPositions>
long Call(TResult (*pfn)(TArguments...), const Values& aValues, std::index_sequence<cnPositions...>) {
  if constexpr (std::is_pointer_v<TResult>) {
    return pfn(As<TArguments>(aValues[cnPositions])...) != nullptr ? 0 : 1;
  } else {
    return pfn(As<TArguments>(aValues[cnPositions])...);
  }
}

/// pfn is the function of a row. One that returns a text returns 0 here, and 1 for NULL.
template <typename TResult, typename... TArguments>
StFunction Row(const char* szName, TResult (*pfn)(TArguments...), std::vector<StArgument> aArguments,
               const std::vector<int>& aModes, std::vector<long> aNumbers) {
  StFunction oFunction;
  oFunction.sName = szName;
  oFunction.aArguments = std::move(aArguments);
  for (const int nMode : aModes) oFunction.nModes |= 1u << nMode;
  oFunction.aNumbers = std::move(aNumbers);
  oFunction.aTypes = {TypeOf<TArguments>()...};
  oFunction.fnCall = [pfn](const Values& aValues) {
    return Call(pfn, aValues, std::index_sequence_for<TArguments...>());
  };
  return oFunction;
}

/// Every number that the function may answer, but for the scan library's own.
inline std::set<long> Documented(const StFunction& oFunction) {
  std::set<long> aNumbers(oFunction.aNumbers.begin(), oFunction.aNumbers.end());
  aNumbers.insert(0);
  for (const StArgument& oArgument : oFunction.aArguments) {
    aNumbers.insert(oArgument.nNull);
    aNumbers.insert(oArgument.nRefused);
    if (oArgument.eRole == eHandle || oArgument.eRole == eClose) aNumbers.insert({-42, -43});
  }
  aNumbers.erase(cnOwn);
  return aNumbers;
}

inline std::vector<StFunction> Functions() {
  constexpr StArgument HANDLE{eHandle}, COUNT{eCount}, VALUE{eValue}, UNREAD{eUnread, -106};
  constexpr long OWN = cnOwn;
  constexpr int AUTO = KLV_VT40_CAPTURE_MODE_AUTO, ROLL = KLV_VT40_CAPTURE_MODE_ROLL;
  constexpr int AUTO_LIVE = KLV_VT40_CAPTURE_MODE_AUTO_LIVE, OFF = KLV_VT40_CAPTURE_MODE_OFF;
  constexpr int FULL = KLV_VT40_CAPTURE_MODE_FULL, PREVIEW = KLV_VT40_CAPTURE_MODE_PREVIEW;
  constexpr int SIGNATURE = KLV_VT40_CAPTURE_MODE_SIGNATURE;
  std::vector<StFunction> aFunctions;
#define KLV_LIST(...) __VA_ARGS__
#define ANY AUTO, ROLL, AUTO_LIVE, OFF, FULL, PREVIEW, SIGNATURE
#define CLOSE(n) \
  StArgument {   \
    eClose, n    \
  }
#define IN(n)  \
  StArgument { \
    eIn, n     \
  }
#define NAME(n) \
  StArgument {  \
    eName, n    \
  }
#define OUT(n) \
  StArgument { \
    eOut, n    \
  }
#define SERIAL(n) \
  StArgument {    \
    eSerial, n    \
  }
#define IMAGE(n) \
  StArgument {   \
    eImage, n    \
  }
#define ROOM(n) \
  StArgument {  \
    eRoom, n    \
  }
#define CELLS(n) \
  StArgument {   \
    eCells, n    \
  }
#define SIZE(n, s) \
  StArgument {     \
    eSize, n, s    \
  }
#define DATA(n) \
  StArgument {  \
    eData, n    \
  }
#define RANGE(l, h, s) \
  StArgument {         \
    eRange, 0, s, l, h \
  }
#define KLV_EXPORTED(name, arguments, modes, numbers, milliseconds)                                   \
  aFunctions.push_back(Row(#name, name, {KLV_LIST arguments}, {KLV_LIST modes}, {KLV_LIST numbers})); \
  aFunctions.back().dSeconds = milliseconds / 1000.0;
#include "KelvarinLiveScannerVT40/ExportedFunctions.inc"
#undef KLV_LIST
#undef ANY
#undef CLOSE
#undef IN
#undef NAME
#undef OUT
#undef SERIAL
#undef IMAGE
#undef ROOM
#undef CELLS
#undef SIZE
#undef DATA
#undef RANGE
#undef KLV_EXPORTED
  return aFunctions;
}

}  // namespace Interface
