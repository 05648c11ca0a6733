// Three frames between a thread that makes them and one that takes the newest.
#pragma once

#include <algorithm>

#include "MXLiveScannerAPI/FrameWaits.h"
#include "MXLiveScannerTools/TpTripleBuffer.h"
#include "MXTools/FpImage.h"

/// A triple buffer with its images.
///
/// Threads  as the triple buffer's; Renew is thread-bound, while nobody writes.
class ClFrameBuffer : public ClTpTripleBuffer<ClImage> {
 public:
  /// Forgets what was written and gives the images their size, eUint8. Errors: -50 while a frame is read;
  /// nothing is changed then.
  void Renew(int nWidth, int nHeight) {
    SetBuffer(&m_aImages[0], &m_aImages[1], &m_aImages[2]);
    for (ClImage& oImage : m_aImages) oImage.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  }

  /// Waits for a frame that was not read yet, for nSeconds of the monotonic clock, or until a wait is in
  /// vain. False when none came.
  bool WaitForFrame(unsigned int nSeconds, const ClFrameWaits& oWaits) {
    const auto oEnd = Klv::MonotonicNow() + boost::posix_time::seconds(nSeconds);
    const boost::posix_time::time_duration oLook = boost::posix_time::milliseconds(cnLookMs);
    for (;;) {
      if (HasNewData()) return true;
      const auto oLeft = oEnd - Klv::MonotonicNow();
      if (oLeft <= boost::posix_time::time_duration() || oWaits.AreInVain()) return false;
      WaitNewData(std::min(oLeft, oLook));
    }
  }

  /// Copies the newest frame.
  void Fetch(ClImage& oImage) {
    TpReadLock<ClImage> oRead(*this);
    oImage = oRead.Item();
  }

 private:
  static constexpr long cnLookMs = 100;

  ClImage m_aImages[3];
};
