// A scan library that passes all calls on to the simulated one, but for the one that is planned.
#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "Hostile.h"
#include "format/Functions.h"

namespace Hostile {

using namespace Recording;

constexpr auto coLateness = std::chrono::milliseconds(500);
/// The time after which whoever waits for the test itself has waited in vain.
constexpr auto coLongest = std::chrono::seconds(120);

/// An argument: where it points to, and how large what is there is.
struct StArgument {
  void* p = nullptr;
  size_t nPointee = 0;
};

template <typename T>
StArgument ArgumentOf(T tValue) {
  if constexpr (std::is_pointer_v<T>) {
    using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
    size_t nPointee = 1;
    if constexpr (!std::is_void_v<Pointee>) nPointee = sizeof(Pointee);
    return {const_cast<void*>(static_cast<const void*>(tValue)), nPointee};
  } else {
    return {nullptr, static_cast<size_t>(tValue)};
  }
}

using Real = std::function<long()>;

class ClLibrary final : public ClControl {
 public:
  static ClLibrary& Get() {
    static ClLibrary& oLibrary = *new ClLibrary;
    return oLibrary;
  }

  void Plan(const StPlan& oPlan) override {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_oPlan = oPlan;
    m_nStep = m_nCalls = 0;
    m_bStruck = m_bSwapNext = false;
    m_mapSeen.clear();
    std::vector<unsigned char>().swap(m_aBefore);
    m_bKeep = oPlan.eAnswer == eSameFrame;
  }

  void Enter(unsigned nStep) override {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_nStep = nStep;
  }

  void OnStrike(void (*pfn)()) override {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_pfnStrike = pfn;
  }

  bool HasStruck() const override {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    return m_bStruck;
  }

  Calls Seen() const override {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    return m_mapSeen;
  }

  bool Fits(uint16_t nFunction, EAnswer eAnswer) const override {
    const std::string sRoles = FunctionRoles(nFunction);
    const bool bGivesBack = nFunction == eVTScanAPIUninitialize || Has(sRoles, "xb");
    switch (eAnswer) {
      case eRight:
        return false;
      case eNumber:
      case eLate:
        return true;
      case eNumberAfter:
        return !bGivesBack && nFunction != eVTScanAPILockRawSequence;
      case eNothing:
        // Nothing says how long a lent sequence is: one of the mode before would be read past its end.
        return !bGivesBack && nFunction != eVTScanAPIInitialize && nFunction != eVTScanAPISetCaptureMode &&
               !Has(sRoles, "ol");
      case eNever:
        return nFunction == eVTScanAPILockRawSequence;
      case eHuge:
      case eNone:
      case eOneMore:
        return Has(sRoles, "nr");
      case eEmpty:
      case eGarbage:
      case eFormat:
      case eFlipped:
        return Has(sRoles, "w");
      case eNull:
        return Has(sRoles, "ol");
      case eShortFrame:
      case eSameFrame:
      case eOrder:
      case eSwappedPlanes:
        return Has(sRoles, "l");
      case eAbsent:
        return true;
    }
    return false;
  }

  /// Notes that a function is looked for; whether it is there.
  bool IsThere(uint16_t nFunction) {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    if (m_oPlan.eAnswer != eAbsent || m_oPlan.nFunction != nFunction) return true;
    m_bStruck = true;
    return false;
  }

  long Answer(uint16_t nFunction, const std::vector<StArgument>& aArguments, const Real& fnCall) {
    const EAnswer eAnswer = Count(nFunction, aArguments);
    if (nFunction == eVTScanAPILockRawSequence) return Lend(eAnswer, aArguments, fnCall);
    switch (eAnswer) {
      case eNumber:
        if (nFunction == eVTScanAPIUninitialize || Has(FunctionRoles(nFunction), "xb")) fnCall();
        return m_oPlan.nNumber;
      case eNumberAfter:
        fnCall();
        return m_oPlan.nNumber;
      case eNothing:
        return 0;
      case eNull:
        *static_cast<void**>(Find(nFunction, aArguments, 'o').p) = nullptr;
        return 0;
      case eLate:
        Wait(coLateness);
        return fnCall();
      default:
        break;
    }
    const std::vector<unsigned> aRooms = Rooms(nFunction, aArguments);
    const long nResult = fnCall();
    if (eAnswer != eRight) Spoil(nFunction, aArguments, aRooms, eAnswer);
    return nResult;
  }

