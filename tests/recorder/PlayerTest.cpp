// The player: sequences in order for each setting, answers as they were at the time, and refusals with a
// reason.
#include <gmock/gmock.h>

#include "MadeRecording.h"
#include "play/PlayedCall.h"
#include "play/Player.h"

using namespace Recording;
using testing::HasSubstr;

namespace {

/// A player without a pace that opens device 7 and starts its capture.
class ClOpenPlayer {
 public:
  explicit ClOpenPlayer(const ClMadeRecording& oMade, double dSpeed = 0.0)
      : m_oPlayer({oMade.Path(), dSpeed, false}) {
    Open();
  }

  ClPlayer& operator*() { return m_oPlayer; }
  void* Handle() const { return m_hDevice; }
  void Open() {
    EXPECT_EQ(m_oPlayer.Open(AskedCall(eVTScanAPICreateHandle, 7U, &m_hDevice), &m_hDevice), 0);
    m_oPlayer.EnableCapture(m_hDevice, true);
  }
  void Mode(int nMode, unsigned long long nLight) {
    const StCall oAsked = AskedCall(eVTScanAPISetCaptureMode, m_hDevice, nMode, 1U, &nLight, 1U);
    m_oPlayer.Change(m_hDevice, oAsked, 0);
  }
  /// The value of the next sequence's frame, or the number of its failure.
  int Next() {
    void* pSequence = nullptr;
    size_t nBytes = 0;
    try {
      const long nResult = m_oPlayer.LockSequence(m_hDevice, &pSequence, &nBytes);
      if (nResult != 0) return static_cast<int>(nResult);
    } catch (const ClPlayError& oError) {
      m_sReason = oError.what();
      return static_cast<int>(oError.Number());
    }
    const int nValue = static_cast<uint8_t*>(pSequence)[nBytes - 1];
    m_oPlayer.ReleaseSequence(m_hDevice, pSequence);
    return nValue;
  }
  /// How many scanners the list holds.
  int64_t Listed() {
    unsigned int nCount = 8;
    const StCall oAsked =
        AskedCall(eVTScanAPIQueryDevices, static_cast<unsigned int*>(nullptr), &nCount, 17U);
    const int64_t nListed = m_oPlayer.Answer(nullptr, oAsked, false).Number(1, eGot, -1);
    m_oPlayer.Take(nullptr, oAsked);
    return nListed;
  }
  const std::string& Reason() const { return m_sReason; }

 private:
  ClPlayer m_oPlayer;
  void* m_hDevice = nullptr;
  std::string m_sReason;
};

}  // namespace

TEST(Player, EachSettingGoesOnWithItsOwnSequences) {
  ClMadeRecording oMade;
  oMade.Open();
  oMade.Capture(true);
  oMade.Mode(6, 1);
  for (const int n : {10, 11}) oMade.Sequence(n);
  oMade.Mode(6, 0x200);
  oMade.Sequence(50);
  oMade.Mode(6, 1);
  for (const int n : {12, 13}) oMade.Sequence(n);
  ClOpenPlayer oPlayer(oMade);
  oPlayer.Mode(6, 1);
  // One more than was asked before the light was changed: the order within the setting is what counts.
  for (const int n : {10, 11, 12}) EXPECT_EQ(oPlayer.Next(), n);
  oPlayer.Mode(6, 0x200);
  EXPECT_EQ(oPlayer.Next(), 50);
  oPlayer.Mode(6, 1);
  EXPECT_EQ(oPlayer.Next(), 13);
  EXPECT_FALSE((*oPlayer).IsAtEnd());
  EXPECT_EQ(oPlayer.Next(), 13);
  EXPECT_TRUE((*oPlayer).IsAtEnd());
}

TEST(Player, AFailureIsRepeatedWhereItCameAndNotWhereTheCaptureWasEnded) {
  ClMadeRecording oMade;
  oMade.Open();
  oMade.Capture(true);
  oMade.Mode(6, 1);
  oMade.Sequence(1);
  oMade.Sequence(-61);
  oMade.Sequence(2);
  oMade.Capture(false);
  oMade.Sequence(-50);
  oMade.Capture(true);
  oMade.Sequence(3);
  oMade.Sequence(-60);
  ClOpenPlayer oPlayer(oMade);
  oPlayer.Mode(6, 1);
  for (const int n : {1, -61, 2, 3, -60, -60}) EXPECT_EQ(oPlayer.Next(), n);
}

