// What was measured, as curves, rows of the table, and facts.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "quality/Limits.h"
#include "quality/Plot.h"

class ClReport;

/// Where a curve was measured.
///
/// eUnmerged   the raw frame of the full sensor.
/// eRaw        the raw frame, whose pixels are merged.
/// eBalanced   after the white balance.
/// eWarped     after the warp.
/// eRectified  in even light: the picture before the mask, to which the limits apply.
enum EQualityStage { eUnmerged, eRaw, eBalanced, eWarped, eRectified };

class ClQualityFindings {
 public:
  using Write = std::function<void(const ClPicture&, const std::string&)>;

  /// Keeps a curve for the report; those of raw and rectified frames are drawn as well.
  void AddCurve(const StResponse& oResponse, unsigned int nDpi, EQualityStage eStage, ClReport& oReport);
  void AddSteps(const StLinearity& oLinearity) { m_aSteps = {oLinearity}; }
  void AddEven(ESheetKind eKind, unsigned int nDpi, const StEvenness& oEvenness);
  std::vector<StQualityRow>& Rows() { return m_aRows; }

  /// Gives each curve's picture and its name.
  void Draw(const Write& fnWrite) const;
  /// Reports the table, and a negative verdict where a limit is missed.
  void Report(ClReport& oReport);

 private:
  struct StEven {
    ESheetKind eKind;
    unsigned int nDpi;
    StEvenness oEvenness;
  };

  void AddEvenRows();

  std::vector<StQualityRow> m_aRows;
  std::vector<StEven> m_aEven;
  std::vector<StLinearity> m_aSteps;  // one, or none
  std::vector<StCurve> m_aCurves[eEdges + 1][2];
};