 private:
  static bool Has(const std::string& sRoles, const char* szLetters) {
    return sRoles.find_first_of(szLetters) != std::string::npos;
  }
  static StArgument Find(uint16_t nFunction, const std::vector<StArgument>& aArguments, char cRole) {
    const size_t n = std::string(FunctionRoles(nFunction)).find(cRole);
    return n < aArguments.size() ? aArguments[n] : StArgument{};
  }

  /// How the present call is to be answered.
  EAnswer Count(uint16_t nFunction, const std::vector<StArgument>& aArguments) {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    ++m_mapSeen[{m_nStep, nFunction}];
    if (nFunction == eVTScanAPISetCaptureMode) m_nPlanes = aArguments[2].nPointee;
    const bool bEnds = nFunction == eVTScanAPIEnableCapture && aArguments[1].nPointee == 0;
    if (bEnds || nFunction == eVTScanAPIDestroyHandle || nFunction == eVTScanAPIUninitialize) {
      m_bCancelled = true;
      m_oCancelled.notify_all();
    }
    if (m_bStruck || nFunction != m_oPlan.nFunction || m_nStep < m_oPlan.nStep) return eRight;
    if (++m_nCalls != m_oPlan.nCall) return eRight;
    m_bStruck = true;
    m_bCancelled = false;
    if (m_pfnStrike != nullptr) m_pfnStrike();
    return m_oPlan.eAnswer;
  }

  /// Lets the planned call wait. True when it was cancelled.
  bool Wait(std::chrono::milliseconds oFor) {
    std::unique_lock<std::mutex> oLock(m_oMutex);
    return m_oCancelled.wait_for(oLock, oFor, [&] { return m_bCancelled; });
  }

  /// The rooms of the outputs, as they are on entry.
  static std::vector<unsigned> Rooms(uint16_t nFunction, const std::vector<StArgument>& aArguments) {
    const char* szRoles = FunctionRoles(nFunction);
    std::vector<unsigned> aRooms(aArguments.size());
    for (size_t n = 0; n + 1 < aArguments.size(); ++n)
      if (szRoles[n] == eRoleOutput && aArguments[n].p != nullptr && aArguments[n + 1].p != nullptr)
        std::memcpy(&aRooms[n], aArguments[n + 1].p, sizeof(unsigned));
    return aRooms;
  }

  static void Spoil(uint16_t nFunction, const std::vector<StArgument>& aArguments,
                    const std::vector<unsigned>& aRooms, EAnswer eAnswer) {
    const char* szRoles = FunctionRoles(nFunction);
    for (size_t n = 0; n < aArguments.size(); ++n) {
      const StArgument& oArgument = aArguments[n];
      if (oArgument.p == nullptr) continue;
      if (szRoles[n] == eRoleOutput) {
        SpoilBytes(static_cast<unsigned char*>(oArgument.p), aRooms[n] * oArgument.nPointee, eAnswer);
      } else if (szRoles[n] == eRoleSize || szRoles[n] == eRoleReturned) {
        SpoilNumber(oArgument, eAnswer);
      }
    }
  }

  static void SpoilNumber(const StArgument& oNumber, EAnswer eAnswer) {
    auto* p = static_cast<unsigned char*>(oNumber.p);
    if (eAnswer == eHuge) std::memset(p, 0xFF, oNumber.nPointee);
    if (eAnswer == eNone) std::memset(p, 0, oNumber.nPointee);
    if (eAnswer == eOneMore) ++*p;
  }

  static void SpoilBytes(unsigned char* p, size_t nBytes, EAnswer eAnswer) {
    constexpr char cszFormat[] = "%s%n%f%";
    for (size_t n = 0; n < nBytes; ++n) {
      if (eAnswer == eEmpty) p[n] = 0;
      if (eAnswer == eGarbage) p[n] = static_cast<unsigned char>(1 + n * n * 2654435761u % 255);
      if (eAnswer == eFormat) p[n] = static_cast<unsigned char>(cszFormat[n % (sizeof(cszFormat) - 1)]);
    }
    if (eAnswer == eFlipped && nBytes > 0) p[0] ^= 0x40;
  }

