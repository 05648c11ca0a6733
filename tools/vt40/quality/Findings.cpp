// The table of the quality command, its curves, and their JSON.
#include "quality/Findings.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "Report.h"

namespace {

using Facts = nlohmann::ordered_json;

constexpr const char* caszStages[] = {"unmerged", "raw", "balanced", "warped", "rectified"};
constexpr unsigned int cnDrawnBlack = 500;

double Rounded(double d, double dPerUnit) {
  return std::round(d * dPerUnit) / dPerUnit;
}

Facts FactsOf(const StQualityRow& o) {
  Facts oRow = {
      {"name", o.sName}, {"unit", o.sUnit}, {"dpi", o.nDpi}, {"measured", Rounded(o.dMeasured, 1e4)}};
  if (o.eBound == StQualityRow::eNone) return oRow;
  oRow["limit"] = o.dLimit;
  oRow["bound"] = o.eBound == StQualityRow::eLeast ? "least" : "most";
  oRow["margin"] = Rounded(o.Margin(), 1e4);
  oRow["met"] = !o.Missed();
  return oRow;
}

std::string LineOf(const StQualityRow& o) {
  char szLimit[24] = "", szMargin[24] = "", szLine[160];
  if (o.eBound != StQualityRow::eNone) {
    std::snprintf(szLimit, sizeof(szLimit), "%s %.3f",
                  o.eBound == StQualityRow::eLeast ? ">=" : "<=", o.dLimit);
    std::snprintf(szMargin, sizeof(szMargin), "%+.3f", o.Margin());
  }
  std::snprintf(szLine, sizeof(szLine), "%-42s %4u %11s %10.3f %10s  %s", o.sName.c_str(), o.nDpi, szLimit,
                o.dMeasured, szMargin, o.Missed() ? "missed" : o.sUnit.c_str());
  return szLine;
}

}  // namespace

void ClQualityFindings::AddCurve(const StResponse& oResponse, unsigned int nDpi, EQualityStage eStage,
                                 ClReport& oReport) {
  Facts oPlaces = Facts::array();
  for (const auto& aPlace : oResponse.aPlaces) {
    Facts oValues = Facts::array();
    for (const double d : aPlace) oValues.push_back(Rounded(d, 1e3));
    oPlaces.push_back(oValues);
  }
  oReport.Facts()["curves"].push_back({{"pattern", caszSheetNames[oResponse.eKind]},
                                       {"direction", oResponse.bAlongX ? "across" : "down"},
                                       {"dpi", nDpi},
                                       {"stage", caszStages[eStage]},
                                       {"frequencies", oResponse.aFrequencies},
                                       {"places", oPlaces}});
  if (eStage != eRaw && eStage != eRectified) return;
  StCurve oCurve;
  oCurve.sName = std::to_string(nDpi) + (eStage == eRaw ? " DPI RAW" : " DPI RECTIFIED");
  oCurve.nGrey = nDpi == cnDrawnBlack ? 0 : 130;
  oCurve.bDashed = eStage == eRaw;
  for (size_t n = 0; n < oResponse.aFrequencies.size() && !oResponse.aPlaces.empty(); ++n) {
    oCurve.aX.push_back(oResponse.aFrequencies[n]);
    oCurve.aY.push_back(oResponse.Least(n));
  }
  m_aCurves[oResponse.eKind][oResponse.bAlongX ? 0 : 1].push_back(oCurve);
}

void ClQualityFindings::AddEven(ESheetKind eKind, unsigned int nDpi, const StEvenness& oEvenness) {
  m_aEven.push_back({eKind, nDpi, oEvenness});
}

void ClQualityFindings::AddEvenRows() {
  for (const StEven& o : m_aEven) {
    double dSwing = 0;
    for (const StEven& oOther : m_aEven) {
      if (oOther.nDpi == o.nDpi && oOther.eKind != o.eKind)
        dSwing = std::fabs(o.oEvenness.dMean - oOther.oEvenness.dMean);
    }
    AddRows(o.oEvenness, o.eKind, dSwing, o.nDpi, m_aRows);
  }
  m_aEven.clear();
}

void ClQualityFindings::Draw(const Write& fnWrite) const {
  for (const StLinearity& oLinearity : m_aSteps) {
    StCurve oSteps{"STEPS", {}, {}, 0, false};
    std::vector<StPoint> aSteps = oLinearity.aSteps;
    std::sort(aSteps.begin(), aSteps.end(), [](const StPoint& a, const StPoint& b) { return a.dX < b.dX; });
    for (const StPoint& o : aSteps) {
      oSteps.aX.push_back(o.dX);
      oSteps.aY.push_back(o.dY);
    }
    const StCurve oLine{
        "BEST LINE", {0, 1}, {oLinearity.dOffset, oLinearity.dOffset + oLinearity.dSlope}, 150, true};
    fnWrite(DrawCurves({oSteps, oLine}, 1, 0.125, 256, 32), "curve-steps");
  }
  for (int nKind = eSine; nKind <= eEdges; ++nKind) {
    for (int n = 0; n < 2; ++n) {
      std::vector<StCurve> aCurves = m_aCurves[nKind][n];
      if (aCurves.empty()) continue;
      StCurve oLimit{"LEAST AT 500 DPI", {}, {}, 170, true};
      for (int f = 1; f <= cnFrequencies; ++f) {
        oLimit.aX.push_back(f);
        oLimit.aY.push_back(LeastResponse(static_cast<ESheetKind>(nKind), f));
      }
      aCurves.push_back(oLimit);
      fnWrite(DrawCurves(aCurves, 10, 1, 1.4, 0.2),
              std::string("curve-") + caszSheetNames[nKind] + (n == 0 ? "-across" : "-down"));
    }
  }
}

void ClQualityFindings::Report(ClReport& oReport) {
  AddEvenRows();
  Facts oRows = Facts::array();
  std::vector<std::string> aMissed;
  char szHead[160];
  std::snprintf(szHead, sizeof(szHead), "%-42s %4s %11s %10s %10s", "", "dpi", "limit", "measured", "margin");
  oReport.Line(szHead);
  for (const StQualityRow& o : m_aRows) {
    oRows.push_back(FactsOf(o));
    oReport.Line(LineOf(o));
    if (o.Missed()) aMissed.push_back(o.sName);
  }
  oReport.Facts()["rows"] = oRows;
  if (aMissed.empty()) return;
  oReport.SetVerdict(eExitNegative, (aMissed.size() == 1 ? "a limit is missed: \""
                                                         : std::to_string(aMissed.size()) +
                                                               " limits are missed, the first of them: \"") +
                                        aMissed[0] + "\"");
}
