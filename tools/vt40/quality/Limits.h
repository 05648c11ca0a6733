// The limits of the image quality standard for live-scan devices of 500 dpi, and the rows of the table.
#pragma once

#include <string>
#include <vector>

#include "quality/Geometry.h"
#include "quality/Greys.h"
#include "quality/Response.h"

/// One line of the table. Rows without a limit are for information.
struct StQualityRow {
  std::string sName;
  std::string sUnit;
  unsigned int nDpi;
  double dMeasured;
  enum EBound { eNone, eLeast, eMost } eBound = eNone;
  double dLimit = 0;

  /// By how much the limit is kept; negative where it is missed.
  double Margin() const;
  bool Missed() const { return eBound != eNone && !(Margin() >= 0); }
};

/// The modulation that sine waves and edges keep at least, and the contrast that bars do, at a frequency in
/// cycles per millimetre. Appendix F of the electronic biometric transmission specification: the table for
/// sine waves at 500 dpi, which edges share, and 0.000304105 f^2 - 0.0799095 f + 1.02774 for bars.
double LeastResponse(ESheetKind eKind, double dFrequency);

// What was measured on one picture, as rows. Pictures of another resolution than 500 dpi have no limits: the
// standard knows none for them.
void AddRows(const StResponse& oResponse, unsigned int nDpi, std::vector<StQualityRow>& aRows);
void AddRows(const StGeometry& oGeometry, unsigned int nDpi, std::vector<StQualityRow>& aRows);
void AddRows(const StLinearity& oLinearity, unsigned int nDpi, std::vector<StQualityRow>& aRows);
/// dSwing: how far the bright sheet lies above the dark one; 0 where only one was seen.
void AddRows(const StEvenness& oEvenness, ESheetKind eKind, double dSwing, unsigned int nDpi,
             std::vector<StQualityRow>& aRows);
/// szStage: "print" or "masked print".
void AddGreyRange(unsigned int nGreys, const char* szStage, unsigned int nDpi,
                  std::vector<StQualityRow>& aRows);
