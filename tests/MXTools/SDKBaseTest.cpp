// The frame of an SDK: its beginning, its end and its version.
#include <gtest/gtest.h>

#include "Raised.h"
#include "TestSDK.h"

namespace {

TEST(Singleton, InitialisesOnceAndUninitialisesWithTheLastReference) {
  ClTestSDK::s_nInitialized = ClTestSDK::s_nUninitialized = 0;
  EXPECT_EQ(ClTestSDK::Initialize(nullptr) + ClTestSDK::Initialize(nullptr), 0);
  EXPECT_EQ(ClTestSDK::Uninitialize(), 0);
  EXPECT_EQ(ClTestSDK::s_nUninitialized, 0);
  EXPECT_EQ(ClTestSDK::Uninitialize(), 0);
  EXPECT_EQ(std::make_pair(ClTestSDK::s_nInitialized, ClTestSDK::s_nUninitialized), std::make_pair(1, 1));
  EXPECT_EQ(ClTestSDK::Uninitialize(), -2);
}

TEST(Singleton, AFailedInitialisationOfAnyKindIsUndone) {
  ClTestSDK::s_nFailure = 1;
  EXPECT_EQ(ClTestSDK::Initialize(nullptr), -60);
  EXPECT_EQ(ClTestSDK::ReferenceCount(), 0u);
  ClTestSDK::s_nFailure = 2;
  EXPECT_THROW(ClTestSDK::Initialize(nullptr), std::runtime_error);
  EXPECT_EQ(ClTestSDK::ReferenceCount(), 0u);
  ClTestSDK::s_nFailure = 0;
  EXPECT_EQ(ClTestSDK::Initialize(nullptr), 0);
  EXPECT_EQ(ClTestSDK::Uninitialize(), 0);
}

TEST(SDKBase, TheVersionStandsBetweenItsMarkerAndTheNextBlank) {
  char szVersion[8] = "xxxxxxx";
  unsigned int nSize = 0;
  EXPECT_EQ(NumberOf([&] { ClTestSDK::GetVersion(szVersion, &nSize); }), -21);
  EXPECT_EQ(nSize, 4u);
  ClTestSDK::GetVersion(szVersion, &nSize);
  EXPECT_STREQ(szVersion, "7.8");
  EXPECT_EQ(NumberOf([&] { ClTestSDK::GetVersion(szVersion, nullptr); }), -24);
  const char* szGood = ClTestSDK::m_szLongVersion;
  ClTestSDK::m_szLongVersion = "SDK: Test Version: 7.8";
  EXPECT_EQ(NumberOf([&] { ClTestSDK::GetVersion(szVersion, &nSize); }), -101)
      << "no blank behind the number";
  EXPECT_EQ(ClTestSDK::Initialize(nullptr), -101);
  EXPECT_EQ(ClTestSDK::ReferenceCount(), 1u) << "the reference stays counted";
  ClTestSDK::m_szLongVersion = szGood;
  EXPECT_EQ(ClTestSDK::Uninitialize(), 0);
}

}  // namespace
