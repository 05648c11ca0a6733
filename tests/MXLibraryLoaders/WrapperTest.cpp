// The bindings of the scan library and of the liveness library: which functions they ask for, and what they
// do without.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <string>
#include <type_traits>
#include <vector>

#include "KelvarinFakeFingerDetectionVT40/FDVT40.h"
#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Wrapper.h"
#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
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

template <typename TWrapper>
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
  EXPECT_STREQ(Scan::m_ssLibName, "libkelvarinvtscanapi.gcc.Release.32.so");
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

std::string LibraryWithout(const std::string& szFunction) {
  std::string szFile = KLV_LIVENESS_COMPLETE;
  szFile.replace(szFile.rfind("COMPLETE"), 8, szFunction);
  return szFile;
}

// The simulator declares its functions without the binding's table, so that a mistake in the table shows.
#define KLV_SAME_TYPE(Name, ...) static_assert(std::is_same_v<decltype(Liveness::Name), decltype(&::Name)>);
KLV_FAKEFINGERDETECTIONVT40_FUNCTIONS(KLV_SAME_TYPE)
#undef KLV_SAME_TYPE

TEST(KelvarinFakeFingerDetectionVT40Wrapper, EveryPointerIsBoundToTheFunctionOfItsName) {
  EXPECT_STREQ(Liveness::m_ssLibName, "libkelvarinfakefingerdetectionvt40.gcc.Release.32.so");
  const Liveness oWrapper(nullptr, KLV_LIVENESS_COMPLETE);
  EXPECT_EQ(LivenessFunctions().size(), 19u);
  ExpectBoundByName(LivenessFunctions());
}

TEST(KelvarinFakeFingerDetectionVT40Wrapper, ALibraryThatLacksAnyFunctionIsNotBoundAndTheFunctionIsNamed) {
  for (const ClFunction& oFunction : LivenessFunctions()) {
    const std::string szLibrary = LibraryWithout(oFunction.szName);
    EXPECT_THAT(Raised([&] { Liveness(nullptr, szLibrary.c_str()); }),
                testing::Pair(-206, testing::EndsWith("\n" + oFunction.szName)));
    EXPECT_TRUE(NothingIsBound<Liveness>(LivenessFunctions())) << oFunction.szName;
  }
}

}  // namespace
