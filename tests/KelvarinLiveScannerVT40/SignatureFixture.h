// A signature pad that goes frame by frame, by a clock of the test's own, and the true way of the pen.
#pragma once

#include <atomic>
#include <cmath>

#include "ApiFixture.h"

/// The time that clock() gives to the library.
inline std::atomic<long> s_nProcessorTime{0};

constexpr int cnPadWidth = 960;

class Signature : public OpenScanner {
 protected:
  static constexpr int cnFramesPerPreview = 3;

  /// Puts the pad before a scene.
  void Start(const std::string& sScene, bool bHalf = false) {
    ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
    ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_OFF), 0);
    m_bHalf = bHalf;
    ASSERT_EQ(LS_VT40SetPropertyLongA(m_h, "nSignatureSensorMode", bHalf), 0);
    StartHeld(sScene, KLV_VT40_CAPTURE_MODE_SIGNATURE);
    // Only from the second frame on there is something to compare.
    ASSERT_EQ(VTSimPassSequences(nullptr, 1), 0);
  }

  /// Lets the frames of one preview through and fetches it.
  StDelivered Step() {
    s_nProcessorTime += cnFramesPerPreview * (m_bHalf ? 8333 : 16667);
    VTSimPassSequences(nullptr, cnFramesPerPreview);
    return Preview(m_bHalf ? 800 * 400 : 800 * 800);
  }
  /// The clock of the library goes on, and the scene does not.
  static void Rest(double dSeconds) { s_nProcessorTime += static_cast<long>(1e6 * dSeconds); }
  /// Goes on to a moment of the scene; returns the number of previews that reported a finished signature.
  int StepUntil(double dSeconds) {
    int nDone = 0;
    while (State().dTime < dSeconds) {
      m_oPreview = Step();
      EXPECT_EQ(m_oPreview.nError, 0);
      if (m_oPreview.nError != 0) break;
      nDone += m_oPreview.bDone;
    }
    return nDone;
  }
  StDelivered Picture() { return Image(m_bHalf ? 1600 * 800 : 1600 * 1600); }

  StDelivered m_oPreview;
  bool m_bHalf = false;
};
