// A picture of a sheet, and where each of its pixels lies on the sheet.
#pragma once

#include <array>
#include <vector>

#include "Picture.h"

/// A position in pixels (whole numbers are pixel centres) or in millimetres.
struct StPoint {
  double dX;
  double dY;
};

/// Two polynomials of third degree in two variables, fitted to pairs of points.
class ClCubic {
 public:
  static constexpr size_t cnTerms = 10;

  /// The identity.
  ClCubic();
  /// Least squares over at least 10 pairs that determine it.
  ClCubic(const std::vector<StPoint>& aFrom, const std::vector<StPoint>& aTo);
  StPoint At(const StPoint& o) const;

 private:
  std::array<double, cnTerms> Terms(const StPoint& o) const;

  StPoint m_oMiddle{0, 0};
  double m_dScale = 1;
  std::array<double, cnTerms> m_aX{};
  std::array<double, cnTerms> m_aY{};
};

/// Where a sheet lies: its middle in the picture of 500 dpi, in millimetres from the picture's corner, and
/// its turn, counter-clockwise.
struct StSheetPlace {
  double dX = 0;
  double dY = 0;
  double dTurn = 0;  ///< radians

  StPoint ToSheet(const StPoint& oPlatenMm) const;
  StPoint ToPlaten(const StPoint& oSheetMm) const;
};

/// A picture whose pixels lie on the platen as two inverse maps say: between pixels of the picture and
/// millimetres on the platen, from its upper left corner.
struct StView {
  const ClPicture* pPicture = nullptr;
  double dPixelsPerMm = 0;      ///< for pictures that have one scale
  ClCubic oToPlaten, oToPixel;  ///< for raw frames, between pixels of the frame and of a picture
  bool bRaw = false;

  StPoint ToPlaten(const StPoint& oPixel) const;
  StPoint ToPixel(const StPoint& oPlatenMm) const;
};

/// Grey values with their positions on the sheet.
struct StSample {
  double dX;
  double dY;
  double dGrey;
};

/// The pixels whose centres lie in a rectangle of the sheet, which is given by its middle and half its sides.
std::vector<StSample> SamplesIn(const StView& oView, const StSheetPlace& oPlace, const StPoint& oMiddle,
                                double dHalfX, double dHalfY);

/// Solves the normal equations of a fit: symmetric, nSide by nSide, row after row. Errors: false when they
/// have no solution.
bool Solve(std::vector<double>& aMatrix, std::vector<double>& aRight);

/// The least of the values that 99 of 100 do not exceed; sorts them. There is at least one.
double Percentile99(std::vector<double>& aValues);