TEST(Player, QuestionsAreAnsweredAsOfTheSequenceThatWasGivenLast) {
  ClMadeRecording oMade;
  oMade.List(7);
  oMade.Open();
  oMade.Capture(true);
  oMade.Mode(6, 1);
  oMade.Sequence(1);
  oMade.List(7);
  oMade.List(7);
  oMade.Sequence(-60);
  oMade.List(0);
  ClOpenPlayer oPlayer(oMade);
  oPlayer.Mode(6, 1);
  for (int n = 0; n < 5; ++n) EXPECT_EQ(oPlayer.Listed(), 1);
  EXPECT_EQ(oPlayer.Next(), 1);
  EXPECT_EQ(oPlayer.Listed(), 1);
  EXPECT_EQ(oPlayer.Next(), -60);
  EXPECT_EQ(oPlayer.Listed(), 0);
}

TEST(Player, CommandsAreAnsweredInTheirOrder) {
  ClMadeRecording oMade;
  oMade.Open();
  const auto Gain = [](ClCallRecord& o) { o.AddNumber(1, eGiven, 5); };
  for (const long nResult : {0L, -60L, 0L}) oMade.Call(eVTScanAPISetGlobalGain, Gain, nResult);
  ClOpenPlayer oPlayer(oMade);
  const StCall oAsked = AskedCall(eVTScanAPISetGlobalGain, oPlayer.Handle(), static_cast<unsigned char>(5));
  for (const long nResult : {0L, -60L, 0L, 0L})
    EXPECT_EQ((*oPlayer).Answer(oPlayer.Handle(), oAsked, true).nResult, nResult);
}

TEST(Player, ARoomThatIsTooSmallGetsTheNeedAndTheContentNext) {
  ClMadeRecording oMade;
  oMade.Open();
  const auto Version = [](int64_t nRoom, const char* szVersion) {
    return [=](ClCallRecord& o) {
      o.AddNumber(2, eGiven, nRoom);
      if (szVersion != nullptr) o.AddText(1, eGot, szVersion);
      o.AddNumber(2, eGot, 5);
    };
  };
  oMade.Call(eVTScanAPIGetVersion, Version(0, nullptr), -703);
  oMade.Call(eVTScanAPIGetVersion, Version(40, "1.20"));
  ClOpenPlayer oPlayer(oMade);
  char szVersion[8] = "";
  unsigned int nSize = 4;
  const auto Ask = [&] {
    return TpPlay<eVTScanAPIGetVersion>::Answer(*oPlayer, oPlayer.Handle(), oPlayer.Handle(),
                                                static_cast<char*>(szVersion), &nSize);
  };
  EXPECT_EQ(Ask(), -703);
  EXPECT_EQ(nSize, 5U);
  EXPECT_EQ(Ask(), 0);
  EXPECT_STREQ(szVersion, "1.20");
}

TEST(Player, WhatWasNotRecordedIsRefusedByName) {
  ClMadeRecording oMade;
  oMade.Open();
  oMade.Capture(true);
  oMade.Mode(6, 1);
  ClOpenPlayer oPlayer(oMade);
  try {
    (*oPlayer).Answer(oPlayer.Handle(), AskedCall(eVTScanAPIGetPropertyA, oPlayer.Handle(), "version"), true);
    ADD_FAILURE();
  } catch (const ClPlayError& oError) {
    EXPECT_EQ(oError.Number(), -103);
    EXPECT_THAT(oError.what(), HasSubstr("VTScanAPIGetPropertyA"));
  }
  unsigned int nWidth = 0, nHeight = 0;
  EXPECT_THROW((*oPlayer).Resolution(oPlayer.Handle(), nWidth, nHeight), ClPlayError);
  oPlayer.Mode(6, 1);
  (*oPlayer).Resolution(oPlayer.Handle(), nWidth, nHeight);
  EXPECT_EQ(nWidth * 1000 + nHeight, 960680U);
  EXPECT_THROW((*oPlayer).Open(AskedCall(eVTScanAPICreateHandle, 8U, static_cast<void**>(nullptr)), nullptr),
               ClPlayError);
  char cNone = 0;
  EXPECT_THROW((*oPlayer).ReleaseSequence(oPlayer.Handle(), &cNone), ClPlayError);
  EXPECT_THROW((*oPlayer).Close(&cNone), ClPlayError);
}

