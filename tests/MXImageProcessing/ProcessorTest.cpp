// Tests of what all processors share: the run, the generic loops, blocks that callers lend.
#include <gmock/gmock.h>

#include <cstdarg>
#include <cstdio>

#include "CallersBlock.h"
#include "MXImageProcessing/IpBinarizeLocal2.h"
#include "MXImageProcessing/IpConvertDataType.h"
#include "MXImageProcessing/IpCut.h"
#include "MXImageProcessing/IpFilterMax.h"
#include "MXImageProcessing/IpFilterMin.h"
#include "MXImageProcessing/IpFlip.h"
#include "MXImageProcessing/IpMoveImage.h"
#include "MXImageProcessing/IpRescale.h"
#include "MXImageProcessing/IpScale.h"
#include "MXImageProcessing/IpSubtract.h"
#include "MXTools/ClassCallProfile.h"
#include "MXTools/ProfileTimer.h"
#include "TestImages.h"

namespace {

/// Returns what the test sets and notes what was called.
class ClScripted : public ClProcessorBase {
 public:
  ClProcessorBase* Create() const override { return new ClScripted; }
  const char* Name() const override { return "ClScripted"; }
  long m_nInitialize = 0, m_nProcess = 0, m_nFinalize = 0, m_nSeen = -1;
  std::string m_szCalls;

 protected:
  long Initialize() override { return Note("I"), m_nInitialize; }
  long Process() override { return Note("P"), m_nProcess; }
  long Finalize(long nResult) override { return Note("F"), m_nSeen = nResult, m_nFinalize; }

 private:
  void Note(const char* szCall) { m_szCalls += szCall; }
};

/// Keeps what processors send it: "start" for each start, and the texts of the stops.
class ClNotingTimer : public ClProfileTimer {
 public:
  void TimerStart(const char*, ...) override { m_aLines.emplace_back("start"); }
  void TimerStop(const char* szFormat, ...) override {
    va_list aArguments;
    va_start(aArguments, szFormat);
    char szText[600];
    std::vsnprintf(szText, sizeof(szText), szFormat, aArguments);
    va_end(aArguments);
    m_aLines.emplace_back(szText);
  }
  std::vector<std::string> m_aLines;
};

/// Half of the value, by the generic loop of either base.
template <typename TBase>
class TpHalf : public TBase {
 public:
  template <typename... TFlags>
  explicit TpHalf(TFlags... bFlags) : TBase(bFlags...) {}
  ClProcessorBase* Create() const override { return new TpHalf; }
  const char* Name() const override { return "TpHalf"; }
  int m_nCalls = 0;

 protected:
  double GetValue(ClImage&, ClImage&, double dValue) override { return ++m_nCalls, dValue / 2; }
};

class ClHalf : public TpHalf<NewIpBase::ClIp1to1Base> {
 public:
  explicit ClHalf(bool bTable = true) : TpHalf(false, bTable) {
    EnableDataType(ClImage::eUint8);
    EnableDataType(ClImage::eUint8);
    EnableDataType(ClImage::eInt16);
  }
};

}  // namespace

TEST(Processor, RunsItsStepsInOrderAndStopsAtAFailingStart) {
  ClScripted oProcessor;
  EXPECT_FALSE(oProcessor.CanApply());
  oProcessor.m_nProcess = -5;
  EXPECT_EQ(oProcessor.Apply(), -5);
  EXPECT_EQ(oProcessor.m_szCalls, "IPF");
  EXPECT_EQ(oProcessor.m_nSeen, -5);
  oProcessor.m_nInitialize = -7;
  EXPECT_EQ(oProcessor.Apply(), -7);
  EXPECT_EQ(oProcessor.m_szCalls, "IPFI");
  oProcessor.m_nInitialize = 0;
  oProcessor.m_nFinalize = -9;
  EXPECT_EQ(NumberOf([&] { oProcessor.Apply(); }), -9);
}

