// What one frame of a stream shows: fingers at rest, the strip of a roll, the ink of a signature.
#pragma once

#include <chrono>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "Picture.h"

/// What one preview shows.
struct StFingers {
  const char* szState;
  const char* szReason;  ///< why there is no capture; empty when there is one
  int nPixels = 0;       ///< of fingers
  uint64_t nMotion = 0;
};

/// Compares each preview with the one before it, by the scanner's own limits.
class ClFingerObserver {
 public:
  /// bDone: the scanner has reported a capture with this preview. bTaken: the one before it was reported and
  /// fetched.
  StFingers Observe(const ClPicture& oPreview, bool bDone, bool bTaken);

 private:
  void Judge(StFingers& oSeen, bool bDone, bool bTaken) const;

  std::vector<unsigned char> m_aPrevious;
  int m_nPreviousPixels = 0;
};

/// The JSON of one preview.
nlohmann::ordered_json FactsOf(const StFingers& oSeen, unsigned int nFrame);

/// The part of a picture that has ridges, by columns.
struct StStrip {
  unsigned int nFirst = 0;
  unsigned int nEnd = 0;  ///< after the last; nFirst when there is none

  unsigned int Width() const { return nEnd - nFirst; }
};

StStrip StripOf(const ClPicture& oPicture);
/// The strip's width; 0 for a picture without a resolution.
double Millimetres(const StStrip& oStrip, const ClPicture& oPicture);
/// The JSON of a roll's verdict, with its name and text.
nlohmann::ordered_json VerdictOf(long nVerdict);

/// The part of a picture that has ink, half-open.
struct StInk {
  unsigned int nLeft = 0, nTop = 0, nRight = 0, nBottom = 0;
  unsigned int nPixels = 0;
};

/// Grey values below it are ink.
constexpr unsigned char cnInkLimit = 128;

StInk InkOf(const ClPicture& oPicture);
nlohmann::ordered_json JsonOf(const StInk& oInk);

/// Finds the end of a signature: the pen rests. The library's own measure is the processor time of the
/// process, which may stand still; this is the clock's.
class ClPenRest {
 public:
  using Clock = std::chrono::steady_clock;

  /// Looks at the ink of one more preview; true when the pen has rested for so many seconds, and over enough
  /// previews that a stall of this program is none.
  bool HasCome(const StInk& oInk, double dSeconds, Clock::time_point tNow = Clock::now());

 private:
  unsigned int m_nPixels = 0;
  int m_nUnchanged = 0;
  Clock::time_point m_tChange;
};
