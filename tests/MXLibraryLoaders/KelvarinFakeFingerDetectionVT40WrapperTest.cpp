// The binding of the liveness library: it wants all of its functions or none.
#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Wrapper.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MXTools/Exception.h"

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
  void* hDetection = nullptr;
  EXPECT_EQ(Wrapper::FD_VT40Initialize(nullptr), 1);
  EXPECT_EQ(Wrapper::FD_VT40CreateFakeDetectionVT40Handle(&hDetection), 3);
  const unsigned char nPixel = 3, nMask = 4;
  double dScore = 0.0;
  EXPECT_EQ(Wrapper::FD_VT40GetFakeFingerDetectionScore(hDetection, 1, 2, &nPixel, &nMask, &dScore), 5);
  EXPECT_EQ(dScore, 1234.0);
  EXPECT_EQ(Wrapper::FD_VT40SetPropertyA(hDetection, "\1", "\2"), 102);
  EXPECT_EQ(Wrapper::FD_VT40SetPropertyW(hDetection, L"\1", L"\2"), 202);
  EXPECT_EQ(Wrapper::FD_VT40SetPropertyLongA(hDetection, "\1", 7), 307);
  EXPECT_EQ(Wrapper::FD_VT40SetPropertyLongW(hDetection, L"\1", 7), 407);
  EXPECT_EQ(Wrapper::FD_VT40SetPropertyDoubleA(hDetection, "\1", 7.0), 507);
  EXPECT_EQ(Wrapper::FD_VT40SetPropertyDoubleW(hDetection, L"\1", 7.0), 607);
  char szText[2] = "";
  wchar_t wszText[2] = L"";
  unsigned nSize = 1;
  EXPECT_EQ(Wrapper::FD_VT40GetPropertyA(hDetection, "a", szText, &nSize), 12);
  EXPECT_STREQ(szText, "a");
  nSize = 1;
  EXPECT_EQ(Wrapper::FD_VT40GetPropertyW(hDetection, L"b", wszText, &nSize), 13);
  EXPECT_STREQ(wszText, L"b");
  long nValue = 0;
  EXPECT_EQ(Wrapper::FD_VT40GetPropertyLongA(hDetection, "\3", &nValue), 14);
  EXPECT_EQ(nValue, 30);
  EXPECT_EQ(Wrapper::FD_VT40GetPropertyLongW(hDetection, L"\3", &nValue), 15);
  EXPECT_EQ(nValue, 60);
  double dValue = 0.0;
  EXPECT_EQ(Wrapper::FD_VT40GetPropertyDoubleA(hDetection, "\3", &dValue), 16);
  EXPECT_EQ(dValue, 1.5);
  EXPECT_EQ(Wrapper::FD_VT40GetPropertyDoubleW(hDetection, L"\3", &dValue), 17);
  EXPECT_EQ(dValue, 0.75);
  EXPECT_STREQ(Wrapper::FD_VT40GetErrorDescriptionA(-60), "narrow");
  EXPECT_STREQ(Wrapper::FD_VT40GetErrorDescriptionW(-60), L"wide");
  EXPECT_EQ(Wrapper::FD_VT40DestroyHandle(&hDetection), 4);
  EXPECT_EQ(Wrapper::FD_VT40Uninitialize(), 2);
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, ALibraryThatLacksAnyFunctionIsNotBoundAndTheFunctionIsNamed) {
  for (const ClFunction& oFunction : Functions()) {
    try {
      const Wrapper oWrapper(nullptr, LibraryWithout(oFunction.szName).c_str());
      ADD_FAILURE() << oFunction.szName;
    } catch (const ClExDynamicLibraryLoadFail& e) {
      EXPECT_EQ(e.Number(), -206);
      EXPECT_THAT(e.What(), testing::EndsWith("\n" + oFunction.szName));
    }
    EXPECT_TRUE(NothingIsBound()) << oFunction.szName;
  }
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, WithoutTheLibraryOpeningRaisesAndLeavesNothingBound) {
  Wrapper oWrapper;
  try {
    oWrapper.OpenLibrary("/none;/neither", Wrapper::m_ssLibName);
    ADD_FAILURE();
  } catch (const ClExDynamicLibraryLoadFail& e) {
    EXPECT_EQ(e.Number(), -200);
  }
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
  ASSERT_NE(Wrapper::FD_VT40Uninitialize, nullptr);
  EXPECT_EQ(Wrapper::FD_VT40Uninitialize(), 2);
  oSecond.CloseLibrary();
  EXPECT_TRUE(NothingIsBound());
}

}  // namespace
