// One scanner on the bus: its registers, its capture, and what the control side does to it.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "KelvarinVTScanAPI/CharacterDisplay.h"
#include "KelvarinVTScanAPI/Latest.h"
#include "KelvarinVTScanAPI/VTSim.h"
#include "scene/SceneDescription.h"
#include "sensor/Sensor.h"

namespace Simulator {

/// A device handle is a session: the scanner serves one at a time. An unplugged scanner has lost its session
/// for good.
///
/// Sequences are rendered by the thread that locks them, so that without a clock the same calls give the same
/// bytes.
///
/// Threads    thread-safe. Locks are taken in the order m_oLockers, m_oRender, m_oState; none is held while
/// another
///            scanner is called.
/// Errors     every operation with a session throws ClSimError -60 when the session is lost.
class ClScanner {
 public:
  using Session = uint64_t;
  using Note = std::function<void(const std::string&)>;

  /// fnNote gets what the fault script does to this scanner.
  ClScanner(const ClScannerDescription& oDescription, const ClSceneDescription& oScene, Note fnNote);

  const std::string& Serial() const noexcept { return m_sSerial; }
  unsigned Product() const noexcept { return m_nProduct; }
  bool LegacyEprom() const noexcept { return m_bLegacyEprom; }

  // The side of the bus and of the host.

  bool Plugged();
  bool Plugged(Session nSession);
  /// Errors     -60 unplugged; -61 there is a session already.
  Session Open();
  /// Ends the session and its capture, wakes waiting threads, and frees the frames. A lost session is no
  /// error.
  void Close(Session nSession);
  void Check(Session nSession);

  std::string Version(Session nSession);
  bool UsbPowered(Session nSession);
  double FrameRate(Session nSession);
  std::string EpromList(Session nSession);
  /// Errors     -200 no such file.
  ByteBlock ReadEprom(Session nSession, const std::string& sName);

  void SetExposure(Session nSession, unsigned nExposure);
  void SetGain(Session nSession, const std::array<unsigned, 3>& anGain);
  void SetIllumination(Session nSession, unsigned nPattern);
  void SetStatusLed(Session nSession, uint64_t nPattern);
  void Beep(Session nSession, unsigned nArg1, unsigned nArg2);

  /// Sets mode and masks together. Errors -44 no such mode, no masks or too many; no sequence comes
  /// afterwards.
  void SetCaptureMode(Session nSession, int nMode, const std::vector<uint64_t>& aMasks);
  /// Sets the mode alone; the masks of the last sequence stay. Errors -44 no such mode.
  void SetMode(Session nSession, int nMode);
  void SetMasks(Session nSession, const std::vector<uint64_t>& aMasks);
  /// Without a mode no sequence comes.
  void ForgetMode() noexcept;
  void Resolution(Session nSession, unsigned& nWidth, unsigned& nHeight);
  void EnableCapture(Session nSession, bool bEnable);

  /// Waits for the next sequence, at most 2 seconds.
  ///
  /// Errors     -50 capture is off, no mode or no masks, or all blocks are out; -60 unplugged, or none came
  /// in time.
  void* LockSequence(Session nSession, size_t* pnBytes = nullptr);
  /// Errors     -44 the pointer is no locked sequence.
  void ReleaseSequence(Session nSession, void* pSequence);
  /// One frame in the present mode, exposed now. Errors -50 no mode; -44 the size isn't that of the mode.
  void TakeFrame(Session nSession, uint64_t nMask, int nWidth, int nHeight, std::vector<uint8_t>& aFrame);

  // The control side.

  void SetScene(const ClScannerDescription& oDescription, const ClSceneDescription& oScene);
  /// Replaces what lies on the platen; the time line goes on.
  void Lay(const ClScannerDescription& oDescription);
  /// These show the moment of the last sequence, or any moment.
  void GroundTruth(uint8_t* pPicture, uint8_t* pCover);
  void GroundTruthAt(double dTime, uint8_t* pPicture, uint8_t* pCover);
  void UnrolledTruth(double dFrom, double dUntil, uint8_t* pPicture, uint8_t* pCover);
  ClPoint PictureToSensor(double dX, double dY);
  void Optics(VTSimOptics& oOptics);
  /// The sheet at a time and what is printed on it.
  std::vector<VTSimSheetField> SheetAt(double dTime, VTSimSheet& oSheet);
  std::vector<VTSimMinutia> Minutiae(double dTime);
  /// VTSIM_RIDGE_SIDE squared.
  std::vector<VTSimRidge> Ridges(double dTime);
  std::vector<VTSimPoint> TargetDots();
  VTSimPen PenAt(double dTime);
  std::vector<VTSimStroke> PenStrokes();
  void State(VTSimState& oState);
  std::vector<VTSimBeep> Beeps();
  std::vector<VTSimLight> Lights();
  void Display(VTSimDisplay& oDisplay);
  /// The records of the sequences from nFirst on, at most nRoom; the oldest may be forgotten.
  unsigned Frames(uint64_t nFirst, VTSimFrame* pFrames, unsigned nRoom);
  /// Waits until that many sequences were handed out. False when they weren't in time.
  bool WaitForSequences(uint64_t nCount, std::chrono::milliseconds oTimeout);
  void Advance(double dSeconds);
  void SetPlugged(bool bPlugged);
  void PlanPlug(double dTime, bool bPlugged);
  void SetEprom(const std::string& sName, const ByteBlock* pData);
  void RestoreEprom(const std::string& sName);
  void SetVersion(const std::string& sVersion);
  void Hold(bool bHold);
  void Pass(unsigned nCount);
  void Delay(unsigned nMilliseconds);
  void ClearFaults();