TEST(Player, AClosedDeviceAndAnEndedCaptureEndTheWaitForASequence) {
  ClMadeRecording oMade;
  oMade.Open();
  oMade.Capture(true);
  oMade.Mode(6, 1);
  ClOpenPlayer oPlayer(oMade);
  oPlayer.Mode(6, 1);
  (*oPlayer).EnableCapture(oPlayer.Handle(), false);
  EXPECT_EQ(oPlayer.Next(), -50);
  (*oPlayer).EnableCapture(oPlayer.Handle(), true);
  const auto oBegin = std::chrono::steady_clock::now();
  EXPECT_EQ(oPlayer.Next(), -60);
  EXPECT_LT(std::chrono::steady_clock::now() - oBegin, std::chrono::seconds(2));
  EXPECT_THAT(oPlayer.Reason(), HasSubstr("no sequence of sensor mode 6"));
  (*oPlayer).Close(oPlayer.Handle());
  EXPECT_EQ(oPlayer.Next(), -43);
}

TEST(Player, OpeningsComeInOrderAndTheLastOneAgain) {
  ClMadeRecording oMade;
  for (const uint32_t nDevice : {1U, 2U}) {
    oMade.Open(nDevice);
    oMade.Call(
        eVTScanAPISetVSYNC, [](ClCallRecord& o) { o.AddNumber(1, eGiven, 9); }, nDevice == 1 ? -1 : -2,
        nDevice);
  }
  ClOpenPlayer oPlayer(oMade);
  for (const long nResult : {-1L, -2L, -2L}) {
    const StCall oAsked = AskedCall(eVTScanAPISetVSYNC, oPlayer.Handle(), static_cast<unsigned short>(9));
    EXPECT_EQ((*oPlayer).Answer(oPlayer.Handle(), oAsked, true).nResult, nResult);
    oPlayer.Open();
  }
}

TEST(Player, SequencesComeAtTheirTimes) {
  ClMadeRecording oMade;
  oMade.Open();
  oMade.Capture(true);
  oMade.Mode(6, 1);
  for (int n = 0; n < 60; ++n) oMade.Sequence(n);
  ClOpenPlayer oPlayer(oMade, 0.5);
  oPlayer.Mode(6, 1);
  const auto oBegin = std::chrono::steady_clock::now();
  for (int n = 0; n < 60; ++n) EXPECT_EQ(oPlayer.Next(), n);
  // 59 gaps of a millisecond at half the speed; no upper limit, since machines may be slow.
  EXPECT_GE(std::chrono::steady_clock::now() - oBegin, std::chrono::milliseconds(110));
}

TEST(Player, FramesThatAreShorterThanTheirModeAreNotLent) {
  ClMadeRecording oMade;
  oMade.Open();
  oMade.Capture(true);
  oMade.Mode(6, 1);
  oMade.Sequence(1, 960 * 679);
  ClOpenPlayer oPlayer(oMade);
  oPlayer.Mode(6, 1);
  EXPECT_EQ(oPlayer.Next(), -60);
  EXPECT_THAT(oPlayer.Reason(), HasSubstr("651840 bytes"));
}

TEST(Player, ADamagedFrameEndsTheStreamThere) {
  ClMadeRecording oMade;
  oMade.Open();
  oMade.Capture(true);
  oMade.Mode(6, 1);
  oMade.Sequence(1);
  const size_t nBefore = oMade.Bytes().size();
  oMade.Sequence(2);
  std::vector<uint8_t> aBytes = oMade.Bytes();
  ++aBytes[nBefore + cnBlockHeader + 3];
  oMade.Replace(aBytes);
  ClOpenPlayer oPlayer(oMade);
  oPlayer.Mode(6, 1);
  EXPECT_EQ(oPlayer.Next(), 1);
  EXPECT_EQ(oPlayer.Next(), -60);
  EXPECT_THAT(oPlayer.Reason(), HasSubstr("the recording ends here"));
}

TEST(Player, ASpeedThatIsNoneIsRefused) {
  for (const char* szSpeed : {"0", "fast", "1x", "nan", "1001"}) {
    setenv("KELVARIN_VT40_REPLAY_SPEED", szSpeed, 1);
    EXPECT_THROW(StPlayerSettings::OfEnvironment(), ClRecordingError) << szSpeed;
  }
  setenv("KELVARIN_VT40_REPLAY_SPEED", "max", 1);
  EXPECT_EQ(StPlayerSettings::OfEnvironment().dSpeed, 0.0);
  unsetenv("KELVARIN_VT40_REPLAY_SPEED");
}

TEST(Player, WideTextsAreTakenFromUtf8) {
  const std::string sText = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x96\xA8\xC3";
  EXPECT_EQ(Widen({sText.begin(), sText.end()}), L"a\xE4\x20AC\x1F5A8?");
}
