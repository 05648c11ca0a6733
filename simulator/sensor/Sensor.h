// One scanner's optics and sensor: turns what lies on the platen into raw frames.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "scene/PlatenScene.h"
#include "sensor/EpromFiles.h"
#include "sensor/FrameRow.h"
#include "sensor/Noise.h"
#include "sensor/Optics.h"
#include "sensor/Reflectance.h"
#include "sensor/SensorMode.h"
#include "sensor/Signal.h"

namespace Simulator {

/// What the host has set for a sequence.
///
/// aMasks     one word of LEDs for each frame: 0 is dark, bit 0 the main light, other bits single colours.
struct ClSensorSettings {
  const ClSensorMode* pMode = nullptr;
  unsigned nExposure = 0;
  std::array<unsigned, 3> anGain{};
  std::vector<uint64_t> aMasks;

  size_t PlaneBytes() const {
    return pMode ? static_cast<size_t>(pMode->nWidth) * static_cast<size_t>(pMode->nHeight) : 0;
  }
  double Seconds() const { return pMode ? pMode->dFrameSeconds * static_cast<double>(aMasks.size()) : 0.0; }
};

/// The properties of one scanner follow from its serial number alone; noise follows from the seed of the
/// scene and the number of the sequence. The same input gives the same bytes.
///
/// Threads    thread-bound; the calibration files are const and may be read from any thread.
/// Cost       memory for the mode in use is taken at the first frame and kept until Free.
class ClSensor {
 public:
  ClSensor(const ClScannerDescription& oScanner, uint64_t nSceneSeed);

  /// Changes what lies on the platen, the noise, and what is wrong with the optics; calibration stays.
  void SetScene(const ClScannerDescription& oScanner, uint64_t nSceneSeed);

  /// Changes what lies on the platen, the room light and the noise's strength. oPlaten is made of the same
  /// description.
  void Lay(const ClScannerDescription& oScanner, ClPlatenScene oPlaten);

  /// Writes the planes of a sequence, one after the other. They show the platen at dSeconds, each under the
  /// room light of its own moment. In a sequence of one dark and one lit plane the
  /// low four bits of the first byte give the order: 0 when the dark plane comes first.
  void Render(const ClSensorSettings& oSettings, double dSeconds, uint64_t nSequence, uint8_t* pOut);

  /// One frame without an order tag, under the room light of dLightSeconds.
  void RenderFrame(const ClSensorSettings& oSettings, uint64_t nMask, double dSeconds, double dLightSeconds,
                   uint64_t nNumber, uint8_t* pOut);

  /// Black ridges on white, right way round, and the area near skin; both pictures have the platen's size.
  void GroundTruth(double dSeconds, uint8_t* pPicture, uint8_t* pCover);
  /// The same of the skin that rolled over the glass between two times, unrolled.
  void UnrolledTruth(double dFrom, double dUntil, uint8_t* pPicture, uint8_t* pCover);

  /// Moments of the same number show the same picture.
  uint64_t StateAt(double dSeconds) const;
  ClPlatenFacts Facts(double dSeconds) const;
  const ClPlatenScene& Scene() const noexcept { return m_oScene; }
  /// The way of the pen; null when the scene has none.
  const ClPenPath* Pen() const noexcept { return m_oScene.Pen(); }

  /// Gives back all memory of frames; the next frame takes it anew.
  void Free();

  /// Where the dots of the target fall on the full sensor, in the order of the geometric calibration file;
  /// none without a target.
  std::vector<ClPoint> TargetDots() const;

  /// The sheet that lies there at a time; null without one.
  const ClSheetDescription* SheetAt(double dSeconds) const noexcept;

  const ClOptics& Optics() const noexcept { return m_oOptics; }
  /// A calibration file by name; null when the scanner has none of that name.
  const ByteBlock* EpromFile(const std::string& sName) const;
  static const std::array<const char*, 3>& EpromNames();

  /// Exposure that gives the nominal level in full readout.
  unsigned NominalExposure() const noexcept { return m_nNominalExposure; }
  /// Gains that do so.
  const std::array<unsigned, 3>& NominalGain() const noexcept { return m_anNominalGain; }
  /// Whether the scanner draws its power from USB. Firmware below "2.07" doesn't know of it and runs on its
  /// own supply.
  bool UsbPowered() const noexcept { return m_bUsbPowered; }

 private:
  static void CopyTruth(const ClPlatenMap& oMap, uint8_t* pPicture, uint8_t* pCover);
  void SetPower(const ClScannerDescription& oScanner);
  void PrepareSignal(const ClSensorMode& oMode, double dSeconds);
  double AmbientAt(double dSeconds) const noexcept;
  void PrepareColumns(const ClSensorSettings& oSettings, double dLight, double dAmbient);
  void MakePlane(const ClSensorMode& oMode, bool bLit, uint64_t nNumber, uint8_t* pOut);
  bool LitFirst(uint64_t nSequence) const noexcept;

  struct ClCachedSignal {
    int nMode = 0;
    uint64_t nDrawing = 0;
    uint64_t nUsed = 0;
    ClSignal oSignal;
  };

  uint64_t m_nDeviceSeed;
  uint64_t m_nNoiseSeed = 0;
  unsigned m_nRevision;
  ClOptics m_oOptics;
  ClNoise m_oNoise;
  GainTable m_oGains;
  std::array<ByteBlock, 3> m_aEprom;
  std::array<double, 4> m_adTap;

  ClPlatenScene m_oScene;
  uint64_t m_nLaid = 0;  // counts scenes and layings, which may look alike to m_oScene and differ in prints
  ClTargetDescription m_oTarget;
  std::vector<ClSheetDescription> m_aSheets;
  bool m_bUsbPowered = false;
  unsigned m_nNominalExposure = 0;
  std::array<unsigned, 3> m_anNominalGain{};
  std::vector<ClAmbientPoint> m_aAmbient;  // never empty
  double m_dNoise = 0.0;
  EPlaneOrder m_eOrder = eOrderMixed;

  ClPlatenMap m_oMap;
  ClReflectance m_oReflectance;
  uint64_t m_nDrawing = 0;  // counts drawings of the scene; 0 before the first
  uint64_t m_nDrawnState = 0;
  uint64_t m_nUses = 0;
  std::array<ClCachedSignal, 2> m_aSignals;
  ClSignal* m_pSignal = nullptr;
  std::array<std::vector<uint16_t>, 2> m_aGain;  // by the parity of the row
  std::array<std::vector<int16_t>, 2> m_aBase;
};

/// Revision of a ten-finger scanner: two letters at offset 5 of the serial, "AA" being 0; 0 when there are
/// none.
unsigned RevisionOf(const std::string& sSerial);

}  // namespace Simulator