TEST(Processor, CountsItsCompletedRunsUnderItsOwnClass) {
  ClClassCallProfile oProfile;
  g_pClassCallProfile = &oProfile;
  ClScripted oProcessor;
  for (int n = 0; n < 3; ++n) oProcessor.Apply();
  oProcessor.m_nInitialize = -1;
  oProcessor.Apply();
  g_pClassCallProfile = nullptr;
  ASSERT_EQ(oProfile.Entries().Entries(), 1u);
  EXPECT_EQ(*oProfile.Entries()[0].m_pType, typeid(ClScripted));
  EXPECT_EQ(oProfile.Entries()[0].m_nCalls, 3u);
}

TEST(Processor, ReportsItsNameAndParametersToTheTimerAfterACompletedRun) {
  ClNotingTimer oTimer;
  ClImage oImage;
  SetImage<float>(oImage, 1, 1, {1});
  g_pProfileTimer = &oTimer;
  ClIpScale oTimed;
  ASSERT_TRUE(oTimed.IsTimerEnabled());
  oTimed.ApplyParam(oImage, 1.5);
  EXPECT_EQ(oTimer.m_aLines, (std::vector<std::string>{"start", "ClIpScale ScaleFactor = 1.5000"}));
  oImage.SetDataType(3);
  EXPECT_EQ(NumberOf([&] { oTimed.ApplyParam(oImage, 1.5); }), -33);
  EXPECT_EQ(oTimer.m_aLines.size(), 3u) << "a run that fails is not stopped";
  oTimed.Timer(false);
  g_pProfileTimer = nullptr;
  EXPECT_FALSE(oTimed.IsTimerEnabled());
  EXPECT_EQ(NumberOf([&] { Summary(oTimed, 0); }), -101);
  EXPECT_EQ(NumberOf([&] { Summary(oTimed, 8); }), -101) << "too long a text";
  EXPECT_EQ(NumberOf([&] { Summary(oTimed, 15); }), -101) << "no room for its end";
}

TEST(GenericLoop, AsksForEachByteValueOnceAndForOtherSamplesOneByOne) {
  ClImage oImage, oSharer;
  SetImage<uint8_t>(oImage, 300, 3, Bytes(1800, 201), 2);
  oSharer.Attach(oImage);
  ClHalf oHalf;
  ASSERT_EQ(oHalf.ApplyParam(oImage), 0);
  EXPECT_EQ(oHalf.m_nCalls, 256);
  EXPECT_EQ(Samples<uint8_t>(oImage), Bytes(1800, 100));
  EXPECT_EQ(Samples<uint8_t>(oSharer), Bytes(1800, 201)) << "the old block was written";
  ClHalf oSingly(false);
  ASSERT_EQ(oSingly.ApplyParam(oImage), 0);
  EXPECT_EQ(oSingly.m_nCalls, 1800);
  EXPECT_EQ(Samples<uint8_t>(oImage), Bytes(1800, 50));
  SetImage<int16_t>(oImage, 2, 1, {-7, 7, -32768, 1}, 2);
  EXPECT_EQ(Made<int16_t>(oHalf.ApplyParam(oImage), oImage), (std::vector<int16_t>{-3, 3, -16384, 0}));
  EXPECT_EQ(oHalf.m_nCalls, 260);
}

TEST(GenericLoop, RefusesOtherTypesByNameAndMissingImages) {
  ClAnyImages o;
  ClHalf oHalf;
  EXPECT_FALSE(oHalf.CanApply());
  EXPECT_EQ(NumberOf([&] { oHalf.Apply(); }), -701);
  EXPECT_THAT(Raised([&] { oHalf.ApplyParam(o.m_oFloat, o.m_oOut); }),
              testing::Pair(-33, testing::HasSubstr("\"float32\"")));
  EXPECT_FALSE(oHalf.CanApply());
  EXPECT_EQ(NumberOf([&] { oHalf.ApplyParam(o.m_oWord, o.m_oOut); }), -33) << "signed words are taken";
  EXPECT_EQ(NumberOf([&] { oHalf.ApplyParam(o.m_oNoPixels, o.m_oOut); }), -701);
  ASSERT_EQ(oHalf.ApplyParam(o.m_oByte, o.m_oOut), 0);
  EXPECT_TRUE(oHalf.CanApply());
}

