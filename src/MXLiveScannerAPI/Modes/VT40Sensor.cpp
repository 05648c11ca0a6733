// Rows of the sensor, and sequences.
#include "MXLiveScannerAPI/VT40Sensor.h"

#include <algorithm>
#include <cstring>

#include "MXLiveScannerAPI/FrameRoad.h"
#include "MXLiveScannerAPI/RawSequenceLock.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/Failure.h"
#include "MXTools/MonotonicClock.h"

namespace {

using Scanner = ClMXVTScanAPIHandleBase;

/// The number of lights of the longest sequence.
constexpr size_t cnMaxLights = 6;
// Lights of a frame, as the scanner numbers them: none, white, and the four colours.
constexpr unsigned long long cnDarkLight = 0;
constexpr unsigned long long cnWhiteLight = 1;
constexpr unsigned long long cnFirstColour = 0x200;
constexpr unsigned long long cnSecondColour = 0x400;
constexpr unsigned long long cnThirdColour = 0x800;
constexpr unsigned long long cnFourthColour = 0x1000;
/// A scan library gives up the wait for a sequence after two seconds.
constexpr int64_t cnStuckMs = 4000;

bool IsSignature(ClVT40Sensor::ERow eRow) {
  return eRow == ClVT40Sensor::eSignature || eRow == ClVT40Sensor::eSignatureHalf;
}

}  // namespace

void ClVT40Sensor::SetGains() {
  const unsigned int nGain = m_pSetup->GetGainLevel(1);
  const auto Channel = [nGain](unsigned int n) { return static_cast<int>(nGain >> (8 * n) & 0xFF); };
  m_pScanner->SetGain(Channel(0), Channel(1), Channel(2));
}

ClVT40Sensor::StSetting ClVT40Sensor::SettingOf(ERow eRow) const {
  const unsigned int nExposure = m_pSetup->GetExposure();
  switch (eRow) {
    case ePreview:
      if (m_bSmallImages) return {nExposure, Scanner::eScanMode960x1360};
      return {nExposure / 2, Scanner::eScanModeHalf};
    case eRoll:
      if (m_bSmallImages) return {nExposure * 4, Scanner::eScanMode960x1362};
      return {nExposure * 2, Scanner::eScanModeRoll};
    case eFull:
      if (m_bSmallImages) return {nExposure * 2, Scanner::eScanMode1920x2720};
      return {nExposure, Scanner::eScanModeFull};
    case eSignature:
      return {nExposure / 3, Scanner::eScanModeQuad};
    case eSignatureHalf:
      return {nExposure / 3, Scanner::eScanMode960x340};
  }
  KLV_RAISE_NUMBER(-44);
}

void ClVT40Sensor::Select(ERow eRow) {
  const StSetting oSetting = SettingOf(eRow);
  SetExposure(oSetting.nExposure);
  if (IsSignature(eRow)) {
    // There are only lit frames: the detector removes what does not move, and so the ambient light.
    SetSequence(oSetting.nScanMode, 1, {cnWhiteLight}, 1);
  } else {
    // One dark and one lit frame: their difference cancels the ambient light.
    SetSequence(oSetting.nScanMode, 2, {cnDarkLight, cnWhiteLight}, 2);
  }
}

void ClVT40Sensor::SelectLivenessLights() {
  const StSetting oSetting = SettingOf(ePreview);
  SetExposure(oSetting.nExposure);
  SetSequence(oSetting.nScanMode, 6,
              {cnFirstColour, cnSecondColour, cnFourthColour, cnThirdColour, cnDarkLight, cnDarkLight}, 1);
}

void ClVT40Sensor::SelectCapturedLight() {
  SetSequence(SettingOf(ePreview).nScanMode, 1, {cnSecondColour}, 1);
}

void ClVT40Sensor::SetExposure(unsigned int nExposure) {
  m_pScanner->SetVSYNCLength(static_cast<unsigned short>(nExposure));
}

void ClVT40Sensor::SetSequence(int nScanMode, unsigned int nEntries,
                               std::initializer_list<unsigned long long> aLights, unsigned int nLights) {
  // The words are copied, since the scan library may write to them.
  unsigned long long aWords[cnMaxLights] = {};
  std::copy(aLights.begin(), aLights.end(), aWords);
  // Frames of another size than the one asked for would be read past their end.
  KLV_CHECK(
      m_pScanner->SetCaptureMode(static_cast<Scanner::EScanMode_t>(nScanMode), nEntries, aWords, nLights));
}

ClRawSequenceLock ClVT40Sensor::NextSequence() {
  struct StWait {
    explicit StWait(std::atomic<int64_t>& rSinceMs) : nSinceMs(rSinceMs) {
      nSinceMs = Klv::MonotonicNow().total_milliseconds();
    }
    ~StWait() { nSinceMs = cnNoWait; }
    std::atomic<int64_t>& nSinceMs;
  };
  const StWait oWait(m_nWaitsSinceMs);
  return ClRawSequenceLock(*m_pScanner);
}

void ClVT40Sensor::EndStuckWait() {
  int64_t nSinceMs = m_nWaitsSinceMs;
  if (nSinceMs == cnNoWait || Klv::MonotonicNow().total_milliseconds() - nSinceMs < cnStuckMs) return;
  // Whoever takes the moment away ends the wait; the others find none.
  if (!m_nWaitsSinceMs.compare_exchange_strong(nSinceMs, cnNoWait)) return;
  m_bEnded = true;
  try {
    m_pScanner->EnableCaptureThread(false);
  } catch (...) {
    // The call that waits reports what comes of it.
  }
}

void ClVT40Sensor::ReadDifference(ClImage& oDifference) {
  ClRawSequenceLock oSequence = NextSequence();
  ClFrameRoad::Difference(oSequence.Data(), oDifference);
  oSequence.Release();
}

void ClVT40Sensor::SkipSequence() {
  NextSequence().Release();
}

void ClVT40Sensor::ReadLit(ClImage& oLit) {
  ClRawSequenceLock oSequence = NextSequence();
  std::memcpy(oLit.Data(), oSequence.Data(), oLit.DataBytes());
  oSequence.Release();
}

void ClVT40Sensor::MakeLit(ERow eRow, ClImage& oLit) const {
  unsigned int nWidth = 0;
  unsigned int nHeight = 0;
  KLV_CHECK(m_pScanner->GetResolution(&nWidth, &nHeight));
  const ScannerTypes::Resolution& oMode =
      eRow == eSignatureHalf ? Scanner::m_oResVT40_960x340 : Scanner::m_oResVT40Quad;
  if (nWidth != oMode.nWidth || nHeight != oMode.nHeight) {
    KLV_RAISE(ClException, "Wrong image size.", -44);
  }
  oLit.NewWithType(ClImage::eUint8, static_cast<int>(nWidth), static_cast<int>(nHeight), 1, 0, 0, true);
}

ClPreviewRowGuard::~ClPreviewRowGuard() {
  try {
    if (!m_bRestored) Restore();
  } catch (...) {
    // The first failure is the one to report.
  }
}

void ClPreviewRowGuard::Restore() {
  m_oSensor.AssertHeld();
  m_oSensor.Select(ClVT40Sensor::ePreview);
  m_bRestored = true;
}
