// The quality command.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>

#include "Commands.h"
#include "Interruption.h"
#include "Picture.h"
#include "Progress.h"
#include "Report.h"
#include "Scanner.h"
#include "Scene.h"
#include "ServiceScanner.h"
#include "StandIn.h"
#include "ToolError.h"
#include "quality/Findings.h"

namespace {

constexpr unsigned int cnFullDpi = 500, cnPreviewDpi = 250;
constexpr double cdMmPerInch = 25.4;
constexpr char cszPrint[] = "print";
// The share of a masked picture's pixels that a print covers at least, and the grey below which a pixel is of
// it.
constexpr double cdLeastPrint = 0.01;
constexpr unsigned char cnPrintBelow = 200;
// Grey values by which pixels may be off their area's mean: of the bright and of the dark sheet.
constexpr double cdBrightPixel = 22, cdDarkPixel = 8;
// The last frequencies that pictures show. That of 500 dpi lies beyond half the sampling by a fiftieth, and
// is folded back next to itself.
constexpr double cdMostFull = 10, cdMostPreview = 4;

/// Looks at what lies on the platen until all that is wanted was seen.
class ClQualityRun {
 public:
  ClQualityRun(const std::string& sSerial, const StQualityOptions& oOptions, const StPictureFacts& oFacts,
               ClReport& oReport)
      : m_oScanner(sSerial),
        m_oOptions(oOptions),
        m_oFacts(oFacts),
        m_oReport(oReport),
        m_aLeft(oOptions.aSheets) {}

  void Run() {
    const auto tEnd = std::chrono::steady_clock::now() + std::chrono::seconds(m_oOptions.nTimeout);
    const StGridPoints oGrid = m_oScanner.GridPoints();
    for (size_t n = 0; n < oGrid.aPicture.size(); ++n) {
      m_aPicturePoints.push_back({oGrid.aPicture[n][0], oGrid.aPicture[n][1]});
      m_aSensorPoints.push_back({oGrid.aSensor[n][0], oGrid.aSensor[n][1]});
    }
    while (!m_aLeft.empty() && std::chrono::steady_clock::now() < tEnd) {
      Interruption::Check();
      m_oProgress.Show("Lay one of these on the platen: " + Names());
      Look();
    }
    m_oFindings.Draw([this](const ClPicture& oPicture, const std::string& sName) { Write(oPicture, sName); });
    m_oReport.Facts()["files"] = m_aFiles;
    // What was not seen counts before what was seen and is not good.
    if (!m_aLeft.empty()) m_oReport.SetVerdict(eExitTimeout, "these were not seen: " + Names());
    m_oFindings.Report(m_oReport);
  }

 private:
  std::string Names() const {
    std::string sNames;
    for (const std::string& s : m_aLeft) sNames += (sNames.empty() ? "" : ", ") + s;
    return sNames;
  }

  bool Wants(const std::string& sName) const {
    return std::find(m_aLeft.begin(), m_aLeft.end(), sName) != m_aLeft.end();
  }

  void Look() {
    const StStages oFull = m_oScanner.Stages(false);
    const std::optional<StFoundSheet> oSheet = FindSheet(PictureView(oFull.oRectified, cnFullDpi));
    if (!oSheet && !ShowsPrint(oFull.oMasked)) return;
    const std::string sName = oSheet ? caszSheetNames[oSheet->eKind] : cszPrint;
    if (!Wants(sName)) return;
    const bool bWaves = oSheet && oSheet->eKind <= eEdges;
    StStages oUnmerged;
    if (bWaves) oUnmerged.oRaw = m_oScanner.RawPicture();
    const StStages oPreview = m_oScanner.Stages(true);
    const std::optional<StFoundSheet> oAgain = FindSheet(PictureView(oPreview.oRectified, cnPreviewDpi));
    // Something else may have been laid in between.
    if (oSheet.has_value() != oAgain.has_value() || (oSheet && oSheet->eKind != oAgain->eKind)) return;
    m_aLeft.erase(std::remove(m_aLeft.begin(), m_aLeft.end(), sName), m_aLeft.end());
    Write(oFull.oRectified, sName);
    if (!oSheet) return MeasurePrint(oFull, oPreview);
    if (oSheet->eKind < eBright) AddPlace(*oSheet, oFull);
    if (bWaves) {
      AddCurves(RawView(oUnmerged.oRaw, oUnmerged), *oSheet, cnFullDpi, eUnmerged);
      MeasureWaves(oFull, *oSheet, cnFullDpi);
      return MeasureWaves(oPreview, *oAgain, cnPreviewDpi);
    }
    Measure(PictureView(oFull.oRectified, cnFullDpi), *oSheet, cnFullDpi);
    Measure(PictureView(oPreview.oRectified, cnPreviewDpi), *oAgain, cnPreviewDpi);
  }

