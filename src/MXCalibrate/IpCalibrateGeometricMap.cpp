// Building maps, pixel by pixel and from a coarse grid.
#include <algorithm>
#include <deque>
#include <vector>

#include "MXCalibrate/TpIpCalibrateGeometric.h"
#include "MXCalibrate/TpIpCalibrateGeometricSubsample.h"
#include "MXMath/ThinPlateSplinesBOOST.h"
#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"

namespace {

using Spline = TpThinPlateSplines<double>;
using Points = ClCalibrateGeometricData::Points;

void SetupSplines(Spline* pSplines, const Points& aTarget, const Points* pActual, uint32_t nPlanes) {
  for (uint32_t n = 0; n < nPlanes; ++n) {
    pSplines[n].Setup(static_cast<long>(aTarget.Entries()), aTarget.Data(), pActual[n].Data());
  }
}

/// From row to row the left edge of a cell changes by dLeftStep and the right one by dRightStep; along a row
/// the values go evenly from edge to edge.
struct StCell {
  double dLeft;
  double dRight;
  double dLeftStep;
  double dRightStep;
};

void FillCell(StCell oCell, int nFactor, double* pOut, size_t nRowStride, size_t nStride) {
  for (int nY = 0; nY < nFactor; ++nY, pOut += nRowStride) {
    const double dStep = (oCell.dRight - oCell.dLeft) / nFactor;
    double dValue = oCell.dLeft;
    for (int nX = 0; nX < nFactor; ++nX, dValue += dStep) pOut[static_cast<size_t>(nX) * nStride] = dValue;
    oCell.dLeft += oCell.dLeftStep;
    oCell.dRight += oCell.dRightStep;
  }
}

/// Upscales one of several interleaved planes, without splitting them.
void UpscalePlane(const ClImage& oIn, ClImage& oOut, int nFactor, int nPlane) {
  const size_t nPlanes = static_cast<size_t>(oIn.Planes());
  const size_t nRowStride = static_cast<size_t>(oOut.ElementsPerRow());
  for (int nJ = 0; nJ + 1 < oIn.Height(); ++nJ) {
    const double* pUpper = oIn.Row<double>(nJ) + nPlane;
    const double* pLower = oIn.Row<double>(nJ + 1) + nPlane;
    double* pOut = oOut.Row<double>(nJ * nFactor) + nPlane;
    for (int nI = 0; nI + 1 < oIn.Width(); ++nI) {
      const size_t nHere = static_cast<size_t>(nI) * nPlanes;
      const size_t nNext = nHere + nPlanes;
      const StCell oCell = {pUpper[nHere], pUpper[nNext], (pLower[nHere] - pUpper[nHere]) / nFactor,
                            (pLower[nNext] - pUpper[nNext]) / nFactor};
      FillCell(oCell, nFactor, pOut + nHere * static_cast<size_t>(nFactor), nRowStride, nPlanes);
    }
  }
}

/// The source positions of one plane, a band of target rows at a time: all positions at once would take ten
/// times the memory of the map.
class ClCoarseBand {
 public:
  ClCoarseBand(const Spline& oSpline, unsigned char nBlock, size_t nColumns)
      : m_oSpline(oSpline), m_nBlock(nBlock), m_nColumns(nColumns) {
    for (ClImage& o : m_aCoarse) {
      o.NewWithType(ClImage::eDouble64, static_cast<int>(nColumns), 2, 1, 0, 0, true);
    }
    Transform(0);
  }

  /// Makes the nBlock rows from nTop on; to be called for one band after the other.
  void Make(uint32_t nTop) {
    for (ClImage& o : m_aCoarse) std::copy_n(o.Row<double>(1), m_nColumns, o.Row<double>(0));
    Transform(static_cast<double>(nTop) + m_nBlock);
    for (int n = 0; n < 2; ++n) {
      ClIpCalibrateGeometricCoarse::UpscaleImage(m_aCoarse[n], m_aFine[n], m_nBlock);
    }
  }
  const double* X(uint32_t nRow) const { return m_aFine[0].Row<double>(static_cast<int>(nRow)); }
  const double* Y(uint32_t nRow) const { return m_aFine[1].Row<double>(static_cast<int>(nRow)); }

