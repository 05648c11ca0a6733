// Handles of the small SDK, open and closed, and their properties.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "MXTools/SDKHandleBase.h"
#include "Raised.h"
#include "TestSDK.h"

namespace {

class ClTestHandle
    : public TSDKHandleBase<ClTestHandle, ClTestSDK, TSDKHandleBaseBase<ClTestHandle, ClTestSDK>> {
 public:
  static constexpr char m_szSignature[8] = "TESTSDK";
  using SafeHandle = TpSafeHandle<ClTestHandle, m_szSignature, m_szSignature>;

  void OnQueryPropertys(ClParameterContainer& oContainer) override {
    oContainer.AddNumeric("nNumber", &m_nNumber)->SetUpperBoundary(10);
    oContainer.AddNumeric("dNumber", &m_dNumber);
    auto* pChoice = oContainer.AddParam<TpParameterEnumPointer<long, ClParameter>>("eChoice");
    pChoice->BindVariable(&m_nChoice);
    pChoice->AddValue(1, "one");
    pChoice->AddValue(2, "two");
  }

  unsigned int m_nNumber = 3;
  double m_dNumber = 0.25;
  long m_nChoice = 1;
};

class Handle : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ClTestSDK::Initialize(nullptr), 0);
    ClTestHandle::CreateHandle(&m_h);
  }
  void TearDown() override {
    if (m_h != nullptr) ClTestHandle::DestroyHandle(&m_h);
    ClTestSDK::Uninitialize();
  }
  ClTestHandle& Object() { return *ClTestHandle::GetClassBase(m_h); }

  void* m_h = nullptr;
};

TEST_F(Handle, OnlyOpenHandlesOfThisKindAreTaken) {
  EXPECT_EQ(NumberOf([] { ClTestHandle::GetClassBase(nullptr); }), -42);
  char aForeign[64] = "TESTSDK";
  EXPECT_EQ(NumberOf([&] { ClTestHandle::GetClassBase(aForeign); }), -43);
  std::memcpy(aForeign, m_h, 8 + sizeof(void*));
  EXPECT_EQ(NumberOf([&] { ClTestHandle::GetClassBase(aForeign); }), -43)
      << "the second signature alone is wrong";
  void* hStale = m_h;
  ClTestHandle::DestroyHandle(&m_h);
  EXPECT_EQ(m_h, nullptr);
  EXPECT_EQ(NumberOf([&] { ClTestHandle::GetClassBase(hStale); }), -43);
  EXPECT_EQ(NumberOf([&] { ClTestHandle::DestroyHandle(&hStale); }), -43);
  EXPECT_EQ(NumberOf([] { ClTestHandle::DestroyHandle(nullptr); }), -44);
}

TEST_F(Handle, AClosedOneIsRefusedWhileThousandsOfOthersCome) {
  void* hFirst = m_h;
  ClTestHandle::DestroyHandle(&m_h);
  int nRefused = 0;
  for (void* h = nullptr; nRefused < 10000; ++nRefused) {
    ClTestHandle::CreateHandle(&h);
    const bool bRefused = h != hFirst && NumberOf([&] { ClTestHandle::GetClassBase(hFirst); }) == -43;
    ClTestHandle::DestroyHandle(&h);
    if (!bRefused) break;
  }
  EXPECT_EQ(nRefused, 64 * 42 - 1);
}

TEST_F(Handle, NeedsAnInitialisedSDKAndAPlaceToGo) {
  EXPECT_EQ(NumberOf([] { ClTestHandle::CreateHandle(nullptr); }), -701);
  ClTestSDK::Uninitialize();
  void* h = &h;
  EXPECT_EQ(NumberOf([&] { ClTestHandle::CreateHandle(&h); }), -2);
  ClTestSDK::Initialize(nullptr);
}

TEST_F(Handle, PropertiesAnswerByNameInTheOrderOfTheChecks) {
  char szText[16] = "untouched";
  unsigned int nSize = 1;
  EXPECT_EQ(NumberOf([&] { Object().GetProperty("Version", szText, &nSize); }), -21);
  EXPECT_STREQ(szText, "untouched");
  EXPECT_EQ(nSize, 4u);
  Object().GetProperty("VERSION", szText, &nSize);
  EXPECT_STREQ(szText, "7.8");
  EXPECT_EQ(NumberOf([&] { Object().GetProperty(nullptr, szText, nullptr); }), -44);
  EXPECT_EQ(NumberOf([&] { Object().GetProperty("none", szText, nullptr); }), -206);
  EXPECT_EQ(NumberOf([&] { Object().GetProperty("Version", szText, nullptr); }), -24);
  EXPECT_EQ(NumberOf([&] { Object().SetProperty("Version", "x"); }), -47);
  EXPECT_EQ(NumberOf([&] { Object().SetProperty("nNumber", nullptr); }), -20);
  Object().SetProperty("nNumber", "0x1F");
  EXPECT_EQ(Object().m_nNumber, 31u);
}