  static StView PictureView(const ClPicture& oPicture, unsigned int nDpi) {
    StView oView;
    oView.pPicture = &oPicture;
    oView.dPixelsPerMm = nDpi / cdMmPerInch;
    return oView;
  }

  /// A raw frame, whose pixels the stored calibration places. The centre of a merged pixel lies between those
  /// of the full sensor that it is made of.
  StView RawView(const ClPicture& oPicture, const StStages& oStages) const {
    std::vector<StPoint> aRaw;
    for (const StPoint& o : m_aSensorPoints) {
      aRaw.push_back({(o.dX - (oStages.nMergeX - 1) / 2.0) / oStages.nMergeX,
                      (o.dY - (oStages.nMergeY - 1) / 2.0) / oStages.nMergeY});
    }
    StView oView;
    oView.pPicture = &oPicture;
    oView.bRaw = true;
    oView.oToPlaten = ClCubic(aRaw, m_aPicturePoints);
    oView.oToPixel = ClCubic(m_aPicturePoints, aRaw);
    return oView;
  }

  static bool ShowsPrint(const ClPicture& oMasked) {
    const auto nPrint = std::count_if(oMasked.aPixels.begin(), oMasked.aPixels.end(),
                                      [](unsigned char n) { return n < cnPrintBelow; });
    return static_cast<double>(nPrint) > cdLeastPrint * static_cast<double>(oMasked.aPixels.size());
  }

  void MeasurePrint(const StStages& oFull, const StStages& oPreview) {
    AddGreyRange(CountGreys(oFull.oRectified), "print", cnFullDpi, m_oFindings.Rows());
    AddGreyRange(CountGreys(oFull.oMasked), "masked print", cnFullDpi, m_oFindings.Rows());
    AddGreyRange(CountGreys(oPreview.oRectified), "print", cnPreviewDpi, m_oFindings.Rows());
    AddGreyRange(CountGreys(oPreview.oMasked), "masked print", cnPreviewDpi, m_oFindings.Rows());
  }

  /// Where the sheet lies, and how far the way from raw frame to picture has moved it, by its discs.
  void AddPlace(const StFoundSheet& oSheet, const StStages& oFull) {
    const StView oPicture = PictureView(oFull.oRectified, cnFullDpi), oRaw = RawView(oFull.oRaw, oFull);
    constexpr double dPart = cnFullDpi / cdMmPerInch / 4;  // pixels of a millimetre, in the mean of four
    StPoint oShift{0, 0};
    for (const double dX : {-cdMarkPlace, cdMarkPlace}) {
      for (const double dY : {-cdMarkPlace, cdMarkPlace}) {
        const StPoint oAfter = oSheet.oPlace.ToPlaten(DiscMiddle(oPicture, oSheet.oPlace, {dX, dY}));
        const StPoint oBefore = oSheet.oPlace.ToPlaten(DiscMiddle(oRaw, oSheet.oPlace, {dX, dY}));
        oShift.dX += dPart * (oAfter.dX - oBefore.dX);
        oShift.dY += dPart * (oAfter.dY - oBefore.dY);
      }
    }
    const auto Rounded = [](double d) { return std::round(1000 * d) / 1000; };
    m_oReport.Facts()["sheets"].push_back({{"kind", caszSheetNames[oSheet.eKind]},
                                           {"x", Rounded(oSheet.oPlace.dX)},
                                           {"y", Rounded(oSheet.oPlace.dY)},
                                           {"angle", Rounded(oSheet.oPlace.dTurn * 45 / std::atan(1.0))},
                                           {"shiftPixels", {Rounded(oShift.dX), Rounded(oShift.dY)}}});
  }

