// The geometric warp: a map from target pixels to source windows, made once and applied to frame after frame.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXCalibrate/IpCalibrateBase.h"
#include "MXCalibrate/IpCalibrateGeometricBaseMap.h"

class ClStream;

/// Turns a frame of the sensor into an upright picture of even scale.
///
/// For each sample of the target the map holds the byte offset of a 4 by 4 window in the source, or -1 where
/// there is none, and a phase: 1/32 pixel steps in x, and 32 times those in y. The phase selects 16 weights
/// of a table, which resample and sharpen at once. A window starts one pixel left of and above the source
/// position, so that positions from 1.0 to the size less 3 have one.
///
/// Domain     input: eUint8, one plane, aligned rows, the source size of the data. Output: eUint8, the target
///            size or the region, one plane for each plane of actual points.
/// Ownership  owns the map.
/// Threads    thread-bound; objects of their own may run side by side.
/// Errors     -37 no data; -600 from the spline, after which only Reset helps; -2 without a map; -35 when
///            input and output are one image; -44 for a wrong region or an input that does not fit the map.
/// Cost       a map entry takes 4 bytes; an Apply with a map is one pass and allocates nothing when the
///            output has its size already.
class ClIpCalibrateGeometricBase : public ClIpCalibrateBase {
 public:
  void Reset() override;
  void Initiate() override;
  void Calibrate() override;

  /// The finished map, so that it need not be built again; after Load the object is initiated.
  /// Errors: ClExKelvarin and ClException -40 for foreign tags; -39 for fields that do not agree and for a
  /// map that points outside the source; ClExStreamUnexpectedEnd -201.
  void Store(ClStream& oStream) const;
  void Load(ClStream& oStream);

  /// For whoever makes the source while its rows are taken: whether there is a map of one plane from that
  /// source to a target of that size. WarpRow then makes a row of the whole target, from SourceRows of the
  /// first rows of the source.
  bool HasRowsOf(const ClImage& oIn, const ClImage& oLikeTarget) const;
  int SourceRows(int nRow) const { return m_pMap->SourceRows(static_cast<uint32_t>(nRow)); }
  void WarpRow(const ClImage& oIn, int nRow, uint8_t* pOut) const;
  /// An eUint8 image of the target's size; its old block is used again if it fits.
  void NewTarget(ClImage& oOut) const;

  /// The part of the target that Apply makes; all 0 for the whole.
  uint32_t m_nRoiX = 0;
  uint32_t m_nRoiY = 0;
  uint32_t m_nRoiWidth = 0;
  uint32_t m_nRoiHeight = 0;

 protected:
  using Points = ClCalibrateGeometricData::Points;
  using Entry = ClIpCalibrateGeometricBaseMap::Entry;
  using Weights = ClIpCalibrateGeometricBaseMap::Weights;

  /// Builds the map for the sizes that Initiate has set.
  virtual void InitiateParams(const Points& aTarget, const Points* pActual, uint32_t nPlanes) = 0;
  /// The table of weights.
  virtual Weights Table() const = 0;

  /// Raises unless a map can be made of these points and sizes.
  void CheckParams(const Points& aTarget, const Points* pActual, uint32_t nPlanes) const;
  /// Returns the map entry of a source position.
  Entry EntryOf(double dX, double dY) const;
  /// A map of these sizes, not yet set. Errors: ClExBadAlloc -102.
  std::unique_ptr<ClIpCalibrateGeometricBaseMap> NewMap() const;

  uint32_t m_nSourceWidth = 0;
  uint32_t m_nSourceHeight = 0;
  uint32_t m_nTargetWidth = 0;
  uint32_t m_nTargetHeight = 0;
  uint32_t m_nTargetPelsX = 0;
  uint32_t m_nTargetPelsY = 0;
  uint32_t m_nPlanes = 0;
  uint8_t m_nBackground = 0;
  /// Rows of m_nTargetWidth * m_nPlanes entries, the planes of a pixel side by side.
  std::unique_ptr<ClIpCalibrateGeometricBaseMap> m_pMap;
  static constexpr uint32_t m_nMapEntrySize = 8;
  static_assert(sizeof(Entry) == m_nMapEntrySize, "the stored form has entries of this size");

 private:
  void CheckRegion() const;
  bool FitsMap(const ClImage& oIn) const;
  void LoadHeader(ClStream& oStream);
  void LoadMap(ClStream& oStream);
  bool PointsInside(const std::vector<Entry>& aRow) const;
  uint64_t MapEntries() const { return uint64_t{m_nTargetWidth} * m_nTargetHeight * m_nPlanes; }
  /// Whether offsets into the source, which are signed and 32 bits wide, reach all of it.
  bool IsSourceInReach() const;
  size_t SourceRowBytes() const { return (static_cast<size_t>(m_nSourceWidth) + 3) & ~size_t{3}; }
};
