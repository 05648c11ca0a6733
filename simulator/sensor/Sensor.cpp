// One scanner's optics and sensor: turns what lies on the platen into raw frames.
#include "sensor/Sensor.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <sstream>
#include <utility>

#include "scene/Random.h"
#include "scene/TargetContent.h"
#include "sensor/Light.h"

namespace Simulator {
namespace {

constexpr double cdNominalAmplification = 8192.0;
constexpr double cdBlackOffset = 3.0;     // level of a sensor without any light
constexpr double cdFixedDeviation = 0.3;  // of the fixed pattern, in levels
constexpr uint16_t cnNoisePerLevel = 512;
constexpr double cdShotNoise = 4096.0;
constexpr double cdColourStrength = 0.4;  // of a single colour relative to the main light
constexpr uint64_t cnMainLight = 1;
constexpr uint64_t cnColours = 0x1E00;

/// The four readout taps, by row and column parity, and the gain channel of each: a mosaic of two greens.
constexpr size_t caTapChannel[4] = {1, 0, 2, 1};

double StrengthOf(uint64_t nMask) {
  double dStrength = (nMask & cnMainLight) ? 1.0 : 0.0;
  for (uint64_t nBit = 0x200; nBit & cnColours; nBit <<= 1)
    if (nMask & nBit) dStrength += cdColourStrength;
  return dStrength;
}

/// The word after "FPGA:" in a version text.
std::string FirmwareOf(const std::string& sVersion) {
  const size_t nAt = sVersion.find("FPGA:");
  std::string sWord;
  if (nAt != std::string::npos) std::istringstream(sVersion.substr(nAt + 5)) >> sWord;
  return sWord;
}

}  // namespace

unsigned RevisionOf(const std::string& sSerial) {
  if (sSerial.size() < 7) return 0;
  const int nFirst = std::toupper(static_cast<unsigned char>(sSerial[5]));
  const int nSecond = std::toupper(static_cast<unsigned char>(sSerial[6]));
  if (nFirst < 'A' || nFirst > 'Z' || nSecond < 'A' || nSecond > 'Z') return 0;
  return static_cast<unsigned>((nFirst - 'A') * 26 + nSecond - 'A');
}

const std::array<const char*, 3>& ClSensor::EpromNames() {
  static const std::array<const char*, 3> s_aNames = {"GEOCAL", "BRGHTCAL", "GAINSET"};
  return s_aNames;
}

ClSensor::ClSensor(const ClScannerDescription& oScanner, uint64_t nSceneSeed)
    : m_nDeviceSeed(MixText(oScanner.sSerial.c_str())),
      m_nRevision(RevisionOf(oScanner.sSerial)),
      m_oOptics(m_nDeviceSeed, oScanner.oOptics),
      m_oNoise(m_nDeviceSeed),
      m_oGains(MeasureGains(m_nDeviceSeed, m_nRevision)) {
  // The factory calibrated it before anything went wrong.
  const ClOptics oCalibrated(m_nDeviceSeed);
  m_aEprom[0] = EncodeGeometry(MeasureGeometry(oCalibrated));
  m_aEprom[1] = EncodeBrightness(MeasureBrightness(oCalibrated), oScanner.bLegacyEprom);
  m_aEprom[2] = EncodeGains(m_oGains, oScanner.bLegacyEprom);
  ClRandom oRandom(Mix(m_nDeviceSeed, 0x546170));
  for (double& dTap : m_adTap) dTap = oRandom.Range(0.965, 1.035);
  SetScene(oScanner, nSceneSeed);
}

void ClSensor::SetScene(const ClScannerDescription& oScanner, uint64_t nSceneSeed) {
  Lay(oScanner, ClPlatenScene(oScanner));
  m_oOptics = ClOptics(m_nDeviceSeed, oScanner.oOptics);
  m_nNoiseSeed = Mix(m_nDeviceSeed, nSceneSeed);
  m_eOrder = oScanner.eOrder;
  SetPower(oScanner);
}

void ClSensor::Lay(const ClScannerDescription& oScanner, ClPlatenScene oPlaten) {
  m_oScene = std::move(oPlaten);
  ++m_nLaid;
  m_oTarget = oScanner.oTarget;
  m_aSheets = oScanner.aSheets;
  m_aAmbient = oScanner.aAmbient;
  if (m_aAmbient.empty()) m_aAmbient.push_back({0.0, oScanner.dAmbient});
  m_dNoise = oScanner.dNoise;
}

uint64_t ClSensor::StateAt(double dSeconds) const {
  return Mix(m_nLaid, m_oScene.StateAt(dSeconds));
}

/// The light suits the settings that a host chooses by the revision and the source of power.
void ClSensor::SetPower(const ClScannerDescription& oScanner) {
  m_bUsbPowered = oScanner.bUsbPowered && FirmwareOf(oScanner.sVersion) >= "2.07";
  m_nNominalExposure = m_nRevision == 0 ? 150 : m_bUsbPowered ? 400 : 300;
  for (size_t i = 0; i < 3; ++i)
    m_anNominalGain[i] =
        m_bUsbPowered ? m_oGains[1].anGain[i] : static_cast<unsigned>(m_oGains[1].anGain[i] >> 1);
}

const ByteBlock* ClSensor::EpromFile(const std::string& sName) const {
  for (size_t i = 0; i < m_aEprom.size(); ++i)
    if (sName == EpromNames()[i]) return &m_aEprom[i];
  return nullptr;
}

void ClSensor::Free() {
  m_oMap.oContact.Free();
  m_oMap.oCover.Free();
  m_oReflectance.Free();
  for (ClCachedSignal& oCached : m_aSignals) {
    oCached.oSignal.Free();
    oCached.nMode = 0;
  }
  m_pSignal = nullptr;
}

/// Draws the scene when it has changed, and the mode's view of it when that is out of date. The views of two
/// modes are kept, since a capture out of a preview switches to and fro.
void ClSensor::PrepareSignal(const ClSensorMode& oMode, double dSeconds) {
  const uint64_t nState = StateAt(dSeconds);
  if (m_oMap.oContact.Empty() || nState != m_nDrawnState) {
    m_oMap.Clear();
    m_oScene.Draw(dSeconds, m_oMap);
    const ClPoint oSpread = m_oOptics.Spread(), oPixel = m_oOptics.PixelMm();
    const double dX = oSpread.dX * oPixel.dX / cdPixelMm, dY = oSpread.dY * oPixel.dY / cdPixelMm;
    m_oReflectance.Update(m_oMap, dX * dX, dY * dY);
    m_nDrawnState = nState;
    ++m_nDrawing;
  }
  ClCachedSignal* pCached = &m_aSignals[0];
  for (ClCachedSignal& oCached : m_aSignals) {
    if (oCached.nMode == oMode.nMode) {
      pCached = &oCached;
      break;
    }
    if (oCached.nUsed < pCached->nUsed) pCached = &oCached;
  }
  if (pCached->nMode != oMode.nMode || pCached->nDrawing != m_nDrawing) {
    pCached->oSignal.Render(m_oReflectance, m_oOptics, oMode);
    pCached->nMode = oMode.nMode;
    pCached->nDrawing = m_nDrawing;
  }
  pCached->nUsed = ++m_nUses;
  m_pSignal = &pCached->oSignal;
}

double ClSensor::AmbientAt(double dSeconds) const noexcept {
  const ClAmbientPoint* pBefore = &m_aAmbient.front();
  for (const ClAmbientPoint& oPoint : m_aAmbient) {
    if (oPoint.dSeconds > dSeconds) {
      if (&oPoint == pBefore) break;
      const double dPart = (dSeconds - pBefore->dSeconds) / (oPoint.dSeconds - pBefore->dSeconds);
      return pBefore->dLevel + dPart * (oPoint.dLevel - pBefore->dLevel);
    }
    pBefore = &oPoint;
  }
  return pBefore->dLevel;
}

ClPlatenFacts ClSensor::Facts(double dSeconds) const {
  ClPlatenFacts oFacts;
  m_oScene.Count(dSeconds, oFacts);
  return oFacts;
}

/// Gain and base of each column for even and odd rows.
void ClSensor::PrepareColumns(const ClSensorSettings& oSettings, double dLight, double dAmbient) {
  const ClSensorMode& oMode = *oSettings.pMode;
  const double dExposure = oSettings.nExposure / (m_nNominalExposure * oMode.dNominalExposure);
  const size_t nWidth = static_cast<size_t>(oMode.nWidth);
  for (size_t nParity = 0; nParity < 2; ++nParity) {
    m_aGain[nParity].resize(nWidth);
    m_aBase[nParity].resize(nWidth);
    for (size_t x = 0; x < nWidth; ++x) {
      const size_t nTap = 2 * nParity + (x & 1), nChannel = caTapChannel[nTap];
      const double dAmplification =
          dExposure * m_adTap[nTap] * oSettings.anGain[nChannel] / m_anNominalGain[nChannel];
      m_aGain[nParity][x] =
          static_cast<uint16_t>(std::min(65535.0, cdNominalAmplification * dLight * dAmplification + 0.5));
      const double dColumn = static_cast<double>(Mix(m_nDeviceSeed, x) & 15) / 16.0;
      const double dBase = cdBlackOffset + dColumn + dAmbient * dAmplification;
      m_aBase[nParity][x] = static_cast<int16_t>(std::min(8191.0, dBase * cnLevelSteps));
    }
  }
}

void ClSensor::MakePlane(const ClSensorMode& oMode, bool bLit, uint64_t nNumber, uint8_t* pOut) {
  const size_t nWidth = static_cast<size_t>(oMode.nWidth);
  for (int y = 0; y < oMode.nHeight; ++y, pOut += nWidth) {
    const size_t nParity = static_cast<size_t>(y & 1);
    ClFrameRow oRow;
    oRow.pSignal = bLit ? m_pSignal->Row(y) : nullptr;
    oRow.pGain = m_aGain[nParity].data();
    oRow.pBase = m_aBase[nParity].data();
    oRow.pNoise = m_oNoise.Row(Mix(nNumber, static_cast<uint64_t>(y)));
    oRow.pFixed = m_oNoise.Row(Mix(m_nDeviceSeed, static_cast<uint64_t>(y)));
    oRow.nReadNoise = static_cast<uint16_t>(oMode.dReadNoise * m_dNoise * cnNoisePerLevel);
    oRow.nShotNoise = static_cast<uint16_t>(cdShotNoise * m_dNoise);
    oRow.nFixed = static_cast<int16_t>(cdFixedDeviation * std::min(1.0, m_dNoise) * cnNoisePerLevel);
    MakeRow(oRow, pOut, nWidth);
  }
}

void ClSensor::RenderFrame(const ClSensorSettings& oSettings, uint64_t nMask, double dSeconds,
                           double dLightSeconds, uint64_t nNumber, uint8_t* pOut) {
  const double dStrength = StrengthOf(nMask);
  if (dStrength > 0.0) PrepareSignal(*oSettings.pMode, dSeconds);
  PrepareColumns(oSettings, dStrength, AmbientAt(dLightSeconds));
  MakePlane(*oSettings.pMode, dStrength > 0.0, Mix(m_nNoiseSeed, nNumber), pOut);
}

bool ClSensor::LitFirst(uint64_t nSequence) const noexcept {
  if (m_eOrder != eOrderMixed) return m_eOrder == eOrderLitFirst;
  return (Mix(m_nNoiseSeed ^ 0x4F726465, nSequence) & 1) != 0;
}

void ClSensor::Render(const ClSensorSettings& oSettings, double dSeconds, uint64_t nSequence, uint8_t* pOut) {
  const std::vector<uint64_t>& aMasks = oSettings.aMasks;
  const bool bPair = aMasks.size() == 2 && (aMasks[0] == 0) != (aMasks[1] == 0);
  const bool bLitFirst = bPair && LitFirst(nSequence);
  const bool bSwap = bPair && bLitFirst == (aMasks[0] == 0);
  for (size_t i = 0; i < aMasks.size(); ++i) {
    const uint64_t nMask = aMasks[bSwap ? 1 - i : i];
    const double dLightSeconds = dSeconds + oSettings.pMode->dFrameSeconds * static_cast<double>(i);
    RenderFrame(oSettings, nMask, dSeconds, dLightSeconds, 64 * nSequence + i,
                pOut + i * oSettings.PlaneBytes());
  }
  if (bPair) {
    const unsigned nTag = bLitFirst ? 1 + static_cast<unsigned>(nSequence % 15) : 0;
    pOut[0] = static_cast<uint8_t>((pOut[0] & 0xF0u) | nTag);
  }
}

void ClSensor::GroundTruth(double dSeconds, uint8_t* pPicture, uint8_t* pCover) {
  ClPlatenMap oMap;
  oMap.Clear();
  m_oScene.Draw(dSeconds, oMap);
  CopyTruth(oMap, pPicture, pCover);
}

std::vector<ClPoint> ClSensor::TargetDots() const {
  std::vector<ClPoint> aDots;
  if (!m_oTarget.bThere) return aDots;
  for (const ClPlaceMm& oPlace : Simulator::TargetDots(m_oTarget))
    aDots.push_back(m_oOptics.PictureToSensor(MmToPixel(oPlace.dX), MmToPixel(oPlace.dY)));
  return aDots;
}

const ClSheetDescription* ClSensor::SheetAt(double dSeconds) const noexcept {
  for (const ClSheetDescription& o : m_aSheets)
    if (dSeconds >= o.dFrom && dSeconds < o.dUntil) return &o;
  return nullptr;
}

void ClSensor::UnrolledTruth(double dFrom, double dUntil, uint8_t* pPicture, uint8_t* pCover) {
  ClPlatenMap oMap;
  oMap.Clear();
  m_oScene.DrawUnrolled(dFrom, dUntil, oMap);
  CopyTruth(oMap, pPicture, pCover);
}

void ClSensor::CopyTruth(const ClPlatenMap& oMap, uint8_t* pPicture, uint8_t* pCover) {
  for (size_t i = 0; i < oMap.oContact.Count(); ++i) {
    pPicture[i] = static_cast<uint8_t>(255 - oMap.oContact.Data()[i]);
    if (pCover) pCover[i] = oMap.oCover.Data()[i] >= 128 ? 255 : 0;
  }
}

}  // namespace Simulator
