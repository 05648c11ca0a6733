// The bindings of the scan library and of the liveness library: which functions they ask for, and what they do without.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Wrapper.h"
#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXTools/DynamicLibrary.h"
#include "Raised.h"

namespace {

using Scan = ClKelvarinVTScanAPIWrapper;
using Liveness = ClKelvarinFakeFingerDetectionVT40Wrapper;

struct ClFunction {
  std::string szName;
  bool bRequired;
  void* pBound;
};

std::vector<ClFunction> ScanFunctions() {
#define KLV_LIST_REQUIRED(Name, Result, Arguments) {#Name, true, reinterpret_cast<void*>(Scan::Name)},
#define KLV_LIST_OPTIONAL(Name, Result, Arguments) {#Name, false, reinterpret_cast<void*>(Scan::Name)},
  return {KLV_VTSCANAPI_FUNCTIONS(KLV_LIST_REQUIRED, KLV_LIST_OPTIONAL)};
#undef KLV_LIST_OPTIONAL
#undef KLV_LIST_REQUIRED
}

std::vector<ClFunction> LivenessFunctions() {
#define KLV_LIST(Name, Result, Arguments) {#Name, true, reinterpret_cast<void*>(Liveness::Name)},
  return {KLV_FAKEFINGERDETECTIONVT40_FUNCTIONS(KLV_LIST)};
#undef KLV_LIST
}

template <class TWrapper>
bool NothingIsBound(const std::vector<ClFunction>& aFunctions) {
  for (const ClFunction& oFunction : aFunctions)
    if (oFunction.pBound != nullptr) return false;
  return TWrapper::ReferenceCount() == 0;
}

/// Whether each pointer is bound to the function of its name.
void ExpectBoundByName(const std::vector<ClFunction>& aFunctions) {
  for (const ClFunction& oFunction : aFunctions) {
    Dl_info oInfo = {};
    ASSERT_NE(dladdr(oFunction.pBound, &oInfo), 0) << oFunction.szName;
    EXPECT_EQ(oFunction.szName, oInfo.dli_sname);
  }
}

TEST(KelvarinVTScanAPIWrapper, EveryPointerIsBoundToTheFunctionOfItsName) {
  EXPECT_TRUE(NothingIsBound<Scan>(ScanFunctions()));
  {
    const Scan oScan(nullptr, KLV_LIBRARY_COMPLETE);
    ExpectBoundByName(ScanFunctions());
    EXPECT_EQ(ScanFunctions().size(), 26u + 15);
  }
  EXPECT_TRUE(NothingIsBound<Scan>(ScanFunctions()));
}

TEST(KelvarinVTScanAPIWrapper, OptionalFunctionsMayBeMissing) {
  const Scan oScan(nullptr, KLV_LIBRARY_WITHOUT_OPTIONAL);
  for (const ClFunction& oFunction : ScanFunctions())
    EXPECT_EQ(oFunction.pBound != nullptr, oFunction.bRequired) << oFunction.szName;
}

TEST(KelvarinVTScanAPIWrapper, AMissingRequiredFunctionIsNamedAndLeavesNothingBound) {
  EXPECT_THAT(Raised([] { Scan(nullptr, KLV_LIBRARY_WITHOUT_REQUIRED); }),
              testing::Pair(-206, testing::EndsWith("\nVTScanAPIGetPlugStatus")));
  EXPECT_TRUE(NothingIsBound<Scan>(ScanFunctions()));
}

TEST(KelvarinVTScanAPIWrapper, TheLibraryIsFoundAlongTheSearchPathByItsName) {
  EXPECT_STREQ(Scan::m_ssLibName, "libkelvarinvtscanapi.gcc.Release.32.so");
  const std::string szFile = KLV_LIBRARY_COMPLETE;
  const size_t nName = szFile.rfind('/') + 1;
  const std::string szPath = "/none;" + szFile.substr(0, nName - 1);
  Scan oWrapper;
  oWrapper.OpenLibrary(szPath.c_str(), szFile.c_str() + nName);
  EXPECT_EQ(Scan::VTScanAPIGetErrorDescriptionA(0), std::string("described"));
  EXPECT_EQ(Scan::VTScanAPISetPropertyDoubleA(nullptr, "name", 0.5), 0);
}

std::string LibraryWithout(const std::string& szFunction) {
  std::string szFile = KLV_LIVENESS_COMPLETE;
  szFile.replace(szFile.rfind("COMPLETE"), 8, szFunction);
  return szFile;
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, EveryFunctionIsCalledAsTheLibraryDefinesIt) {
  EXPECT_STREQ(Liveness::m_ssLibName, "libkelvarinfakefingerdetectionvt40.gcc.Release.32.so");
  const Liveness oLiveness(nullptr, KLV_LIVENESS_COMPLETE);
  EXPECT_EQ(LivenessFunctions().size(), 19u);
  ExpectBoundByName(LivenessFunctions());
  ClDynamicLibrary oControl(KLV_LIVENESS_COMPLETE);
  void* (*pHandle)(int) = nullptr;
  const char* (*pRecord)() = nullptr;
  oControl.GetFunction(pHandle, "TestHandle");
  oControl.GetFunction(pRecord, "TestRecord");
  void* h = pHandle(5);
  char szText[] = "a";
  wchar_t wszText[] = L"b";
  unsigned nSize = 9;
  long nValue = 8;
  double dValue = 7;
  Liveness::FD_VT40Initialize(nullptr);
  Liveness::FD_VT40CreateFakeDetectionVT40Handle(&h);
  Liveness::FD_VT40GetFakeFingerDetectionScore(h, 1, 2, pHandle(3), pHandle(4), &dValue);
  Liveness::FD_VT40SetPropertyA(h, "n", "v");
  Liveness::FD_VT40SetPropertyW(h, L"n", L"v");
  Liveness::FD_VT40SetPropertyLongA(h, "n", -1);
  Liveness::FD_VT40SetPropertyLongW(h, L"n", -2);
  Liveness::FD_VT40SetPropertyDoubleA(h, "n", 0.5);
  Liveness::FD_VT40SetPropertyDoubleW(h, L"n", 1.5);
  Liveness::FD_VT40GetPropertyA(h, "n", szText, &nSize);
  Liveness::FD_VT40GetPropertyW(h, L"n", wszText, &nSize);
  Liveness::FD_VT40GetPropertyLongA(h, "n", &nValue);
  Liveness::FD_VT40GetPropertyLongW(h, L"n", &nValue);
  Liveness::FD_VT40GetPropertyDoubleA(h, "n", &dValue);
  Liveness::FD_VT40GetPropertyDoubleW(h, L"n", &dValue);
  Liveness::FD_VT40DestroyHandle(&h);
  Liveness::FD_VT40Uninitialize();
  std::string szCalls = pRecord();
  for (size_t n; (n = szCalls.find("FD_VT40")) != std::string::npos;) szCalls.erase(n, 7);
  EXPECT_EQ(
      szCalls,
      "Initialize(0)CreateFakeDetectionVT40Handle(*5)GetFakeFingerDetectionScore(5,1,2,3,4,*7)"
      "SetPropertyA(5,n,v)SetPropertyW(5,Ln,Lv)SetPropertyLongA(5,n,-1)SetPropertyLongW(5,Ln,-2)"
      "SetPropertyDoubleA(5,n,0.5)SetPropertyDoubleW(5,Ln,1.5)GetPropertyA(5,n,a,*9)GetPropertyW(5,Ln,Lb,*9)"
      "GetPropertyLongA(5,n,*8)GetPropertyLongW(5,Ln,*8)GetPropertyDoubleA(5,n,*7)GetPropertyDoubleW(5,Ln,*7)"
      "DestroyHandle(*5)Uninitialize()");
  EXPECT_STREQ(Liveness::FD_VT40GetErrorDescriptionA(-60), "narrow");
  EXPECT_STREQ(Liveness::FD_VT40GetErrorDescriptionW(-60), L"wide");
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, ALibraryThatLacksAnyFunctionIsNotBoundAndTheFunctionIsNamed) {
  for (const ClFunction& oFunction : LivenessFunctions()) {
    const std::string szLibrary = LibraryWithout(oFunction.szName);
    EXPECT_THAT(Raised([&] { Liveness(nullptr, szLibrary.c_str()); }),
                testing::Pair(-206, testing::EndsWith("\n" + oFunction.szName)));
    EXPECT_TRUE(NothingIsBound<Liveness>(LivenessFunctions())) << oFunction.szName;
  }
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, WithoutTheLibraryOpeningRaisesAndLeavesNothingBound) {
  Liveness oWrapper;
  EXPECT_EQ(NumberOf([&] { oWrapper.OpenLibrary("/none;/neither", Liveness::m_ssLibName); }), -200);
  EXPECT_TRUE(NothingIsBound<Liveness>(LivenessFunctions()));
  EXPECT_FALSE(oWrapper.IsOpen());
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, TwoEnginesShareOneLoadUntilTheLastIsGone) {
  Liveness oSecond;
  {
    Liveness oFirst(nullptr, KLV_LIVENESS_COMPLETE);
    oSecond.OpenLibrary("/none", "the second path is not looked at");
    EXPECT_EQ(Liveness::ReferenceCount(), 2u);
  }
  EXPECT_EQ(Liveness::ReferenceCount(), 1u);
  EXPECT_NE(Liveness::FD_VT40Uninitialize, nullptr);
  oSecond.CloseLibrary();
  EXPECT_TRUE(NothingIsBound<Liveness>(LivenessFunctions()));
}

}  // namespace
