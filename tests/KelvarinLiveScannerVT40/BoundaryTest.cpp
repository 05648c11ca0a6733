// Every exported function against wrong handles and NULL pointers, from the table of exported functions.
#include <array>
#include <cstring>
#include <map>
#include <tuple>
#include <type_traits>

#include "ApiFixture.h"

namespace {

/// Good arguments for any function, one of which may be made NULL.
class ClArguments {
 public:
  ClArguments(void* h, bool bHandle, const char* szFunction) : m_h(h), m_bHandle(bHandle) {
    m_aImage.resize(1600 * 1600);
    m_aNumbers.fill(sizeof(m_szText));
    const std::map<std::string, std::pair<const char*, const char*>> aTexts = {
        {"LS_VT40CompatibilityCheck", {"2.0", ""}},
        {"LS_VT40OpenScanner", {"VT40-AB0001", ""}},
        {"LS_VT40GetPropertyDoubleA", {"dSignatureDetectTime", ""}},
        {"LS_VT40SetPropertyDoubleA", {"dSignatureDetectTime", ""}}};
    const auto pTexts = aTexts.find(szFunction);
    m_oTexts = pTexts != aTexts.end() ? pTexts->second : std::make_pair("nAutoCaptureBeep", "1");
  }

  /// Calls with the pointer argument of number nNull, counted without the handle, as NULL; -1 for none.
  template <typename... TArguments>
  long Call(long (*pfn)(TArguments...), int nNull) {
    m_nNull = nNull;
    m_nPointer = m_bHandle ? -1 : 0;
    m_nText = 0;
    m_nNumber = 0;
    // Braces: the arguments are made in their order.
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

  void* Good(void*) { return m_nPointer == 0 ? m_h : m_aImage.data(); }
  const char* Good(const char*) { return m_nText++ == 0 ? m_oTexts.first : m_oTexts.second; }
  const wchar_t* Good(const wchar_t*) { return L""; }
  wchar_t* Good(wchar_t*) { return m_wszText; }
  char* Good(char*) { return m_szText; }
  unsigned char* Good(unsigned char*) { return reinterpret_cast<unsigned char*>(m_szText); }
  unsigned int* Good(unsigned int*) { return &m_aNumbers[m_nNumber++]; }
  int* Good(int*) { return &m_nInt; }
  long* Good(long*) { return &m_nLong; }
  double* Good(double*) { return &m_dDouble; }
  void** Good(void**) { return &m_hOther; }

  void* m_h;
  bool m_bHandle;
  std::pair<const char*, const char*> m_oTexts;
  std::vector<unsigned char> m_aImage;
  char m_szText[256] = "";
  wchar_t m_wszText[16] = L"";
  std::array<unsigned int, 4> m_aNumbers;
  int m_nInt = 0;
  long m_nLong = 0;
  double m_dDouble = 0;
  void* m_hOther = nullptr;
  int m_nNull = -1;
  int m_nPointer = 0;
  int m_nText = 0;
  unsigned int m_nNumber = 0;
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
