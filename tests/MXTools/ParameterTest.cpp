// Values of parameters: numbers, choices, pointers and texts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "MXTools/Exception.h"
#include "MXTools/ParameterContainer.h"
#include "Raised.h"

namespace {

using testing::EndsWith;
using ClUnsigned = TpParameterNumeric<unsigned int, ClParameter>;
using ClDouble = TpParameterNumeric<double, ClParameter>;
using ClLong = TpParameterNumeric<long, ClParameter>;

template <class P, typename T>
void Bind(P& oParameter, T* pValue) {
  oParameter.SetName("Gain");
  oParameter.BindVariable(pValue);
}

class ClOwner {
 public:
  unsigned int Get() const { return m_nValue; }
  void Set(const unsigned int& nValue) {
    if (nValue > 100) KLV_RAISE_NUMBER(-44);
    m_nValue = nValue;
  }
  unsigned int m_nValue = 7;
};

TEST(NumericParameter, TakesDecimalAndHexadecimalTexts) {
  unsigned int nValue = 0;
  ClUnsigned oGain;
  Bind(oGain, &nValue);
  const std::pair<const char*, unsigned int> aTexts[] = {{"0x10", 16}, {"0X10", 16},
                                                         {"x1f", 31},  {"0xFFFFFFFF", 4294967295u},
                                                         {"1.5", 1},   {"4294967295", 4294967295u},
                                                         {" 12", 12},  {"-0", 0},
                                                         {"Xx2", 2},   {"7e-3", 7},
                                                         {"1e3", 1}};
  for (const auto& [szText, nExpected] : aTexts) {
    nValue = 99;
    oGain.SetValue(szText);
    EXPECT_EQ(nValue, nExpected) << szText;
  }
}

TEST(NumericParameter, RefusesBadTextsAndKeepsTheOldValue) {
  unsigned int nValue = 5;
  ClUnsigned oGain;
  Bind(oGain, &nValue);
  const std::pair<const char*, long> aTexts[] = {{"12abc", -44},
                                                 {"0x1g", -44},
                                                 {"", -44},
                                                 {"0x", -44},
                                                 {"nan", -44},
                                                 {"inf", -35},
                                                 {"-1", -35},
                                                 {"4294967296", -35},
                                                 {"1e400", -35},
                                                 {"0x100000000", -35},
                                                 {"0xFFFFFFFFFFFFFFFF", -35},
                                                 {"-18446744073709551615", -35},
                                                 {"99999999999999999999", -35},
                                                 {nullptr, -20}};
  for (const auto& [szText, nNumber] : aTexts) {
    EXPECT_EQ(Raised([&, p = szText] { oGain.SetValue(p); }).first, nNumber) << (szText ? szText : "NULL");
    EXPECT_EQ(nValue, 5u);
  }
  EXPECT_THAT(Raised([&] { oGain.SetValue("12abc"); }).second,
              EndsWith("\nFailed to set parameter \"Gain\" to value \"12abc\""));
  EXPECT_THAT(Raised([&] { oGain.SetValue("-1"); }).second,
              EndsWith("\nValue out of range for parameter \"Gain\""));
}

TEST(NumericParameter, ADoubleTakesEveryFiniteTextAndRefusesInfinity) {
  double dValue = 1;
  ClDouble oGain;
  Bind(oGain, &dValue);
  oGain.SetValue("-2.5e3");
  EXPECT_EQ(dValue, -2500);
  oGain.SetValue("0x20");
  EXPECT_EQ(dValue, 32);
  oGain.SetUpperBoundary(1e6);
  for (const char* szBeyond : {"0xFFFFFFFFFFFFFFFF", "x-8000000000000001"}) {
    oGain.SetValue(szBeyond);
    EXPECT_EQ(std::abs(dValue), std::ldexp(1.0, 63)) << szBeyond;
    oGain.SetFlags(3 | ClParameter::cnStrict);
    EXPECT_THROW(oGain.SetValue(szBeyond), ClExRange) << szBeyond;
    oGain.SetFlags(3);
  }
  dValue = 32;
  for (const char* szText : {"inf", "-inf", "1e999"}) {
    EXPECT_THROW(oGain.SetValue(szText), ClExRange) << szText;
  }
  const double dInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Raised([&] { oGain.SetNumber(dInfinity); }).first, -35);
  EXPECT_EQ(Raised([&] { oGain.SetDefault(-dInfinity); }).first, -35);
  EXPECT_EQ(dValue, 32);
}

