// The binding of the scan library: which functions it asks for, and what it does without them.
#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Raised.h"

namespace {

using Wrapper = ClKelvarinVTScanAPIWrapper;

struct ClFunction {
  std::string szName;
  bool bRequired;
  void* pBound;
};

std::vector<ClFunction> Functions() {
  std::vector<ClFunction> aFunctions;
#define KLV_LIST_REQUIRED(Name, Result, Arguments) \
  aFunctions.push_back({#Name, true, reinterpret_cast<void*>(Wrapper::Name)});
#define KLV_LIST_OPTIONAL(Name, Result, Arguments) \
  aFunctions.push_back({#Name, false, reinterpret_cast<void*>(Wrapper::Name)});
  KLV_VTSCANAPI_FUNCTIONS(KLV_LIST_REQUIRED, KLV_LIST_OPTIONAL)
#undef KLV_LIST_OPTIONAL
#undef KLV_LIST_REQUIRED
  return aFunctions;
}

bool NothingIsBound() {
  for (const ClFunction& oFunction : Functions())
    if (oFunction.pBound != nullptr) return false;
  return Wrapper::ReferenceCount() == 0;
}

TEST(KelvarinVTScanAPIWrapper, EveryPointerIsBoundToTheFunctionOfItsName) {
  EXPECT_TRUE(NothingIsBound());
  {
    const Wrapper oWrapper(nullptr, KLV_LIBRARY_COMPLETE);
    int nRequired = 0, nOptional = 0;
    for (const ClFunction& oFunction : Functions()) {
      ++(oFunction.bRequired ? nRequired : nOptional);
      Dl_info oInfo = {};
      ASSERT_NE(oFunction.pBound, nullptr) << oFunction.szName;
      ASSERT_NE(dladdr(oFunction.pBound, &oInfo), 0);
      EXPECT_EQ(oFunction.szName, oInfo.dli_sname);
    }
    EXPECT_EQ(nRequired, 26);
    EXPECT_EQ(nOptional, 15);
  }
  EXPECT_TRUE(NothingIsBound());
}

TEST(KelvarinVTScanAPIWrapper, OptionalFunctionsMayBeMissing) {
  const Wrapper oWrapper(nullptr, KLV_LIBRARY_WITHOUT_OPTIONAL);
  for (const ClFunction& oFunction : Functions())
    EXPECT_EQ(oFunction.pBound != nullptr, oFunction.bRequired) << oFunction.szName;
}

TEST(KelvarinVTScanAPIWrapper, AMissingRequiredFunctionIsNamedAndLeavesNothingBound) {
  EXPECT_THAT(Raised([] { Wrapper(nullptr, KLV_LIBRARY_WITHOUT_REQUIRED); }),
              testing::Pair(-206, testing::EndsWith("\nVTScanAPIGetPlugStatus")));
  EXPECT_TRUE(NothingIsBound());
}

TEST(KelvarinVTScanAPIWrapper, TheLibraryIsFoundAlongTheSearchPathByItsName) {
  EXPECT_STREQ(Wrapper::m_ssLibName, "libkelvarinvtscanapi.gcc.Release.32.so");
  const std::string szFile = KLV_LIBRARY_COMPLETE;
  const size_t nName = szFile.rfind('/') + 1;
  const std::string szPath = "/none;" + szFile.substr(0, nName - 1);
  Wrapper oWrapper;
  oWrapper.OpenLibrary(szPath.c_str(), szFile.c_str() + nName);
  EXPECT_EQ(Wrapper::VTScanAPIGetErrorDescriptionA(0), std::string("described"));
  EXPECT_EQ(Wrapper::VTScanAPISetPropertyDoubleA(nullptr, "name", 0.5), 0);
}

}  // namespace
