// Every exported function against wrong handles and NULL pointers, from the table of exported functions.
#include <cstring>
#include <tuple>
#include <type_traits>

#include "ApiFixture.h"

namespace {

/// Good arguments for any function, one of which may be made NULL.
class ClArguments {
 public:
  ClArguments(void* h, bool bHandle, const char* szFunction) : m_h(h), m_bHandle(bHandle) {
    const std::string sFunction = szFunction;
    if (sFunction == "LS_VT40CompatibilityCheck") m_aszTexts[0] = "2.0";
    if (sFunction == "LS_VT40OpenScanner") m_aszTexts[0] = "VT40-AB0001";
    if (sFunction.find("PropertyDouble") != std::string::npos) m_aszTexts[0] = "dSignatureDetectTime";
  }

  /// Calls with the pointer argument of number nNull, counted without the handle, as NULL; -1 for none.
  template <typename... TArguments>
  long Call(long (*pfn)(TArguments...), int nNull) {
    m_nNull = nNull;
    m_nPointer = m_bHandle ? -1 : 0;
    m_nText = 0;
    // With braces the arguments are made in their order.
    const std::tuple<TArguments...> aArguments{Make<TArguments>()...};
    return std::apply(pfn, aArguments);
  }

 private:
  template <typename T>
  T Make() {
    if constexpr (!std::is_pointer_v<T>) {
      return T{};
    } else if (m_nPointer++ == m_nNull && m_nPointer > 0) {
      return nullptr;
    } else {
      return Good(static_cast<T>(nullptr));
    }
  }

  const char* Good(const char*) { return m_aszTexts[m_nText++]; }
  const wchar_t* Good(const wchar_t*) { return L""; }
  void* Good(void*) { return m_nPointer == 0 ? m_h : Good(static_cast<double*>(nullptr)); }
  /// Room for whatever is written, even an image; read as a size it says 256 bytes.
  template <typename T>
  T* Good(T*) {
    static std::vector<double> s_aaRooms[5];
    std::vector<double>& rRoom = s_aaRooms[m_nPointer];
    rRoom.resize(1600 * 1600 / sizeof(double));
    const unsigned int nSize = 256;
    std::memcpy(rRoom.data(), &nSize, sizeof(nSize));
    return reinterpret_cast<T*>(rRoom.data());
  }

  void* m_h;
  bool m_bHandle;
  const char* m_aszTexts[2] = {"nAutoCaptureBeep", "1"};
  int m_nNull = -1;
  int m_nPointer = 0;
  int m_nText = 0;
};

/// The texts of numbers take no pointer.
long CallOf(ClArguments&, const char* (*)(long), int) {
  return 0;
}
long CallOf(ClArguments&, const wchar_t* (*)(long), int) {
  return 0;
}
template <typename... TArguments>
long CallOf(ClArguments& oArguments, long (*pfn)(TArguments...), int nNull) {
  return oArguments.Call(pfn, nNull);
}

#define KLV_NUMBERS(...) __VA_ARGS__

TEST_F(OpenScanner, EveryHandleFunctionRefusesWrongHandles) {
  void* hStale = m_h;
  ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
  char aForeign[64] = "LS_VT40";
#define KLV_EXPORTED(name, handle, nulls)                                                                    \
  if (handle) {                                                                                              \
    for (void* h : {static_cast<void*>(nullptr), static_cast<void*>(aForeign), hStale}) {                    \
      ClArguments oArguments(h, handle, #name);                                                              \
      EXPECT_EQ(CallOf(oArguments, name, -1), h == nullptr ? KLV_ERROR_NO_HANDLE : KLV_ERROR_INVALID_HANDLE) \
          << #name;                                                                                          \
    }                                                                                                        \
  }
#include "KelvarinLiveScannerVT40/ExportedFunctions.inc"
#undef KLV_EXPORTED
}

TEST_F(OpenScanner, EveryPointerThatMustNotBeNullIsRefusedWithItsNumber) {
#define KLV_EXPORTED(name, handle, nulls)                                                                 \
  {                                                                                                       \
    const std::vector<long> aNumbers = {KLV_NUMBERS nulls};                                               \
    for (size_t n = 0; n < aNumbers.size(); ++n) {                                                        \
      ClArguments oArguments(m_h, handle, #name);                                                         \
      EXPECT_EQ(CallOf(oArguments, name, static_cast<int>(n)), aNumbers[n]) << #name << " pointer " << n; \
    }                                                                                                     \
  }
#include "KelvarinLiveScannerVT40/ExportedFunctions.inc"
#undef KLV_EXPORTED
}

}  // namespace