TEST(NumericParameter, NumbersBeyondTheTypeAreRefusedAtItsExactLimits) {
  unsigned char nByte = 3;
  TpParameterNumeric<unsigned char, ClParameter> oByte;
  Bind(oByte, &nByte);
  oByte.SetNumber(255.0);
  EXPECT_EQ(nByte, 255);
  for (double dValue : {255.5, 256.0, -0.5, std::nan("")}) {
    EXPECT_EQ(Raised([&] { oByte.SetNumber(dValue); }).first, -35) << dValue;
  }
  EXPECT_EQ(Raised([&] { oByte.SetNumberLong(-1); }).first, -35);
  oByte.SetNumberLong(17);
  EXPECT_EQ(nByte, 17);

  long nLong = 1;
  ClLong oLong;
  Bind(oLong, &nLong);
  const double dBeyond = std::ldexp(1.0, std::numeric_limits<long>::digits);
  EXPECT_EQ(Raised([&] { oLong.SetNumber(dBeyond); }).first, -35);
  oLong.SetNumber(-dBeyond);
  EXPECT_EQ(nLong, std::numeric_limits<long>::min());
}

TEST(NumericParameter, ADoubleBeyondLongReadsAsTheNearerLimit) {
  double dValue = 1e300;
  ClDouble oGain;
  Bind(oGain, &dValue);
  EXPECT_EQ(oGain.GetNumberLong(), std::numeric_limits<long>::max());
  dValue = -1e300;
  EXPECT_EQ(oGain.GetNumberLong(), std::numeric_limits<long>::min());
  dValue = std::nan("");
  EXPECT_EQ(oGain.GetNumberLong(), 0);
  dValue = -2.9;
  EXPECT_EQ(oGain.GetNumberLong(), -2);
}

TEST(NumericParameter, LimitsAreInformationUntilAFlagEnforcesThem) {
  int nValue = 0;
  TpParameterNumeric<int, ClParameter> oGain;
  Bind(oGain, &nValue);
  EXPECT_FALSE(oGain.HasRange());
  EXPECT_TRUE(oGain.IsValueInRange(1e9));
  oGain.SetLowerBoundary(0);
  oGain.SetUpperBoundary(10);
  oGain.SetNumberLong(11);
  EXPECT_EQ(nValue, 11);
  EXPECT_FALSE(oGain.IsValueInRange());

  oGain.SetFlags(oGain.GetFlags() | ClParameter::cnClamp);
  oGain.SetNumberLong(12);
  EXPECT_EQ(nValue, 10);
  oGain.SetValue("-3");
  EXPECT_EQ(nValue, 0);

  oGain.SetFlags(3 | ClParameter::cnStrict);
  EXPECT_EQ(Raised([&] { oGain.SetNumber(11); }).first, -35);
  EXPECT_EQ(nValue, 0);
}

TEST(NumericParameter, PrintsWithoutTrailingZerosButOneDigit) {
  double dValue = 0.25;
  ClDouble oGain;
  Bind(oGain, &dValue);
  EXPECT_EQ(oGain.ClParameter::GetValue(), "0.25");
  oGain.SetNumber(3);
  EXPECT_EQ(oGain.ClParameter::GetValue(), "3.0");
  EXPECT_EQ(oGain.ClParameter::GetDefaultValue(), "0.25");
  oGain.SetFormat("%.*f");
  oGain.SetPrecision(2);
  dValue = 1.0 / 3;
  EXPECT_EQ(oGain.ClParameter::GetValue(), "0.33");
  // More than the first 256 bytes that the convenience form tries.
  oGain.SetFormat("%f");
  dValue = 1e300;
  EXPECT_EQ(oGain.ClParameter::GetValue().size(), 303u);
}

TEST(NumericParameter, TellsTheSizeBeforeItWrites) {
  unsigned int nValue = 1234;
  ClUnsigned oGain;
  Bind(oGain, &nValue);
  unsigned int nSize = 0;
  EXPECT_FALSE(oGain.GetValue(nullptr, nSize));
  EXPECT_EQ(nSize, 5u);
  EXPECT_TRUE(oGain.GetValue(nullptr, nSize));
  char szText[6] = "*****";
  nSize = 4;
  EXPECT_FALSE(oGain.GetValue(szText, nSize));
  EXPECT_STREQ(szText, "*****");
  EXPECT_TRUE(oGain.GetValue(szText, nSize));
  EXPECT_STREQ(szText, "1234");
}

TEST(BoundParameter, GoesThroughGetterAndSetterAndKeepsTheOldValueWhenTheSetterRaises) {
  ClOwner oOwner;
  TpParameterNumeric<unsigned int, ClOwner> oParameter;
  oParameter.BindObject(&oOwner, &ClOwner::Get, &ClOwner::Set);
  EXPECT_EQ(oParameter.GetNumber(), 7);
  oParameter.SetNumberLong(42);
  EXPECT_EQ(oOwner.m_nValue, 42u);
  EXPECT_EQ(Raised([&] { oParameter.SetNumberLong(101); }).first, -44);
  EXPECT_EQ(oOwner.m_nValue, 42u);
  EXPECT_EQ(Raised([] { ClUnsigned().GetNumber(); }).first, -701) << "an unbound parameter";
}

