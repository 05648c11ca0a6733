// When a signature is complete, and when the next one begins.
#pragma once

/// Units    ticks are microseconds that may wrap; the detect time is in seconds, 0 for never.
/// Threads  thread-bound.
class ClSignatureTiming {
 public:
  using Ticks = unsigned long;

  explicit ClSignatureTiming(Ticks nNow) : m_nLastActivity(nNow) {}

  /// Something moves over the pad.
  void Touch(Ticks nNow) { m_nLastActivity = nNow; }
  bool HasPaused(Ticks nNow, double dDetectTime) const {
    return dDetectTime > 0.0 && static_cast<double>(nNow - m_nLastActivity) / 1e6 > dDetectTime;
  }
  /// True while a signature of that many points is complete. To be called once a frame.
  bool IsDone(Ticks nNow, double dDetectTime, int nPoints) {
    if (!HasPaused(nNow, dDetectTime)) {
      m_nDoneFrames = 0;
      return false;
    }
    if (nPoints <= cnMostPointsUndone) return false;
    if (m_nDoneFrames < cnManyFrames) ++m_nDoneFrames;
    return true;
  }
  /// Whether the last frame was the first of a completion.
  bool IsFirstDoneFrame() const { return m_nDoneFrames == 1; }

 private:
  /// Fewer points are no signature, but an accidental touch.
  static constexpr int cnMostPointsUndone = 50;
  static constexpr int cnManyFrames = 2;

  Ticks m_nLastActivity;
  int m_nDoneFrames = 0;
};
