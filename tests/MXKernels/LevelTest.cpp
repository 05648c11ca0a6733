// Tests of the level choice.
#include <cstdlib>

#include "KernelRows.h"

using namespace MXKernels;

TEST(Level, TheEnvironmentCapsTheFirstChoiceAndRubbishCapsNothing) {
  const ClLevelGuard oGuard;
  const char* szOld = std::getenv("KELVARIN_SDK_SIMD");
  const std::string sOld = szOld ? szOld : "";
  const auto Choose = [](const char* szCap) {
    setenv("KELVARIN_SDK_SIMD", szCap, 1);
    Detail::g_nLevel.store(eLevelCount);
    return Level();
  };
  EXPECT_EQ(Choose("scalar"), eLevelScalar);
  EXPECT_LE(Choose("SSE4"), eLevelSse4);
  EXPECT_LE(Choose("avx2"), eLevelAvx2);
  const ELevel eBest = Choose("fast, please");
  for (int n = eBest + 1; n < eLevelCount; ++n) EXPECT_FALSE(HasLevel(static_cast<ELevel>(n)));
  EXPECT_TRUE(HasLevel(eBest));
  szOld ? setenv("KELVARIN_SDK_SIMD", sOld.c_str(), 1) : unsetenv("KELVARIN_SDK_SIMD");
}

TEST(Level, ALevelThatIsMissingIsRefusedAndTheOldOneStays) {
  const ClLevelGuard oGuard;
  ASSERT_TRUE(SetLevel(eLevelScalar));
  for (int n = 0; n < eLevelCount; ++n) {
    const auto eLevel = static_cast<ELevel>(n);
    EXPECT_EQ(SetLevel(eLevel), HasLevel(eLevel));
    EXPECT_EQ(Level() == eLevel, HasLevel(eLevel));
  }
}