TEST(BoundParameter, FollowsAPointerThatItsOwnerReSeats) {
  unsigned int nFirst = 1;
  unsigned int nSecond = 2;
  unsigned int* pCurrent = &nFirst;
  ClUnsigned oParameter;
  oParameter.BindPointer(&pCurrent);
  std::unique_ptr<ClParameterBase> pClone(oParameter.Clone());
  pCurrent = &nSecond;
  EXPECT_EQ(oParameter.GetNumberLong(), 2);
  EXPECT_EQ(oParameter.GetDefault(), 1);
  pClone->GetNumericInterface()->SetNumberLong(9);
  EXPECT_EQ(nSecond, 9u);
}

TEST(BoundParameter, ACopyRefersToTheSameVariableAndOutlivesItsModel) {
  unsigned int nValue = 4;
  auto pModel = std::make_unique<ClUnsigned>();
  Bind(*pModel, &nValue);
  pModel->SetDescription("amplification");
  pModel->SetUpperBoundary(50);
  pModel->SetAccess(ClParameter::cnWritable);
  std::unique_ptr<ClParameterBase> pClone(pModel->Clone());
  pModel.reset();
  auto& oClone = dynamic_cast<ClUnsigned&>(*pClone);
  EXPECT_STREQ(oClone.GetName(), "Gain");
  EXPECT_STREQ(oClone.GetDescription(), "amplification");
  EXPECT_EQ(oClone.GetUpperBoundary(), 50);
  EXPECT_FALSE(oClone.IsReadable());
  oClone.SetNumberLong(8);
  EXPECT_EQ(nValue, 8u);
  EXPECT_EQ(oClone.GetDefault(), 4);
}

TEST(BoundParameter, MovesBetweenValueAndDefault) {
  int nOurs = 1;
  int nTheirs = 2;
  TpParameterNumeric<int, ClParameter> oOurs;
  TpParameterNumeric<int, ClParameter> oTheirs;
  oOurs.BindVariable(&nOurs);
  oTheirs.BindVariable(&nTheirs);
  oTheirs.SetNumberLong(3);
  EXPECT_FALSE(oTheirs.IsDefault());
  oOurs.CopyValuesFrom(&oTheirs, false);
  EXPECT_EQ(nOurs, 3);
  oOurs.CopyDefaultFrom(&oTheirs);
  EXPECT_EQ(oOurs.GetDefault(), 2);
  oOurs.SwapDefaultAndValue();
  EXPECT_EQ(nOurs, 2);
  EXPECT_EQ(oOurs.GetDefault(), 3);
  oOurs.SetToDefault();
  EXPECT_TRUE(oOurs.IsDefault());
  oOurs.SetToDefaultFrom(&oTheirs);
  EXPECT_EQ(nOurs, 2);
  oOurs.CopyDefaultFromValue(&oTheirs);
  EXPECT_EQ(oOurs.GetDefault(), 3);
  ClDouble oOther;
  EXPECT_EQ(Raised([&] { oOurs.CopyDefaultFrom(&oOther); }).first, -701);
  EXPECT_EQ(Raised([&] { oOurs.CopyDefaultFrom(nullptr); }).first, -701);
}

enum class EColour : int { eRed = 4, eBlue = 9 };
using ClColour = TpParameterEnumPointer<EColour, ClParameter>;

TEST(EnumParameter, NamesItsValuesBothWays) {
  EColour eValue = EColour::eRed;
  ClColour oColour;
  Bind(oColour, &eValue);
  EXPECT_FALSE(oColour.IsEnum());
  EXPECT_EQ(oColour.ClParameter::GetValue(), "4") << "without names";
  oColour.AddValue(EColour::eRed, "Red");
  oColour.AddValue(EColour::eBlue, "Blue");
  EXPECT_TRUE(oColour.IsEnum());
  EXPECT_EQ(oColour.ClParameter::GetValue(), "Red");
  oColour.SetValue("bLUE");
  EXPECT_EQ(eValue, EColour::eBlue);
  oColour.SetValue(4L);
  EXPECT_EQ(eValue, EColour::eRed);
  EXPECT_EQ(oColour.GetValue(), 4);
  const auto oByNumber = Raised([&] { oColour.SetValue(5L); });
  EXPECT_EQ(oByNumber.first, -35);
  EXPECT_THAT(oByNumber.second, EndsWith("\nValue \"5\" out of range for parameter \"Gain\""));
  EXPECT_THAT(Raised([&] { oColour.SetValue("Green"); }).second,
              EndsWith("\nValue \"Green\" out of range for parameter \"Gain\""));
  EXPECT_EQ(eValue, EColour::eRed);
  eValue = static_cast<EColour>(6);
  EXPECT_THAT(Raised([&] { oColour.ClParameter::GetValue(); }).second,
              EndsWith("\nParameter \"Gain\" out of range using value \"6\""));
}