 private:
  static constexpr size_t cnFramesKept = 4096;
  static constexpr size_t cnSignalsKept = 256;

  using Clock = std::chrono::steady_clock;
  using Guard = std::unique_lock<std::mutex>;

  struct ClBlock {
    std::vector<uint8_t> aBytes;
    bool bOut = false;
  };
  struct ClPlan {
    double dTime;
    bool bPlug;
  };
  /// What a sequence shows.
  struct ClSight {
    double dTime;
    uint64_t nState;
    ClPlatenFacts oFacts;
  };
  struct ClChange {
    bool bMissing;
    ByteBlock aData;
  };

  // For all of these m_oState is held.
  void CheckLocked(Session nSession);
  double Time() const;
  void FollowPlans();
  void Plug(bool bPlugged);
  void Restart();
  void TakeDescription(const ClScannerDescription& oDescription, const ClSceneDescription& oScene);
  void CheckCanDeliver(Session nSession);
  bool WaitForSequence(Guard& oGuard, Session nSession, Clock::time_point oDeadline);
  Clock::time_point NextPlan(Clock::time_point oLimit) const;
  std::shared_ptr<ClBlock> FreeBlock();
  void Delivered(const ClSensorSettings& oSettings);
  void Record(const ClSensorSettings& oSettings, const ClSight& oSight);
  void FreeFrames();
  void AddLight(int nKind, uint64_t nWord);

  // m_oRender is held, and m_oState is not.
  uint8_t* RenderInto(ClBlock& oBlock, double dTime, uint64_t nSequence);

  const std::string m_sSerial;
  const unsigned m_nProduct;
  const bool m_bLegacyEprom;
  const Note m_fnNote;

  std::mutex m_oLockers;  // one thread waits for sequences at a time
  std::mutex m_oRender;   // guards m_oSensor (but not its files, which never change) and m_oRendered
  ClSensor m_oSensor;
  ClSensorSettings m_oRendered;  // of the sequence in the making

  std::mutex m_oState;  // guards all that follows
  std::condition_variable m_oChanged;
  bool m_bRealTime = false;
  bool m_bUsbPowered = false;
  std::string m_sVersion;
  std::map<std::string, ClChange> m_mapEprom;
  bool m_bPlugged = true;
  Session m_nSession = 0;
  Session m_nLastSession = 0;
  bool m_bCapture = false;
  ClSensorSettings m_oSettings;
  uint64_t m_nSettingsCount =
      0;  // counts changes of mode, masks and capture: sequences begun before are dropped
  unsigned m_nIllumination = 0;
  uint64_t m_nStatusLed = 0;
  unsigned m_nStatusWrites = 0;
  TpLatest<VTSimBeep> m_oBeeps{cnSignalsKept};
  unsigned m_nBeeps = 0;
  TpLatest<VTSimLight> m_oLights{cnSignalsKept};
  ClCharacterDisplay m_oDisplay;
  uint64_t m_nSequences = 0;
  bool m_bWaiting = false;
  std::vector<VTSimFrame> m_aFrames;  // a ring of fixed size: nothing is allocated for a sequence
  uint64_t m_nLastState = 0;          // of the last recorded sequence
  uint64_t m_nSteadySince = 0;
  uint64_t m_nFrames = 0;  // single frames of TakeFrame
  std::vector<std::shared_ptr<ClBlock>> m_aBlocks;
  bool m_bStarted = false;  // the time line runs
  double m_dTime = 0.0;     // time line: the whole of it, or what has to be added to the clock
  double m_dShownTime = 0.0;
  Clock::time_point m_oStart;
  Clock::time_point m_oDue;
  Clock::duration m_oDelay{0};
  bool m_bHold = false;
  unsigned m_nPasses = 0;
  std::vector<ClPlan> m_aPlans;
};

}  // namespace Simulator