 private:
  /// The coarse row below.
  void Transform(double dY) {
    m_oSpline.TransformRow(0, dY, m_nBlock, m_nColumns, m_aCoarse[0].Row<double>(1),
                           m_aCoarse[1].Row<double>(1));
  }

  const Spline& m_oSpline;
  const unsigned char m_nBlock;
  const size_t m_nColumns;
  ClImage m_aCoarse[2];  // X and Y, the coarse rows above and below the band
  ClImage m_aFine[2];
};

}  // namespace

void ClIpCalibrateGeometricDense::InitiateParams(const Points& aTarget, const Points* pActual,
                                                 uint32_t nPlanes) {
  CheckParams(aTarget, pActual, nPlanes);
  Spline aSplines[ClCalibrateGeometricData::cnMaxPlanes];
  SetupSplines(aSplines, aTarget, pActual, nPlanes);
  std::unique_ptr<ClIpCalibrateGeometricBaseMap> pMap = NewMap();
  std::vector<double> aX(m_nTargetWidth);
  std::vector<double> aY(m_nTargetWidth);
  std::vector<Entry> aRow(pMap->RowEntries());
  for (uint32_t nY = 0; nY < m_nTargetHeight; ++nY) {
    for (uint32_t nPlane = 0; nPlane < nPlanes; ++nPlane) {
      aSplines[nPlane].TransformRow(0, nY, 1, m_nTargetWidth, aX.data(), aY.data());
      for (size_t nX = 0; nX < m_nTargetWidth; ++nX) aRow[nX * nPlanes + nPlane] = EntryOf(aX[nX], aY[nX]);
    }
    pMap->SetRow(nY, aRow.data());
  }
  m_pMap = std::move(pMap);
}

void ClIpCalibrateGeometricCoarse::InitiateParams(const Points& aTarget, const Points* pActual,
                                                  uint32_t nPlanes) {
  CheckParams(aTarget, pActual, nPlanes);
  Spline aSplines[ClCalibrateGeometricData::cnMaxPlanes];
  SetupSplines(aSplines, aTarget, pActual, nPlanes);
  std::unique_ptr<ClIpCalibrateGeometricBaseMap> pMap = NewMap();
  const size_t nColumns = (static_cast<size_t>(m_nTargetWidth) + m_nBlock - 1) / m_nBlock + 1;
  std::deque<ClCoarseBand> aBands;
  for (uint32_t n = 0; n < nPlanes; ++n) aBands.emplace_back(aSplines[n], m_nBlock, nColumns);
  std::vector<Entry> aRow(pMap->RowEntries());
  for (uint32_t nY = 0; nY < m_nTargetHeight; ++nY) {
    for (uint32_t n = 0; n < nPlanes; ++n) {
      if (nY % m_nBlock == 0) aBands[n].Make(nY);
      const double* pX = aBands[n].X(nY % m_nBlock);
      const double* pY = aBands[n].Y(nY % m_nBlock);
      for (size_t nX = 0; nX < m_nTargetWidth; ++nX) aRow[nX * nPlanes + n] = EntryOf(pX[nX], pY[nX]);
    }
    pMap->SetRow(nY, aRow.data());
  }
  m_pMap = std::move(pMap);
}

void ClIpCalibrateGeometricCoarse::UpscaleImage(const ClImage& oIn, ClImage& oOut, unsigned char nFactor) {
  if (oIn.DataType() != ClImage::eDouble64)
    KLV_RAISE(ClException, "Only double64 images can be upscaled", -33);
  oOut.NewWithType(oIn.DataType(), (oIn.Width() - 1) * nFactor + 1, (oIn.Height() - 1) * nFactor + 1,
                   oIn.Planes(), oIn.PelsX(), oIn.PelsY(), true);
  for (int nPlane = 0; nPlane < oIn.Planes(); ++nPlane) UpscalePlane(oIn, oOut, nFactor, nPlane);
}

void ClIpCalibrateGeometricCoarse::UpscaleImageMono(const ClImage& oIn, ClImage& oOut,
                                                    unsigned char nFactor) {
  if (oIn.Planes() != 1) KLV_RAISE(ClException, "only single plane images supported", -44);
  UpscaleImage(oIn, oOut, nFactor);
}
