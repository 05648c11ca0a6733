// Finds a regular grid of dots in the picture of a calibration target.
#pragma once

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXCalibrate/RefPointsGrid.h"
#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/TpArrayStatic.h"
#include "MXTools/Vector.h"

template <typename T>
struct Default;
template <typename T, class TMath>
class TpThinPlateSplines;

/// Binarises the picture, measures its objects, keeps those that look like dots and have neighbours one
/// pitch away, fits the ideal grid to them and positions it in the corrected image. The derived class defines
/// the pattern. Stored grids are judged as well.
///
/// Domain     one plane of 8-bit samples, or up to three that are searched one by one.
/// Units      lengths of the pattern in millimetres, resolutions in dots per inch, positions in pixels.
/// Ownership  owns no image and no data set.
/// Threads    thread-bound.
/// Errors     ClException -37 no input or output; -39 "Target and Source arrays must have same size!",
///            "Target data is corrupt", "Source data is corrupt"; -600 for reasons that the pattern and the
///            splines give; ClExBadAlloc -102.
/// Cost       dominated by binarising and labelling; the grid is quadratic in the number of dots.
class ClIpCalibrateGeometricBuildRefPointsBase : public ClProcessorBase {
 public:
  static constexpr double cdMillimetresPerInch = 25.4;
  static constexpr double cdInchesPerMetre = 39.37;

  using ClDot = ClRefPointsDot;
  using Grid = ClRefPointsGrid;
  using Points = TpArrayDynamic<ClVector, 10u>;
  using Spline = TpThinPlateSplines<float, Default<float>>;

  bool CanApply() override;
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  long Process() override;

 public:
  /// The ideal grid at the given resolution, moved by offsets in millimetres.
  virtual void BuildTargetPoints(Points& aOut, double dDpiX, double dDpiY, double dOffsetX,
                                 double dOffsetY) = 0;
  /// The reference data's grid where there is some, else the ideal one. Its offsets are in pixels.
  virtual void BuildTarget(Points& aOut, double dDpiX, double dDpiY, double dOffsetX, double dOffsetY);
  virtual void LocatePoints(ClImage& oImage, Grid& aGrid);
  /// Removes dots that are not part of the pattern, and gives the positions of the others in the pattern's
  /// order.
  virtual void AssociatePoints(Grid& aGrid, Points& aActual);
  virtual void GridToArray(Grid& aGrid, Points& aActual) = 0;
  /// A grid of stored points, column after column.
  virtual void ArrayToGrid(Points& aActual, Points& aTarget, Grid& aGrid);
  virtual void GetGridColumnLengths(TpArrayStatic<int>& aLengths) = 0;
  virtual void MoveTarget(Points& aTarget, Points& aOther) = 0;

  void BuildGrid(Grid& aGrid, ClIpConnectedComponent2::ComponentsArray_t& aComponents);
  /// Column by column, each from top to bottom.
  void SortXY(Grid& aGrid);
  void SortX(Grid& aGrid);
  /// Dots [nFirst, nEnd).
  void SortY(Grid& aGrid, unsigned int nFirst, unsigned int nEnd);
  /// The dot of that place is no longer valid and nobody's neighbour; it stays in the grid.
  void RemoveGridPoint(Grid& aGrid, unsigned int nPlace);
  void RemoveLessNeighbours(Grid& aGrid);
  void ReduceToFittingNeighbours(Grid& aGrid);
  void RemoveWrongAngleNeighbours(Grid& aGrid);
  void GridRemoveBadPoints(Grid& aGrid);
  void CenterTarget(Points& aTarget, const Points* pActual, unsigned int nPlanes);
  /// The mean y of the mapped edge of the image; with bVertical its mean x.
  double GetBorderDelta(const Spline& oSpline, int nX, int nY, int nSteps, bool bVertical) const;
  /// The mean position of the good dots; (0, 0) without any.
  ClVector GetCentreOfGrid(const Grid& aGrid) const;
  ClVector GetCentreOfVectorArray(const Points& aArray) const;
  void MoveArray(Points& aArray, const ClVector& vShift) const;
  /// The dot at that position in the pattern, or null.
  const ClDot* RetrieveDot(const Grid& aGrid, int nColumn, int nRow) const;
  /// The valid dot nearest to the origin, or null.
  const ClDot* GetBottumLeftDot(const Grid& aGrid) const;

  /// Raises -39 unless the stored points are a regular grid on both sides.
  void ValidateCalibrationData(ClCalibrateGeometricData& oData);
  /// The stored target may be moved as a whole; no point strays more than 10 pixels from that.
  void ValidateTargetPoints(ClCalibrateGeometricData& oData);

  /// Sorts the values and returns element nCount / 2, or 0 without values.
  static double GetMedian(double* pValues, long nCount);
  /// Merges points nearer than 1.5 pixels; groups that have about a dot's number of points go to aOut.
  void RemoveSmallPoints(Points& aIn, Points& aOut) const;
  /// The centre of gravity of what is darker than nThreshold round a position; where nothing is, the position
  /// itself.
  void CheckDot(const ClImage& oImage, long nX, long nY, long nThreshold, ClVector& vOut) const;
  void LogGrid(const Grid&) const {}
  /// Clears the image and draws the grid: good dots bright, removed ones dim, and the ways to their
  /// neighbours.
  void GridToDebugImage(const Grid& aGrid, ClImage& oImage) const;
  /// Writes an image as a BMP file named after the tag; szDirectory ends in a slash.
  void StoreDebug(ClImage* pImage, const char* szTag, const char* szDirectory) const;

  ClImage* m_pInImage = nullptr;
  /// Its target grid replaces the ideal one.
  ClCalibrateGeometricData* m_pRefData = nullptr;
  ClImage* m_pOutDebugImage = nullptr;
  ClImage* m_pOutLabelImage = nullptr;
  ClCalibrateGeometricData* m_pOutData = nullptr;
  /// Grey levels below the local mean from which a pixel belongs to a dot.
  double m_dThresholdOffset = 0;
  /// True: the mapped edges of the corrected image are centred on the sensor. False: the grid is centred in
  /// the image.
  bool m_bCentreByBorder = true;
  double m_dYOffset = 0;
  double m_dDotRadius = 0;
  double m_dGridPitch = 0;
  /// A fraction of the pitch.
  double m_dNeighbourTolerance = 0;
  /// Radians.
  double m_dAngleTolerance = 0;
  double m_dMinEccentricity = 0;
  double m_dMaxEccentricity = 0;
  double m_dMinArea = 0;
  double m_dMaxArea = 0;
  /// Bright dots on a dark ground.
  bool m_bInvert = false;
  double m_dSourceDpiX = 0;
  double m_dSourceDpiY = 0;
  double m_dTargetDpiX = 0;
  double m_dTargetDpiY = 0;
  int m_nTargetWidth = 0;
  int m_nTargetHeight = 0;

 protected:
  double PitchX() const { return m_dSourceDpiX / cdMillimetresPerInch * m_dGridPitch; }
  double PitchY() const { return m_dSourceDpiY / cdMillimetresPerInch * m_dGridPitch; }
  /// Divides both co-ordinates by a count or weight; to multiply by the reciprocal would round twice.
  static ClVector Divided(const ClVector& v, double dBy) { return ClVector(v.x / dBy, v.y / dBy); }

 private:
  void LinkNeighbours(Grid& aGrid) const;
  void JudgeDots(Grid& aGrid) const;
  void FillData(unsigned int nPlanes);
};
