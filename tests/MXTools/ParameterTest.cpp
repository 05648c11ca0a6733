// Values of parameters: numbers, choices, pointers and texts.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "MXTools/ParameterContainer.h"
#include "Raised.h"

namespace {

using testing::EndsWith;
using ClUnsigned = TpParameterNumeric<unsigned int, ClParameter>;
using ClDouble = TpParameterNumeric<double, ClParameter>;

/// A variable and the parameter "Gain" that is bound to it.
template <typename T, class P = TpParameterNumeric<T, ClParameter>>
struct TpBound : P {
  explicit TpBound(T tFirst) : tValue(tFirst) {
    this->SetName("Gain");
    this->BindVariable(&tValue);
  }
  std::string Text() { return static_cast<ClParameter&>(*this).GetValue(); }
  T tValue;
};

/// What each text makes of a parameter that held 99: its value, or its error number with the value kept.
template <typename T>
std::string Outcomes(TpBound<T>& rParameter, const std::vector<const char*>& aTexts) {
  std::string szAll;
  for (const char* szText : aTexts) {
    rParameter.tValue = 99;
    const long nNumber = NumberOf([&] { rParameter.SetValue(szText); });
    EXPECT_TRUE(nNumber == 0 || rParameter.tValue == 99) << szText;
    szAll += (nNumber == 0 ? rParameter.Text() : std::to_string(nNumber)) + " ";
  }
  return szAll;
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

TEST(NumericParameter, TakesDecimalAndHexadecimalTextsAndKeepsTheOldValueForOthers) {
  TpBound<unsigned int> oGain(0);
  EXPECT_EQ(Outcomes(oGain, {"0x10", "0X10", "x1f", "0xFFFFFFFF", "Xx2", "4294967295", " 12", "-0"}),
            "16 16 31 4294967295 2 4294967295 12 0 ");
  EXPECT_EQ(Outcomes(oGain, {"1.5", "7e-3", "1e3"}), "1 7 1 ") << "what stands before the fraction";
  EXPECT_EQ(Outcomes(oGain, {"12abc", "0x1g", "", "0x", "nan", nullptr}), "-44 -44 -44 -44 -44 -20 ");
  EXPECT_EQ(Outcomes(oGain, {"inf", "-1", "4294967296", "1e400", "99999999999999999999"}),
            "-35 -35 -35 -35 -35 ");
  EXPECT_EQ(Outcomes(oGain, {"0x100000000", "0xFFFFFFFFFFFFFFFF", "-18446744073709551615"}), "-35 -35 -35 ");
  EXPECT_THAT(Raised([&] { oGain.SetValue("12abc"); }).second,
              EndsWith("\nFailed to set parameter \"Gain\" to value \"12abc\""));
  EXPECT_THAT(Raised([&] { oGain.SetValue("-1"); }).second,
              EndsWith("\nValue out of range for parameter \"Gain\""));
}

TEST(NumericParameter, ADoubleTakesEveryFiniteTextAndRefusesInfinity) {
  TpBound<double> oGain(1);
  EXPECT_EQ(Outcomes(oGain, {"-2.5e3", "0x20", "inf", "-inf", "1e999"}), "-2500.0 32.0 -35 -35 -35 ");
  const std::vector<const char*> aBeyond = {"0xFFFFFFFFFFFFFFFF", "x-8000000000000001"};
  EXPECT_EQ(Outcomes(oGain, aBeyond), "9223372036854775808.0 -9223372036854775808.0 ");
  oGain.SetUpperBoundary(1e6);
  oGain.SetFlags(3 | ClParameter::cnStrict);
  EXPECT_EQ(Outcomes(oGain, aBeyond), "-35 -35 ");
  const double dInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(NumberOf([&] { oGain.SetNumber(dInfinity); }), -35);
  EXPECT_EQ(NumberOf([&] { oGain.SetDefault(-dInfinity); }), -35);
}

TEST(NumericParameter, NumbersBeyondTheTypeAreRefusedAtItsExactLimits) {
  TpBound<unsigned char> oByte(3);
  oByte.SetNumber(255.0);
  EXPECT_EQ(oByte.tValue, 255);
  for (double dValue : {255.5, 256.0, -0.5, std::nan("")})
    EXPECT_EQ(NumberOf([&] { oByte.SetNumber(dValue); }), -35) << dValue;
  EXPECT_EQ(NumberOf([&] { oByte.SetNumberLong(-1); }), -35);
  oByte.SetNumberLong(17);
  EXPECT_EQ(oByte.tValue, 17);

  TpBound<long> oLong(1);
  const double dBeyond = std::ldexp(1.0, std::numeric_limits<long>::digits);
  EXPECT_EQ(NumberOf([&] { oLong.SetNumber(dBeyond); }), -35);
  oLong.SetNumber(-dBeyond);
  EXPECT_EQ(oLong.tValue, std::numeric_limits<long>::min());
}

TEST(NumericParameter, ADoubleBeyondLongReadsAsTheNearerLimit) {
  TpBound<double> oGain(0);
  using Limits = std::numeric_limits<long>;
  for (const auto& [dSet, nRead] :
       {std::pair(1e300, Limits::max()), {-1e300, Limits::min()}, {std::nan(""), 0}, {-2.9, -2}}) {
    oGain.tValue = dSet;
    EXPECT_EQ(oGain.GetNumberLong(), nRead) << dSet;
  }
}

TEST(NumericParameter, LimitsAreInformationUntilAFlagEnforcesThem) {
  TpBound<int> oGain(0);
  EXPECT_FALSE(oGain.HasRange());
  EXPECT_TRUE(oGain.IsValueInRange(1e9));
  oGain.SetLowerBoundary(0);
  oGain.SetUpperBoundary(10);
  oGain.SetNumberLong(11);
  EXPECT_EQ(oGain.tValue, 11);
  EXPECT_FALSE(oGain.IsValueInRange());

  oGain.SetFlags(oGain.GetFlags() | ClParameter::cnClamp);
  oGain.SetNumberLong(12);
  EXPECT_EQ(oGain.tValue, 10);
  oGain.SetValue("-3");
  EXPECT_EQ(oGain.tValue, 0);

  oGain.SetFlags(3 | ClParameter::cnStrict);
  EXPECT_EQ(NumberOf([&] { oGain.SetNumber(11); }), -35);
  EXPECT_EQ(oGain.tValue, 0);
}

TEST(NumericParameter, PrintsWithoutTrailingZerosButOneDigit) {
  TpBound<double> oGain(0.25);
  EXPECT_EQ(oGain.Text(), "0.25");
  oGain.SetNumber(3);
  EXPECT_EQ(oGain.Text(), "3.0");
  EXPECT_EQ(oGain.ClParameter::GetDefaultValue(), "0.25");
  oGain.SetFormat("%.*f");
  oGain.SetPrecision(2);
  oGain.tValue = 1.0 / 3;
  EXPECT_EQ(oGain.Text(), "0.33");
  // More than the first 256 bytes that the convenience form tries.
  oGain.SetFormat("%f");
  oGain.tValue = 1e300;
  EXPECT_EQ(oGain.Text().size(), 303u);
}

TEST(NumericParameter, ReportsTheSizeBeforeItWrites) {
  TpBound<unsigned int> oGain(1234);
  unsigned int nSize = 0;
  char szText[6] = "*****";
  EXPECT_FALSE(oGain.GetValue(nullptr, nSize));
  EXPECT_EQ(nSize--, 5u);
  EXPECT_FALSE(oGain.GetValue(szText, nSize));
  EXPECT_STREQ(szText, "*****");
  EXPECT_TRUE(oGain.GetValue(nullptr, nSize));
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
  EXPECT_EQ(NumberOf([&] { oParameter.SetNumberLong(101); }), -44);
  EXPECT_EQ(oOwner.m_nValue, 42u);
  EXPECT_EQ(NumberOf([] { ClUnsigned().GetNumber(); }), -701) << "an unbound parameter";
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
  pModel->SetName("Gain");
  pModel->BindVariable(&nValue);
  pModel->SetUpperBoundary(50);
  std::unique_ptr<ClParameterBase> pClone(pModel->Clone());
  pModel.reset();
  auto& oClone = dynamic_cast<ClUnsigned&>(*pClone);
  EXPECT_STREQ(oClone.GetName(), "Gain");
  EXPECT_EQ(oClone.GetUpperBoundary(), 50);
  oClone.SetNumberLong(8);
  EXPECT_EQ(nValue, 8u);
  EXPECT_EQ(oClone.GetDefault(), 4);
}

TEST(BoundParameter, TakesValueAndDefaultFromOneOfItsTypeOnly) {
  TpBound<int> oOurs(1), oTheirs(2);
  oTheirs.SetNumberLong(3);
  oOurs.CopyValuesFrom(&oTheirs, false);
  EXPECT_EQ(oOurs.tValue, 3);
  oOurs.CopyDefaultFrom(&oTheirs);
  EXPECT_EQ(oOurs.GetDefault(), 2);
  ClDouble oOther;
  EXPECT_EQ(NumberOf([&] { oOurs.CopyDefaultFrom(&oOther); }), -701);
  EXPECT_EQ(NumberOf([&] { oOurs.CopyDefaultFrom(nullptr); }), -701);
}

enum class EColour : int { eRed = 4, eBlue = 9 };
using ClColour = TpParameterEnumPointer<EColour, ClParameter>;

TEST(EnumParameter, NamesItsValuesBothWays) {
  TpBound<EColour, ClColour> oColour(EColour::eRed);
  EXPECT_EQ(oColour.Text(), "4") << "without names";
  oColour.AddValue(EColour::eRed, "Red");
  oColour.AddValue(EColour::eBlue, "Blue");
  EXPECT_EQ(oColour.Text(), "Red");
  oColour.SetValue("bLUE");
  EXPECT_EQ(oColour.tValue, EColour::eBlue);
  oColour.SetValue(4L);
  EXPECT_EQ(oColour.tValue, EColour::eRed);
  EXPECT_EQ(oColour.GetValue(), 4);
  EXPECT_THAT(Raised([&] { oColour.SetValue(5L); }),
              testing::Pair(-35, EndsWith("\nValue \"5\" out of range for parameter \"Gain\"")));
  EXPECT_EQ(NumberOf([&] { oColour.SetValue("Green"); }), -35);
  EXPECT_EQ(oColour.tValue, EColour::eRed);
  oColour.tValue = static_cast<EColour>(6);
  EXPECT_THAT(Raised([&] { oColour.Text(); }).second,
              EndsWith("\nParameter \"Gain\" out of range using value \"6\""));
}

TEST(EnumParameter, RefusesANameUnderAnotherValueAndRemovesTheFirstMatch) {
  TpBound<EColour, ClColour> oColour(EColour::eRed);
  oColour.AddValue(EColour::eRed, "Red");
  EXPECT_EQ(NumberOf([&] { oColour.AddValue(EColour::eBlue, "RED"); }), -46);
  oColour.AddValue(EColour::eRed, "red");
  oColour.AddValue(EColour::eBlue, "Blue");
  ASSERT_EQ(oColour.GetValueNameCount(), 3u);
  oColour.RemoveValue("RED");
  oColour.RemoveValue("Green");
  oColour.RemoveValue(EColour::eBlue);
  ASSERT_EQ(oColour.GetValueNameCount(), 1u);
  char szName[4] = "***";
  EXPECT_EQ(oColour.GetValueName(0, szName, 4), 3u);
  EXPECT_EQ(oColour.GetValueName(0, szName, 3), 3u);
  EXPECT_STREQ(szName, "");
}

TEST(EnumParameter, TheNamesOfACloneAreItsOwnAlsoBeyondTheFirstGrowth) {
  long nValue = 11;
  auto pModel = std::make_unique<TpParameterEnumPointer<long, ClParameter>>();
  pModel->BindVariable(&nValue);
  for (long n = 0; n < 12; ++n) pModel->AddValue(n, ("v" + std::to_string(n)).c_str());
  const std::unique_ptr<ClParameterBase> pClone(pModel->Clone());
  pModel.reset();
  EXPECT_EQ(pClone->GetParameterInterface()->GetValue(), "v11");
}

TEST(PointerParameter, IsLeftAloneByCopiesOfValuesUnlessForced) {
  struct ClPicture* pOurs = nullptr;
  auto* const pSomething = reinterpret_cast<ClPicture*>(0x1234);
  ClPicture* pTheirs = pSomething;
  ClParameterContainer oOurs, oTheirs;
  auto* pParameter = oOurs.AddPointer("pImage", &pOurs);
  oTheirs.AddPointer("pImage", &pTheirs);
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
  EXPECT_THAT(Raised([&] { oText.SetValue("wxyz"); }),
              testing::Pair(-21, EndsWith("\nString memory ar too small")));
  EXPECT_EQ(NumberOf([&] { oText.SetValue(nullptr); }), -701);
  EXPECT_STREQ(szBuffer, "xyz");
  unsigned int nSize = 3;
  EXPECT_FALSE(oText.GetValue(nullptr, nSize));
  EXPECT_EQ(nSize, 4u);
  EXPECT_EQ(NumberOf([&] { oText.GetValue(nullptr, nSize); }), -701);
  EXPECT_EQ(oText.ClParameter::GetValue(), "xyz");
}

}  // namespace
