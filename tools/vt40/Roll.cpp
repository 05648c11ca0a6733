// The roll command.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

#include "CaptureResult.h"
#include "Commands.h"
#include "KelvarinLiveScannerVT40.h"
#include "Numbers.h"
#include "Observers.h"
#include "Progress.h"
#include "Scene.h"

namespace {

using Clock = std::chrono::steady_clock;

/// One roll: waits for the finger and shows the strip that grows under it.
class ClRollRun {
 public:
  ClRollRun(ClScanner& oScanner, const StRollOptions& oOptions, ClCaptureResult& oResult)
      : m_oScanner(oScanner), m_oOptions(oOptions), m_oResult(oResult), m_oReport(oResult.Report()) {
    m_oReport.Facts()["frames"] = nlohmann::ordered_json::array();
  }

  void Run() {
    const auto tEnd = Clock::now() + std::chrono::seconds(m_oOptions.oCapture.nTimeout);
    StDelivery oDelivery;
    try {
      while (!oDelivery.bDone && Clock::now() < tEnd) {
        oDelivery = m_oScanner.GetRoll(m_oSeen);
        std::swap(m_oSeen, m_oPicture);
        ++m_nFrame;
        Observe();
      }
    } catch (const ClToolError&) {
      WriteUnfinished();
      throw;
    }
    m_oResult.SetDelivery(oDelivery);
    if (oDelivery.bDone) return Finish(oDelivery.nResult);
    WriteUnfinished();
    m_oReport.SetVerdict(
        eExitTimeout, std::string(m_bFinger ? "the finger was not lifted" : "no finger rolled") + " within " +
                          std::to_string(m_oOptions.oCapture.nTimeout) + " seconds; see --timeout");
  }

 private:
  /// What was rolled before the roll came to no end.
  void WriteUnfinished() {
    if (m_bFinger) m_oResult.Add(m_oPicture, "roll-unfinished");
  }

  void Observe() {
    const StStrip oStrip = StripOf(m_oPicture);
    const double dWidth = Millimetres(oStrip, m_oPicture);
    m_bFinger = m_bFinger || oStrip.nEnd != 0;
    m_oProgress.Show(Bar(oStrip) + " " + OneDecimal(dWidth) + " mm, frame " + std::to_string(m_nFrame));
    m_oReport.Event("frames", "frame",
                    {{"frame", m_nFrame}, {"left", oStrip.nFirst}, {"width", oStrip.Width()}});
    if (m_oOptions.sFramesFolder.empty()) return;
    char szName[32];
    std::snprintf(szName, sizeof(szName), "frame-%04u", m_nFrame);
    m_oResult.Keep(m_oPicture, m_oOptions.sFramesFolder, szName);
  }

  /// The picture's columns as forty cells.
  std::string Bar(const StStrip& oStrip) const {
    constexpr unsigned int cnCells = 40;
    std::string sBar(cnCells, '.');
    for (unsigned int n = 0; n < cnCells; ++n) {
      const unsigned int nMiddle = (2 * n + 1) * m_oPicture.nWidth / (2 * cnCells);
      if (nMiddle >= oStrip.nFirst && nMiddle < oStrip.nEnd) sBar[n] = '#';
    }
    return "[" + sBar + "]";
  }

  void Finish(long nVerdict) {
    m_oResult.Add(m_oPicture, "roll");
    const double dWidth = Millimetres(StripOf(m_oPicture), m_oPicture);
    m_oReport.Facts()["millimetres"] = std::round(10.0 * dWidth) / 10.0;
    m_oReport.Facts()["verdict"] = VerdictOf(nVerdict);
    const std::string sVerdict = m_oReport.Facts()["verdict"]["text"];
    m_oReport.Line(sVerdict + " " + OneDecimal(dWidth) + " mm wide.");
    if (nVerdict != KLV_SUCCESS) {
      m_oReport.SetVerdict(eExitNegative, sVerdict + " (" + std::to_string(nVerdict) + ")", nVerdict);
    }
  }

  ClScanner& m_oScanner;
  const StRollOptions& m_oOptions;
  ClCaptureResult& m_oResult;
  ClReport& m_oReport;
  ClProgress m_oProgress;
  ClPicture m_oSeen;     ///< scratch
  ClPicture m_oPicture;  ///< the last that came
  bool m_bFinger = false;
  unsigned int m_nFrame = 0;
};

}  // namespace

void RunRoll(const StCommonOptions& oCommon, const StRollOptions& oOptions, ClReport& oReport) {
  ClCaptureResult oResult(oOptions.oCapture, oReport);
  if (!oOptions.sFramesFolder.empty()) PrepareFolder(oOptions.sFramesFolder);
  PaceScenes();
  ChooseScene(oCommon, true);
  const ClLibrary oLibrary;
  ClScanner oScanner(oLibrary, oCommon.sSerial);
  oReport.Use(oLibrary, oScanner);
  oScanner.SetProperty("nRolledPostProcess", oOptions.bAsItLay ? "0" : "1");
  oScanner.SetMode(KLV_VT40_CAPTURE_MODE_ROLL);
  ClRollRun(oScanner, oOptions, oResult).Run();
}
