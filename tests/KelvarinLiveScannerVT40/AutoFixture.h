// A scanner in automatic mode, for tests that follow its decisions through the simulator's record.
#pragma once

#include <string>

#include "ApiFixture.h"
#include "Seeds.h"

/// Two seconds of previews of a still or empty scene.
constexpr int cnFewFrames = 30;
/// Enough for two placements of a hand that settles.
constexpr int cnManyFrames = 200;

class AutoScanner : public Api {
 protected:
  void SetUp() override { ASSERT_EQ(LS_VT40Initialize(nullptr), 0); }

  /// The scene's first scanner, opened and switched to the mode.
  void Start(const std::string& sScene, int nMode = KLV_VT40_CAPTURE_MODE_AUTO) {
    if (m_h != nullptr) {
      ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
    }
    LoadScene(sScene);
    ASSERT_EQ(Open(), 0);
    ASSERT_EQ(LS_VT40SetCaptureMode(m_h, nMode), 0);
  }

  /// The sequences in the full-resolution mode.
  static std::vector<VTSimFrame> Shots() {
    std::vector<VTSimFrame> aShots;
    for (const VTSimFrame& oFrame : Frames()) {
      if (oFrame.nSensorMode == 34) aShots.push_back(oFrame);
    }
    return aShots;
  }

  /// Polls up to nFrames previews until the state differs from bDone's opposite; the last preview.
  StDelivered PollUntil(bool bDone, int nFrames) {
    StDelivered oPreview;
    for (int n = 0; n < nFrames; ++n) {
      oPreview = Preview();
      if (oPreview.nError != 0 || (oPreview.bDone != 0) == bDone) return oPreview;
    }
    ADD_FAILURE() << "still not after " << nFrames << " previews";
    return oPreview;
  }

  unsigned int Condition() {
    unsigned int nCondition = 1000, nReserved = 1000;
    EXPECT_EQ(LS_VT40GetScannerCondition(m_h, &nCondition, &nReserved), 0);
    EXPECT_EQ(nReserved, 0u);
    return nCondition;
  }
};
