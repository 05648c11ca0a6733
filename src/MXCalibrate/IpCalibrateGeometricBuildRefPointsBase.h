// Finds a regular grid of dots in the picture of a calibration target.
#pragma once

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXImageProcessing/IpConnectedComponent2.h"
#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/TpArrayStatic.h"
#include "MXTools/Vector.h"
#include "portable/Math.h"

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
/// Ownership  owns no image and no data set. A grid owns its dots: whoever made it frees them (DeleteDots).
/// Threads    thread-bound.
/// Errors     ClException -37 no input or output; -39 "Target and Source arrays must have same size!",
///            "Target data is corrupt", "Source data is corrupt"; -600 for reasons that the pattern and the
///            splines give; ClExBadAlloc -102.
/// Cost       dominated by binarising and labelling; the grid is quadratic in the number of dots.
class ClIpCalibrateGeometricBuildRefPointsBase : public ClProcessorBase {
 public:
  static constexpr double cdMillimetresPerInch = 25.4;
  static constexpr double cdInchesPerMetre = 39.37;

  class ClDot;
  using Grid = TpArrayDynamic<ClDot*, 10u>;
  using Points = TpArrayDynamic<ClVector, 10u>;
  using Spline = TpThinPlateSplines<float, Default<float>>;

  /// Why a dot is no longer part of the grid.
  enum EStatus : long {
    eGood = 0,
    eTooRound = 1,
    eTooLong = 2,
    eTooSmall = 3,
    eTooLarge = 4,
    eFewNeighbours = 5,
    eUnmatched = 6,
    eOffPattern = 7  ///< it stays valid
  };

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

  /// Frees the dots and empties the grid.
  static void DeleteDots(Grid& aGrid);
  void BuildGrid(Grid& aGrid, ClIpConnectedComponent2::ComponentsArray_t& aComponents);
  /// Column by column, each from top to bottom.
  void SortXY(Grid& aGrid);
  void SortX(Grid& aGrid);
  /// Dots [nFirst, nEnd).
  void SortY(Grid& aGrid, unsigned int nFirst, unsigned int nEnd);
  /// The dot is no longer valid and nobody's neighbour; it stays in the array.
  void RemoveGridPoint(Grid& aGrid, unsigned int nIndex);
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
  ClDot* RetrieveDot(const Grid& aGrid, int nColumn, int nRow) const;
  /// The valid dot nearest to the origin, or null.
  ClDot* GetBottumLeftDot(const Grid& aGrid) const;

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
  void LinkNeighbours(const Grid& aGrid);
  void JudgeDots(const Grid& aGrid) const;
  void FillData(unsigned int nPlanes);
};

/// One dot that was found, or a stored one.
class ClIpCalibrateGeometricBuildRefPointsBase::ClDot {
 public:
  /// From one direction number to the next, in radians.
  static constexpr double cdEighthTurn = Portable::cdPi / 4;

  explicit ClDot(const ClVector& vCentre) { Initialize(vCentre); }
  explicit ClDot(const ClIpConnectedComponent2::ClComponent& oComponent);
  ClDot(const ClDot& o) { *this = o; }
  ClDot& operator=(const ClDot& o);

  /// Resets everything but the position.
  void Initialize(const ClVector& vCentre);
  /// Makes the dot a neighbour, unless it is one; with bMutual this dot becomes its neighbour too.
  void AddDot(ClDot* pDot, bool bMutual);
  /// Forgets the dot; the dot does not forget this one.
  void Remove(const ClDot* pDot);
  /// 0 for +x, 2 for +y and so on in eighths of a turn; on a boundary the lower number.
  long GetNeighbourDirection(long nNeighbour) const;
  /// The neighbour nearest to the direction and less than dMaxAngle off it, or null.
  ClDot* GetNeighbourInDirection(long nDirection, double dMaxAngle) const;
  /// The angle of the way from vFrom to vTo, of [0, 2 pi).
  static double AngleOf(const ClVector& vFrom, const ClVector& vTo);

  ClVector vPosition;        ///< centre in sensor pixels
  ClVector vGrid{-1, -1};    ///< column and row
  ClVector vTarget{-1, -1};  ///< the target point that was matched to it
  ClVector vBoxCentre;       ///< centre of the bounding box
  long nStatus = eGood;
  bool bValid = true;  ///< still part of the grid
  double dEccentricity = -1;
  double dArea = -1;
  double dGrey = -1;
  long nIndex = -1;  ///< of the component it came from
  TpArrayDynamic<ClDot*, 10u> aNeighbours;
};