  /// The call that lends a sequence; ppSequence is its second argument.
  long Lend(EAnswer eAnswer, const std::vector<StArgument>& aArguments, const Real& fnCall) {
    auto* ppSequence = static_cast<void**>(aArguments[1].p);
    if (eAnswer == eNumber) return m_oPlan.nNumber;
    if (eAnswer == eNull) {
      *ppSequence = nullptr;
      return 0;
    }
    if (eAnswer == eNever) return Wait(coLongest) ? -60 : -721;
    if (eAnswer == eLate) Wait(coLateness);
    const long nResult = fnCall();
    if (nResult != 0 || *ppSequence == nullptr) return nResult;
    auto* p = static_cast<unsigned char*>(*ppSequence);
    const size_t nBytes = SequenceBytes(aArguments[0].p);
    if (eAnswer == eShortFrame) std::memset(p + nBytes / 2, 0, nBytes - nBytes / 2);
    if (eAnswer == eSwappedPlanes && m_nPlanes > 1)
      std::swap_ranges(p, p + nBytes / m_nPlanes, p + nBytes - nBytes / m_nPlanes);
    // The sequence that the application has now is kept for the next time, or shown in place of this one.
    if ((eAnswer == eSameFrame || m_bSwapNext) && m_aBefore.size() == nBytes)
      std::memcpy(p, m_aBefore.data(), nBytes);
    m_bSwapNext = false;
    if (eAnswer == eOrder) {
      m_aBefore.assign(p, p + nBytes);
      if (Give(aArguments) == 0 && fnCall() == 0) m_bSwapNext = true;
    } else if (m_bKeep) {
      m_aBefore.assign(p, p + nBytes);
    }
    return nResult;
  }

  long Give(const std::vector<StArgument>& aArguments) {
    using Release = long (*)(void*, void**);
    static const auto pfn = reinterpret_cast<Release>(dlsym(RTLD_DEFAULT, "VTScanAPIReleaseRawSequence"));
    return pfn(aArguments[0].p, static_cast<void**>(aArguments[1].p));
  }

  size_t SequenceBytes(void* hDevice) const {
    using Resolution = long (*)(void*, unsigned*, unsigned*);
    static const auto pfn = reinterpret_cast<Resolution>(dlsym(RTLD_DEFAULT, "VTScanAPIGetResolution"));
    unsigned nWidth = 0, nHeight = 0;
    return pfn(hDevice, &nWidth, &nHeight) == 0 ? size_t{nWidth} * nHeight * m_nPlanes : 0;
  }

  mutable std::mutex m_oMutex;
  std::condition_variable m_oCancelled;
  StPlan m_oPlan;   // written between two lives of a scanner
  Calls m_mapSeen;  // guarded by m_oMutex, as all that follows
  void (*m_pfnStrike)() = nullptr;
  unsigned m_nStep = 0;
  unsigned m_nCalls = 0;      ///< of the planned function, since the planned step
  bool m_bCancelled = false;  ///< since the planned call came
  bool m_bStruck = false;
  size_t m_nPlanes = 2;  // written while no sequence is lent, as all that follows
  bool m_bKeep = false;
  bool m_bSwapNext = false;
  std::vector<unsigned char> m_aBefore;
};

/// Answers a call of a function that fnReal would answer rightly. Those that describe an error do so.
template <typename TResult, typename TReal, typename... TArguments>
TResult Pass(uint16_t nFunction, TReal&& fnReal, TArguments... aArguments) {
  if constexpr (std::is_pointer_v<TResult>) {
    return fnReal();
  } else {
    return ClLibrary::Get().Answer(nFunction, {ArgumentOf(aArguments)...}, fnReal);
  }
}

template <typename TFunction>
TFunction* RealFunction(TFunction*, const char* szName) {
  return reinterpret_cast<TFunction*>(dlsym(RTLD_DEFAULT, szName));
}

}  // namespace Hostile

extern "C" __attribute__((visibility("default"))) Hostile::ClControl* HostileControl() {
  return &Hostile::ClLibrary::Get();
}

/// A function under the name that the application looks up. Whoever looks it up runs its resolver, which can
/// say that it is not there.
#define KLV_HOSTILE(Number, Name, Result, Parameters, Arguments, Roles)                       \
  extern "C" __attribute__((used)) Result Hostile##Name Parameters {                          \
    static const auto pfnReal = Hostile::RealFunction(&Hostile##Name, #Name);                 \
    const auto fnReal = [&] { return pfnReal Arguments; };                                    \
    return std::apply([&](auto... a) { return Hostile::Pass<Result>(Number, fnReal, a...); }, \
                      std::make_tuple Arguments);                                             \
  }                                                                                           \
  extern "C" __attribute__((used)) decltype(&Hostile##Name) Resolve##Name() {                 \
    return Hostile::ClLibrary::Get().IsThere(Number) ? &Hostile##Name : nullptr;              \
  }                                                                                           \
  extern "C" __attribute__((visibility("default"), ifunc("Resolve" #Name))) Result Name Parameters;
KLV_RECORDED_SCAN_FUNCTIONS(KLV_HOSTILE)
