// How the tool waits for the scanner's own decision, and what it reports meanwhile.
#include "AutoCapture.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "KelvarinLiveScannerVT40.h"
#include "Numbers.h"
#include "Observers.h"
#include "Progress.h"

namespace {

using Clock = std::chrono::steady_clock;

/// What matters most comes first: a narrow terminal shows the beginning.
std::string ProgressLine(const StFingers& oSeen, unsigned int nFrame, unsigned int nCondition) {
  return std::string(oSeen.szState) + (oSeen.szReason[0] != '\0' ? ": " : "") + oSeen.szReason + " (frame " +
         std::to_string(nFrame) + ", finger pixels " + std::to_string(oSeen.nPixels) + ", dirt " +
         std::to_string(nCondition) + ")";
}

/// One run: what was seen and captured so far.
class ClAutoRun {
 public:
  ClAutoRun(ClScanner& oScanner, const StCaptureOptions& oOptions, ClCaptureResult& oResult)
      : m_oScanner(oScanner), m_oOptions(oOptions), m_oResult(oResult), m_oReport(oResult.Report()) {
    m_oReport.Facts()["captures"] = nlohmann::ordered_json::array();
    m_oReport.Facts()["frames"] = nlohmann::ordered_json::array();
  }

  /// True while captures are wanted and fetched in time.
  bool Next() {
    if (m_nCaptures == m_oOptions.nCount || !m_bFetched) return false;
    if (Clock::now() < m_tEnd) return true;
    m_oReport.SetVerdict(eExitTimeout, "no capture within " + std::to_string(m_oOptions.nTimeout) +
                                           " seconds (" + std::to_string(m_nCaptures) + " of " +
                                           std::to_string(m_oOptions.nCount) + " taken); see --timeout");
    return false;
  }

  void Step() {
    const StDelivery oSeenAs = m_oScanner.GetPreview(m_oPreview);
    const StFingers oSeen = m_oObserver.Observe(m_oPreview, oSeenAs.bDone, m_bTaken);
    const unsigned int nCondition = m_oScanner.Condition();
    ++m_nFrame;
    m_oProgress.Show(ProgressLine(oSeen, m_nFrame, nCondition));
    m_oReport.Event("frames", "frame", FactsOf(oSeen, m_nFrame));
    // The scanner goes on reporting "done" until the fingers are lifted.
    if (oSeenAs.bDone && !m_bTaken) Fetch(nCondition);
    m_bTaken = oSeenAs.bDone;
  }

  double LowestScore() const { return m_dLowestScore; }

 private:
  void Fetch(unsigned int nCondition) {
    const StDelivery oDelivery = m_oScanner.GetImage(m_oPicture);
    ++m_nCaptures;
    m_bFetched = oDelivery.bDone;
    m_dLowestScore = std::min(m_dLowestScore, oDelivery.dScore);
    m_oResult.SetDelivery(oDelivery);
    m_oResult.Add(m_oPreview, Name("preview"));
    m_oResult.Add(m_oPicture, Name("full"));
    m_oReport.Facts()["captures"].push_back({{"frame", m_nFrame},
                                             {"done", oDelivery.bDone},
                                             {"score", oDelivery.dScore},
                                             {"condition", nCondition}});
    if (!m_bFetched)
      m_oReport.SetVerdict(eExitNegative, "the fingers were gone before the picture was fetched");
    m_tEnd = Deadline();
  }

  /// "preview" and "full" for a single capture, numbered names for several.
  std::string Name(const char* szName) const {
    return m_oOptions.nCount == 1 ? szName : std::string(szName) + "-" + std::to_string(m_nCaptures);
  }

  Clock::time_point Deadline() const { return Clock::now() + std::chrono::seconds(m_oOptions.nTimeout); }

  ClScanner& m_oScanner;
  const StCaptureOptions& m_oOptions;
  ClCaptureResult& m_oResult;
  ClReport& m_oReport;
  ClProgress m_oProgress;
  ClFingerObserver m_oObserver;
  ClPicture m_oPreview;
  ClPicture m_oPicture;
  bool m_bTaken = false;
  bool m_bFetched = true;
  unsigned int m_nFrame = 0;
  unsigned int m_nCaptures = 0;
  double m_dLowestScore = 100.0;
  Clock::time_point m_tEnd = Deadline();
};

}  // namespace

void CaptureAutomatically(ClScanner& oScanner, const StCaptureOptions& oOptions, ClCaptureResult& oResult) {
  const bool bLive = oOptions.sMode == "auto-live";
  ClAutoRun oRun(oScanner, oOptions, oResult);
  oScanner.SetMode(bLive ? KLV_VT40_CAPTURE_MODE_AUTO_LIVE : KLV_VT40_CAPTURE_MODE_AUTO);
  while (oRun.Next()) oRun.Step();
  if (bLive && oRun.LowestScore() < oOptions.dMinScore) {
    oResult.Report().SetVerdict(eExitNegative, "liveness score " + OneDecimal(oRun.LowestScore()) +
                                                   " is below " + OneDecimal(oOptions.dMinScore) +
                                                   "; see --min-score");
  }
}
