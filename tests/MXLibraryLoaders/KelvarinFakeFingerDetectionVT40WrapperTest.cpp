// The binding of the liveness library: it wants all of its functions or none.
#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Wrapper.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MXTools/DynamicLibrary.h"
#include "MXTools/Exception.h"
#include "Raised.h"

namespace {

using Wrapper = ClKelvarinFakeFingerDetectionVT40Wrapper;

struct ClFunction {
  std::string szName;
  void* pBound;
};

std::vector<ClFunction> Functions() {
#define KLV_LIST(Name, Result, Arguments) {#Name, reinterpret_cast<void*>(Wrapper::Name)},
  return {KLV_FAKEFINGERDETECTIONVT40_FUNCTIONS(KLV_LIST)};
#undef KLV_LIST
}

bool NothingIsBound() {
  for (const ClFunction& oFunction : Functions())
    if (oFunction.pBound != nullptr) return false;
  return Wrapper::ReferenceCount() == 0;
}

std::string LibraryWithout(const std::string& szFunction) {
  std::string szFile = KLV_LIVENESS_COMPLETE;
  szFile.replace(szFile.rfind("COMPLETE"), 8, szFunction);
  return szFile;
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, EveryFunctionIsCalledAsTheLibraryDefinesIt) {
  EXPECT_STREQ(Wrapper::m_ssLibName, "libkelvarinfakefingerdetectionvt40.gcc.Release.32.so");
  const Wrapper oWrapper(nullptr, KLV_LIVENESS_COMPLETE);
  EXPECT_EQ(Functions().size(), 19u);
  for (const ClFunction& oFunction : Functions()) {
    Dl_info oInfo = {};
    ASSERT_NE(dladdr(oFunction.pBound, &oInfo), 0) << oFunction.szName;
    EXPECT_EQ(oFunction.szName, oInfo.dli_sname);
  }
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
  Wrapper::FD_VT40Initialize(nullptr);
  Wrapper::FD_VT40CreateFakeDetectionVT40Handle(&h);
  Wrapper::FD_VT40GetFakeFingerDetectionScore(h, 1, 2, pHandle(3), pHandle(4), &dValue);
  Wrapper::FD_VT40SetPropertyA(h, "n", "v");
  Wrapper::FD_VT40SetPropertyW(h, L"n", L"v");
  Wrapper::FD_VT40SetPropertyLongA(h, "n", -1);
  Wrapper::FD_VT40SetPropertyLongW(h, L"n", -2);
  Wrapper::FD_VT40SetPropertyDoubleA(h, "n", 0.5);
  Wrapper::FD_VT40SetPropertyDoubleW(h, L"n", 1.5);
  Wrapper::FD_VT40GetPropertyA(h, "n", szText, &nSize);
  Wrapper::FD_VT40GetPropertyW(h, L"n", wszText, &nSize);
  Wrapper::FD_VT40GetPropertyLongA(h, "n", &nValue);
  Wrapper::FD_VT40GetPropertyLongW(h, L"n", &nValue);
  Wrapper::FD_VT40GetPropertyDoubleA(h, "n", &dValue);
  Wrapper::FD_VT40GetPropertyDoubleW(h, L"n", &dValue);
  Wrapper::FD_VT40DestroyHandle(&h);
  Wrapper::FD_VT40Uninitialize();
  std::string szCalls = pRecord();
  for (size_t n; (n = szCalls.find("FD_VT40")) != std::string::npos;) szCalls.erase(n, 7);
  EXPECT_EQ(
      szCalls,
      "Initialize(0)CreateFakeDetectionVT40Handle(*5)GetFakeFingerDetectionScore(5,1,2,3,4,*7)"
      "SetPropertyA(5,n,v)SetPropertyW(5,Ln,Lv)SetPropertyLongA(5,n,-1)SetPropertyLongW(5,Ln,-2)"
      "SetPropertyDoubleA(5,n,0.5)SetPropertyDoubleW(5,Ln,1.5)GetPropertyA(5,n,a,*9)GetPropertyW(5,Ln,Lb,*9)"
      "GetPropertyLongA(5,n,*8)GetPropertyLongW(5,Ln,*8)GetPropertyDoubleA(5,n,*7)GetPropertyDoubleW(5,Ln,*7)"
      "DestroyHandle(*5)Uninitialize()");
  EXPECT_STREQ(Wrapper::FD_VT40GetErrorDescriptionA(-60), "narrow");
  EXPECT_STREQ(Wrapper::FD_VT40GetErrorDescriptionW(-60), L"wide");
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, ALibraryThatLacksAnyFunctionIsNotBoundAndTheFunctionIsNamed) {
  for (const ClFunction& oFunction : Functions()) {
    const std::string szLibrary = LibraryWithout(oFunction.szName);
    EXPECT_THAT(Raised([&] { Wrapper(nullptr, szLibrary.c_str()); }),
                testing::Pair(-206, testing::EndsWith("\n" + oFunction.szName)));
    EXPECT_TRUE(NothingIsBound()) << oFunction.szName;
  }
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, WithoutTheLibraryOpeningRaisesAndLeavesNothingBound) {
  Wrapper oWrapper;
  EXPECT_EQ(NumberOf([&] { oWrapper.OpenLibrary("/none;/neither", Wrapper::m_ssLibName); }), -200);
  EXPECT_TRUE(NothingIsBound());
  EXPECT_FALSE(oWrapper.IsOpen());
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, TwoEnginesShareOneLoadUntilTheLastIsGone) {
  Wrapper oSecond;
  {
    Wrapper oFirst(nullptr, KLV_LIVENESS_COMPLETE);
    oSecond.OpenLibrary("/none", "the second path is not looked at");
    EXPECT_EQ(Wrapper::ReferenceCount(), 2u);
  }
  EXPECT_EQ(Wrapper::ReferenceCount(), 1u);
  EXPECT_NE(Wrapper::FD_VT40Uninitialize, nullptr);
  oSecond.CloseLibrary();
  EXPECT_TRUE(NothingIsBound());
}

}  // namespace