TEST_F(Handle, NumbersAndChoicesGoThroughTheirOwnCalls) {
  long nValue = 0;
  Object().GetPropertyLong("eChoice", &nValue);
  EXPECT_EQ(nValue, 1);
  Object().SetPropertyLong("eChoice", 2);
  EXPECT_EQ(Object().m_nChoice, 2);
  EXPECT_EQ(NumberOf([&] { Object().SetPropertyLong("eChoice", 3); }), -35);
  EXPECT_EQ(NumberOf([&] { Object().GetPropertyLong("Version", &nValue); }), -44);
  EXPECT_EQ(NumberOf([&] { Object().GetPropertyLong("nNumber", nullptr); }), -23);
  EXPECT_EQ(NumberOf([&] { Object().SetPropertyDouble("nNumber", 1.0); }), -44);
  EXPECT_EQ(NumberOf([&] { Object().GetPropertyDouble("dNumber", nullptr); }), -23);
  EXPECT_EQ(NumberOf([&] { Object().SetPropertyBlob("nNumber", nullptr, 0); }), -44);
  EXPECT_EQ(NumberOf([&] { Object().Insert(0); }), -209);
}

TEST_F(Handle, PropertiesDescribeThemselves) {
  ClTestHandle::enumType_t eType;
  ClTestHandle::enumAccess_t eAccess;
  long nLow = -1, nHigh = -1;
  Object().GetPropertyType("dNumber", &eType);
  EXPECT_EQ(eType, ClTestHandle::eTypeDouble);
  Object().GetPropertyType("Version", &eType);
  EXPECT_EQ(eType, ClTestHandle::eTypeText);
  Object().GetPropertyAccess("Version", &eAccess);
  EXPECT_EQ(eAccess, ClTestHandle::eAccessRead);
  Object().GetPropertyRangeLong("nNumber", &nLow, &nHigh);
  EXPECT_EQ(nLow, 0);
  EXPECT_EQ(nHigh, 10);
  EXPECT_EQ(NumberOf([&] { Object().GetPropertyRangeLong("nNumber", nullptr, nullptr); }), -23);
  EXPECT_EQ(NumberOf([&] { Object().GetPropertyRangeLong("dNumber", &nLow, &nHigh); }), -103) << "no range";
  EXPECT_EQ(NumberOf([&] { Object().GetPropertyRangeDouble("nNumber", nullptr, nullptr); }), -44);
}

TEST_F(Handle, EnumerationsRunThroughTheTreeAndStandStillOnSmallBuffers) {
  char szName[16];
  unsigned int nSize = sizeof(szName);
  EXPECT_EQ(NumberOf([&] { Object().PropertyEnumerateNext(szName, &nSize); }), -50);
  std::string sAll;
  for (Object().PropertyEnumerateFirst(szName, &nSize); nSize != 0;) {
    sAll += std::string(szName) + " ";
    nSize = 1;
    if (sAll.size() < 20) {
      EXPECT_EQ(NumberOf([&] { Object().PropertyEnumerateNext(szName, &nSize); }), -21);
    }
    nSize = sizeof(szName);
    Object().PropertyEnumerateNext(szName, &nSize);
  }
  EXPECT_EQ(sAll, "Version nNumber dNumber eChoice ");
  nSize = sizeof(szName);
  EXPECT_EQ(NumberOf([&] { Object().GetPropertyValueEnumerateFirst("nNumber", szName, &nSize); }), -103);
  Object().GetPropertyValueEnumerateFirst("eChoice", szName, &nSize);
  for (const char* szExpected : {"one", "two", ""}) {
    EXPECT_STREQ(szName, szExpected);
    nSize = sizeof(szName);
    if (*szExpected != 0) Object().GetPropertyValueEnumerateNext(szName, &nSize);
  }
}

}  // namespace