TEST(GenericLoop, OfTheOlderBaseServesEveryPairOfTypesInPlaceToo) {
  std::mt19937 oRandom(51);
  for (const unsigned char nFrom : g_aTypes) {
    for (const unsigned char nTo : g_aTypes) {
      ClImage oIn, oOut;
      SetRandomOfType(oIn, nFrom, 13, 2, oRandom, 2);
      TpHalf<ClIp1to1Base> oHalf;
      ASSERT_EQ(oHalf.ApplyParam(oIn, oOut, nTo), 0);
      ASSERT_EQ(oHalf.m_nCalls, nFrom == ClImage::eUint8 ? 256 : 52);
      ASSERT_EQ(oOut.DataType(), nTo);
      ExpectNumbers(oOut, [&](int x, int y, int k) {
        return AsElement(static_cast<double>(SampleAt(oIn, 2 * x + k, y)) / 2, nTo);
      });
      ASSERT_EQ(oHalf.ApplyParam(oIn, oIn, nTo), 0);
      ASSERT_EQ(SampleAt(oIn, 25, 1), SampleAt(oOut, 25, 1));
    }
  }
  ClAnyImages o;
  TpHalf<ClIp1to1Base> oHalf;
  EXPECT_EQ(oHalf.Apply(), -10);
  EXPECT_EQ(oHalf.ApplyParam(o.m_oEmpty, o.m_oOut, ClImage::cnTypeDefault), -10);
  EXPECT_EQ(oHalf.ApplyParam(o.m_oByte, o.m_oOut, 3), -101);
}

TEST(Processor, LetsGoOfABlockThatItsCallerLentForOneRun) {
  ClIpBinarizeLocal2 oLocal;
  ClIpConvertDataType oConvert;
  ClIpCut oCut;
  ClIpFilterMax oMax;
  ClIpFilterMin oMin;
  ClIpFlip oFlip;
  ClIpMoveImage oMove;
  ClIpRescale oRescale;
  ClIpScale oScale;
  ClIpSubtract oFirst, oSecond;
  ClImage oIn(20, 16, 1, 19685, 19685);
  oIn = static_cast<unsigned char>(20);
  constexpr long cnXY = ClIpFilterBase::eModeXY;
  constexpr unsigned char cnDefault = ClImage::cnTypeDefault;
  const ClKeptProcessor aProcessors[] = {
      {"BinarizeLocal2", [&](ClImage& o) { return oLocal.ApplyParam(o, o, 3, 3, 0); }},
      {"ConvertDataType", [&](ClImage& o) { return oConvert.ApplyParam(o, ClImage::eInt8); }},
      {"Cut", [&](ClImage& o) { return oCut.ApplyParam(o, 0, o); }},
      {"FilterMax", [&](ClImage& o) { return oMax.ApplyParam(oIn, o, 3, cnXY); }},
      {"FilterMin", [&](ClImage& o) { return oMin.ApplyParam(oIn, o, 3, cnXY); }},
      {"Flip", [&](ClImage& o) { return oFlip.ApplyParam(o, o, true, true); }},
      {"MoveImage", [&](ClImage& o) { return oMove.ApplyParam(o, o, 1, 1, 0); }},
      {"Rescale",
       [&](ClImage& o) { return oRescale.ApplyParamSize(o, o, 16, 20, ClIpRescale::ModeNearestNeighbour); }},
      {"Scale", [&](ClImage& o) { return oScale.ApplyParam(o, 2.0); }},
      {"Subtract over its first image", [&](ClImage& o) { return oFirst.ApplyParam(o, oIn, o, cnDefault); }},
      {"Subtract over its second image",
       [&](ClImage& o) { return oSecond.ApplyParam(oIn, o, o, cnDefault); }},
  };
  for (const ClKeptProcessor& oProcessor : aProcessors) ExpectTheCallersBlockIsLetGo(oProcessor);
}