  void AddCurves(const StView& oView, const StFoundSheet& oSheet, unsigned int nDpi, EQualityStage eStage) {
    for (const bool bAlongX : {true, false}) {
      const StResponse oResponse =
          MeasureResponse(oView, oSheet, bAlongX, nDpi == cnFullDpi ? cdMostFull : cdMostPreview);
      if (eStage == eRectified) AddRows(oResponse, nDpi, m_oFindings.Rows());
      m_oFindings.AddCurve(oResponse, nDpi, eStage, m_oReport);
    }
  }

  void MeasureWaves(const StStages& oStages, const StFoundSheet& oSheet, unsigned int nDpi) {
    AddCurves(RawView(oStages.oRaw, oStages), oSheet, nDpi, eRaw);
    AddCurves(RawView(oStages.oBalanced, oStages), oSheet, nDpi, eBalanced);
    AddCurves(PictureView(oStages.oWarped, nDpi), oSheet, nDpi, eWarped);
    AddCurves(PictureView(oStages.oRectified, nDpi), oSheet, nDpi, eRectified);
  }

  void Measure(const StView& oView, const StFoundSheet& oSheet, unsigned int nDpi) {
    if (oSheet.eKind == eGrid) {
      for (const bool bAlongX : {true, false})
        AddRows(MeasureGeometry(oView, oSheet.oPlace, bAlongX), nDpi, m_oFindings.Rows());
    } else if (oSheet.eKind == eSteps) {
      const StLinearity oLinearity = MeasureLinearity(oView, oSheet.oPlace);
      AddRows(oLinearity, nDpi, m_oFindings.Rows());
      if (nDpi == cnFullDpi) m_oFindings.AddSteps(oLinearity);
    } else {
      m_oFindings.AddEven(oSheet.eKind, nDpi,
                          MeasureEvenness(oView, oSheet.eKind == eBright ? cdBrightPixel : cdDarkPixel));
    }
  }

  void Write(const ClPicture& oPicture, const std::string& sName) {
    m_aFiles.push_back(WritePicture(oPicture, m_oOptions.sFolder, sName, "png", m_oFacts));
  }

  ClServiceScanner m_oScanner;
  const StQualityOptions& m_oOptions;
  const StPictureFacts& m_oFacts;
  ClReport& m_oReport;
  ClProgress m_oProgress;
  ClQualityFindings m_oFindings;
  std::vector<std::string> m_aLeft;
  std::vector<StPoint> m_aPicturePoints, m_aSensorPoints;
  std::vector<std::string> m_aFiles;
};

}  // namespace

void RunQuality(const StCommonOptions& oCommon, const StQualityOptions& oOptions, ClReport& oReport) {
  PrepareFolder(oOptions.sFolder);
  ChooseScene(oCommon);
  const ClLibrary oLibrary;
  const std::string sSerial = oLibrary.ChooseSerial(oCommon.sSerial);
  oReport.Use(oLibrary, ScanLibraryVersion());
  oReport.Facts()["serial"] = sSerial;
  const StPictureFacts oFacts{ClLibrary::Software(), sSerial, "quality", oReport.IsSimulated(),
                              !StandIn::ReplayFile().empty()};
  ClQualityRun(sSerial, oOptions, oFacts, oReport).Run();
}
