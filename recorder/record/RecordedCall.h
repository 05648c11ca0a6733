// One call of an application: passed on to the real library, and entered into the recording with what it
// answered.
#pragma once

#include <cstring>

#include "format/Arguments.h"
#include "record/OpenDevices.h"
#include "record/Recorder.h"

namespace Recording {

/// What is asked of a library that is missing, or of a function that it has not.
constexpr long cnNoLibrary = -200;
constexpr long cnNoFunction = -103;

/// What the calls of one library share.
struct StRecordedLibrary {
  bool bLoaded = false;
  std::atomic<bool> bUsed{false};
  ClRecorder* pRecorder = nullptr;  ///< NULL: nothing is recorded
  ClOpenDevices oDevices;
};

/// What is added to the record of function nFunction after the call: nothing, but for the functions that
/// specialise this.
template <uint16_t nFunction>
struct TpMore {
  template <typename... TArguments>
  static void Add(ClCallRecord&, long, TArguments...) {}
};

/// Adds what a call has returned, argument after argument.
class ClGotArguments {
 public:
  ClGotArguments(ClCallRecord& oCall, const char* szRoles) : m_oCall(oCall), m_szRoles(szRoles) {}

  template <typename... TArguments>
  void Add(TArguments... aArguments) {
    [[maybe_unused]] size_t n = 0;
    (AddOne(n++, aArguments), ...);
  }
  /// Rooms as they were before the call.
  template <typename... TArguments>
  void NoteRooms(TArguments... aArguments) {
    [[maybe_unused]] size_t n = 0;
    (NoteRoom(n++, aArguments), ...);
  }
  void SetGood(bool bGood) { m_bGood = bGood; }

 private:
  void NoteRoom(size_t n, unsigned int* pn) {
    if (m_szRoles[n] == eRoleSize && pn != nullptr) m_nRoom = *pn;
  }
  template <typename T>
  void NoteRoom(size_t, T) {}

  void Returned(size_t n, const double* p) { m_oCall.AddReal(n, eGot, *p); }
  template <typename T>
  void Returned(size_t n, const T* p) {
    if constexpr (std::is_integral_v<T>) m_oCall.AddNumber(n, eGot, static_cast<int64_t>(*p));
  }

  // A text that fills its room has no end, and is left out.
  void Output(size_t n, const char* sz) {
    if (strnlen(sz, m_nRoom) < m_nRoom) m_oCall.AddText(n, eGot, sz);
  }
  void Output(size_t n, const wchar_t* wsz) {
    if (wcsnlen(wsz, m_nRoom) < m_nRoom) m_oCall.AddText(n, eGot, wsz);
  }
  template <typename T>
  void Output(size_t n, const T* p) {
    if constexpr (std::is_same_v<T, unsigned int>) m_pIds = p, m_nOutput = n;
    if constexpr (std::is_void_v<T>) m_pBytes = p, m_nOutput = n;
  }
  void Size(size_t n, const unsigned int* pn) {
    m_oCall.AddNumber(n, eGot, *pn);
    if (!m_bGood || *pn > m_nRoom) return;
    if (m_pIds != nullptr) m_oCall.AddBytes(m_nOutput, eGot, m_pIds, *pn * sizeof *m_pIds);
    if (m_pBytes != nullptr) m_oCall.AddBytes(m_nOutput, eGot, m_pBytes, *pn, StAttachment::eCalibration);
  }

  template <typename T>
  void AddOne(size_t n, T oArgument) {
    if constexpr (std::is_pointer_v<T>) {
      using Pointed = std::remove_cv_t<std::remove_pointer_t<T>>;
      if (oArgument == nullptr) return;
      if (m_szRoles[n] == eRoleReturned && m_bGood) Returned(n, static_cast<const Pointed*>(oArgument));
      if (m_szRoles[n] == eRoleOutput && m_bGood) Output(n, static_cast<const Pointed*>(oArgument));
      if constexpr (std::is_same_v<Pointed, unsigned int>)
        if (m_szRoles[n] == eRoleSize) Size(n, oArgument);
    }
  }