TEST(EnumParameter, RefusesANameUnderAnotherValueAndRemovesTheFirstMatch) {
  EColour eValue = EColour::eRed;
  ClColour oColour;
  Bind(oColour, &eValue);
  oColour.AddValue(EColour::eRed, "Red");
  EXPECT_EQ(Raised([&] { oColour.AddValue(EColour::eBlue, "RED"); }).first, -46);
  oColour.AddValue(EColour::eRed, "red");
  oColour.AddValue(EColour::eBlue, "Blue");
  ASSERT_EQ(oColour.GetValueNameCount(), 3u);
  oColour.RemoveValue("RED");
  oColour.RemoveValue("Green");
  oColour.RemoveValue(EColour::eBlue);
  ASSERT_EQ(oColour.GetValueNameCount(), 1u);
  char szName[4] = "***";
  EXPECT_EQ(oColour.GetValueName(0, szName, 4), 3u);
  EXPECT_STREQ(szName, "red");
  EXPECT_EQ(oColour.GetValueName(0, szName, 3), 3u);
  EXPECT_STREQ(szName, "");
  EXPECT_EQ(oColour.GetValueName(0, nullptr, 0), 3u);
}

TEST(EnumParameter, TheNamesOfACloneAreItsOwnAlsoBeyondTheFirstGrowth) {
  long nValue = 11;
  auto pModel = std::make_unique<TpParameterEnumPointer<long, ClParameter>>();
  Bind(*pModel, &nValue);
  for (long n = 0; n < 12; ++n) pModel->AddValue(n, ("v" + std::to_string(n)).c_str());
  std::unique_ptr<ClParameterBase> pClone(pModel->Clone());
  pModel.reset();
  EXPECT_EQ(pClone->GetEnumInterface()->GetValueNameCount(), 12u);
  EXPECT_EQ(pClone->GetParameterInterface()->GetValue(), "v11");
}

TEST(PointerParameter, IsLeftAloneByCopiesOfValuesUnlessForced) {
  struct ClPicture* pOurs = nullptr;
  auto* const pSomething = reinterpret_cast<ClPicture*>(0x1234);
  ClPicture* pTheirs = pSomething;
  ClParameterContainer oOurs;
  ClParameterContainer oTheirs;
  auto* pParameter = oOurs.AddPointer("pImage", &pOurs);
  oTheirs.AddPointer("pImage", &pTheirs);
  EXPECT_TRUE(pParameter->IsPointer());
  EXPECT_FALSE(pParameter->IsEnum());
  EXPECT_EQ(pParameter->ClParameter::GetValue(), "NULL");
  oOurs.CopyValuesFrom(&oTheirs, false);
  EXPECT_EQ(pOurs, nullptr);
  oOurs.CopyValuesFrom(&oTheirs, true);
  EXPECT_EQ(pOurs, pSomething);
  EXPECT_EQ(pParameter->ClParameter::GetValue(), "0x1234");
}

TEST(StringParameter, WritesIntoItsBufferAndNeverBeyond) {
  char szBuffer[4] = "abc";
  char* pBuffer = szBuffer;
  TpParameterString<char*, ClParameter, 4> oText;
  oText.BindVariable(&pBuffer);
  oText.SetValue("xyz");
  EXPECT_STREQ(szBuffer, "xyz");
  const auto oTooLong = Raised([&] { oText.SetValue("wxyz"); });
  EXPECT_EQ(oTooLong.first, -21);
  EXPECT_THAT(oTooLong.second, EndsWith("\nString memory ar too small"));
  EXPECT_EQ(Raised([&] { oText.SetValue(nullptr); }).first, -701);
  EXPECT_STREQ(szBuffer, "xyz");
  unsigned int nSize = 3;
  EXPECT_FALSE(oText.GetValue(nullptr, nSize));
  EXPECT_EQ(nSize, 4u);
  EXPECT_EQ(Raised([&] { oText.GetValue(nullptr, nSize); }).first, -701);
  EXPECT_EQ(oText.ClParameter::GetValue(), "xyz");

  TpParameterString<char*, ClParameter, 0> oVersion;
  oVersion.BindVariable(&pBuffer);
  EXPECT_EQ(Raised([&] { oVersion.SetValue(""); }).first, -21);
  EXPECT_TRUE(oVersion.IsString());
}

}  // namespace
