// The dots that were found in the picture of a calibration target, their order and their neighbours.
#pragma once

#include "MXImageProcessing/IpConnectedComponent2.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/TpArrayStatic.h"
#include "MXTools/Vector.h"
#include "portable/Math.h"

/// One dot that was found, or a stored one.
class ClRefPointsDot {
 public:
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
  /// From one direction number to the next, in radians.
  static constexpr double cdEighthTurn = Portable::cdPi / 4;

  ClRefPointsDot() = default;
  ClRefPointsDot(const ClRefPointsDot&) = delete;
  ClRefPointsDot& operator=(const ClRefPointsDot&) = delete;

  /// What was measured of the object that may be a dot.
  void TakeFrom(const ClIpConnectedComponent2::ClComponent& oComponent);
  /// Makes the dot of that index a neighbour, unless it is one.
  void AddDot(unsigned int nOther);
  /// Forgets the dot; the dot does not forget this one.
  void Remove(unsigned int nOther);
  /// The direction in which another dot lies: 0 for +x, 2 for +y and so on in eighths of a turn; on a
  /// boundary the lower number.
  long DirectionOf(const ClRefPointsDot& oOther) const;
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
  unsigned int nIndex = 0;                        ///< of the component it came from
  TpArrayDynamic<unsigned int, 10u> aNeighbours;  ///< the indices of its neighbours
};

/// All dots of one search or of one stored grid. A dot keeps its index, by which others know it, while
/// sorting changes the order in which the dots are visited.
///
/// Ownership  owns its dots; neither copied nor assigned.
/// Threads    thread-bound.
/// Errors     ClExBadAlloc -102.
class ClRefPointsGrid {
 public:
  using ClDot = ClRefPointsDot;

  /// Replaces the dots by nDots new ones, ordered by their indices.
  void New(unsigned int nDots);
  unsigned int Entries() const { return m_aOrder.Entries(); }
  /// The dot that is visited as number nPlace.
  ClDot& operator[](unsigned int nPlace) { return m_aDots[m_aOrder[nPlace]]; }
  const ClDot& operator[](unsigned int nPlace) const { return m_aDots[m_aOrder[nPlace]]; }
  ClDot& OfIndex(unsigned int nIndex) { return m_aDots[nIndex]; }
  const ClDot& OfIndex(unsigned int nIndex) const { return m_aDots[nIndex]; }
  /// Sorts the places [nFirst, nEnd) by one co-ordinate of the positions.
  void SortByX(unsigned int nFirst, unsigned int nEnd);
  void SortByY(unsigned int nFirst, unsigned int nEnd);

  /// The dot's neighbour that is nearest to the direction and less than dMaxAngle off it, or null.
  const ClDot* GetNeighbourInDirection(const ClDot& oDot, long nDirection, double dMaxAngle) const;

 private:
  TpArrayStatic<ClDot> m_aDots;
  TpArrayStatic<unsigned int> m_aOrder;
};
