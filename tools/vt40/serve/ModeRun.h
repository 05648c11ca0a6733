// What the station does in one capture mode: frames, facts and captures.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "Frame.h"
#include "Observers.h"
#include "Scanner.h"

namespace Serve {

/// A capture as the scanner gave it.
struct StTaken {
  nlohmann::ordered_json oFacts;  ///< kind, mode, score, done, condition, and those of its kind
  std::vector<std::pair<std::string, ClPicture>> aPictures;
};

/// Where the station's thread puts what it has.
class ClStationSink {
 public:
  virtual ~ClStationSink() = default;
  virtual void Frame(std::shared_ptr<ClFrame> pFrame) = 0;
  virtual void Facts(const nlohmann::ordered_json& oFacts) = 0;
  virtual void Taken(StTaken oTaken) = 0;
};

/// Whether the word names a mode.
bool IsMode(const std::string& sMode);

/// One mode, from its setting to the next.
///
/// Threads  thread-bound.
/// Errors   those of ClScanner.
class ClModeRun {
 public:
  /// Sets the mode. nFrame counts frames over all modes.
  ClModeRun(ClScanner& oScanner, std::string sMode, ClStationSink& oSink, ClFramePool& oPool,
            uint32_t& nFrame);

  /// Whether frames come by themselves.
  bool Streams() const { return m_sMode != "off"; }
  /// Waits for one frame, and passes on what it shows.
  void Step();
  /// Takes the picture that the mode gives now. Errors: ClServiceError 409 in the automatic modes.
  StTaken Capture();

 private:
  bool IsAutomatic() const { return m_sMode == "auto" || m_sMode == "auto-live"; }
  void StepPreview(ClFrame& oFrame);
  void StepRoll(ClFrame& oFrame);
  void StepSignature(ClFrame& oFrame);
  StTaken Begin(const char* szKind, const StDelivery& oDelivery) const;
  StTaken TakeFull(const ClPicture* pPreview);
  StTaken TakeRoll(const ClPicture& oPicture, const StDelivery& oDelivery) const;
  StTaken TakeSignature(bool bDone);

  ClScanner& m_oScanner;
  const std::string m_sMode;
  ClStationSink& m_oSink;
  ClFramePool& m_oPool;
  uint32_t& m_nFrame;
  ClFingerObserver m_oFingers;
  bool m_bTaken = false;         ///< the capture that the scanner reports was fetched
  unsigned int m_nFinished = 0;  ///< width of the roll that is finished; 0 while one goes on
  ClPenRest m_oRest;
};

}  // namespace Serve