  ClCallRecord& m_oCall;
  const char* const m_szRoles;
  bool m_bGood = false;
  size_t m_nRoom = 0;
  size_t m_nOutput = 0;
  const unsigned int* m_pIds = nullptr;
  const void* m_pBytes = nullptr;
};

/// The device of a call, from the argument that says so: before the call for those that close it, after it
/// for those that open it.
template <typename... TArguments>
const void* DeviceOf(const char* szRoles, TArguments... aArguments) {
  const void* hDevice = nullptr;
  [[maybe_unused]] const auto Look = [&](char cRole, auto oArgument) {
    if constexpr (std::is_same_v<decltype(oArgument), void*>)
      if (cRole == eRoleHandle) hDevice = oArgument;
    if constexpr (std::is_same_v<decltype(oArgument), void**>)
      if ((cRole == eRoleOpened || cRole == eRoleClosed) && oArgument != nullptr) hDevice = *oArgument;
  };
  [[maybe_unused]] size_t n = 0;
  (Look(szRoles[n++], aArguments), ...);
  return hDevice;
}

/// A function of the real library with its number and its roles.
template <uint16_t nFunction, typename TResult, typename... TParameters>
class TpRecordedCall {
 public:
  using Function = TResult (*)(TParameters...);

  TpRecordedCall(StRecordedLibrary& oLibrary, const char* szRoles, Function pfn)
      : m_oLibrary(oLibrary), m_szRoles(szRoles), m_pfn(pfn) {}

  TResult operator()(TParameters... aArguments) const {
    m_oLibrary.bUsed = true;
    if (m_pfn == nullptr) return Missing();
    if (m_oLibrary.pRecorder == nullptr) return m_pfn(aArguments...);
    ClRecorder& oRecorder = *m_oLibrary.pRecorder;
    ClCallRecord oCall(nFunction);
    ClGivenArguments(oCall, m_szRoles, true).Add(aArguments...);
    ClGotArguments oGot(oCall, m_szRoles);
    oGot.NoteRooms(aArguments...);
    const void* hBefore = DeviceOf(m_szRoles, aArguments...);
    uint32_t nDevice = m_oLibrary.oDevices.NumberOf(hBefore);
    const int64_t nBegin = oRecorder.Now();
    const TResult oResult = m_pfn(aArguments...);
    const int64_t nEnd = oRecorder.Now();
    const long nResult = Number(oResult);
    oGot.SetGood(nResult == 0);
    oGot.Add(aArguments...);
    if (std::strchr(m_szRoles, eRoleOpened) != nullptr)
      nDevice = nResult == 0 ? m_oLibrary.oDevices.Open(DeviceOf(m_szRoles, aArguments...)) : 0;
    if (std::strchr(m_szRoles, eRoleClosed) != nullptr) m_oLibrary.oDevices.Close(hBefore);
    AddText(oCall, oResult);
    TpMore<nFunction>::Add(oCall, nResult, aArguments...);
    oCall.SetHead(oRecorder.Thread(), nDevice, nBegin, nEnd, nResult);
    oRecorder.Record(oCall);
    if (nFunction == eVTScanAPIUninitialize) oRecorder.Drain();
    return oResult;
  }

 private:
  TResult Missing() const {
    if constexpr (std::is_pointer_v<TResult>) {
      static std::remove_cv_t<std::remove_pointer_t<TResult>> s_aNone[1] = {};
      return s_aNone;
    } else {
      return m_oLibrary.bLoaded ? cnNoFunction : cnNoLibrary;
    }
  }
  static long Number(long nResult) { return nResult; }
  template <typename T>
  static long Number(T*) {
    return 0;
  }
  static void AddText(ClCallRecord&, long) {}
  /// The text of a number counts as an argument after the last.
  template <typename T>
  static void AddText(ClCallRecord& oCall, T* szText) {
    oCall.AddText(1, eGot, szText);
  }

  StRecordedLibrary& m_oLibrary;
  const char* const m_szRoles;
  const Function m_pfn;
};

template <uint16_t nFunction, typename TResult, typename... TParameters>
TpRecordedCall<nFunction, TResult, TParameters...> MakeRecorded(StRecordedLibrary& oLibrary,
                                                                const char* szRoles,
                                                                TResult (*pfn)(TParameters...)) {
  return {oLibrary, szRoles, pfn};
}

}  // namespace Recording

/// The exported function of a row of the tables, over Library(), which gives the library and its functions
/// oReal.
#define KLV_EXPORT_RECORDED(Number, Name, Result, Parameters, Arguments, Roles)               \
  extern "C" __attribute__((visibility("default"))) Result Name Parameters {                  \
    return Recording::MakeRecorded<Number>(Library(), Roles, Library().oReal.Name) Arguments; \
  }
