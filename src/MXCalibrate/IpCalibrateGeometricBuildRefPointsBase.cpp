// From the picture of a target to a data set: the steps, the search for objects, the position of the grid.
#include "MXCalibrate/IpCalibrateGeometricBuildRefPointsBase.h"

#include <algorithm>

#include "MXCalibrate/RefPointsLog.h"
#include "MXImageProcessing/IpBinarizeLocal2.h"
#include "MXImageProcessing/IpInvert.h"
#include "MXImageProcessing/IpSplitPlanes.h"
#include "MXMath/ThinPlateSplinesBOOST.h"
#include "MXTools/Failure.h"
#include "MXTools/NumberLimits.h"
#include "MXTools/ParameterRows.h"

namespace {

/// The size of the binariser's window in pitches; it always holds the ground between two dots.
constexpr double cdWindowPitches = 1.1;

uint32_t PelsPerMetre(double dDpi) {
  return Klv::ClampNumber<uint32_t>(dDpi / ClIpCalibrateGeometricBuildRefPointsBase::cdMillimetresPerInch *
                                    1000);
}

}  // namespace

bool ClIpCalibrateGeometricBuildRefPointsBase::CanApply() {
  return m_pInImage != nullptr && m_pOutData != nullptr;
}

void ClIpCalibrateGeometricBuildRefPointsBase::DeclareParameters(ClParameterRows& oRows) {
  oRows.Input("pInImage", &m_pInImage);
  oRows.Output("pOutDebugImage", &m_pOutDebugImage);
}

long ClIpCalibrateGeometricBuildRefPointsBase::Process() {
  const ClRefPointsLog oLog("Process");
  if (m_pInImage == nullptr) {
    KLV_RAISE(ClException, "ClIpCalibrateGeometricBuildRefPointsBase m_pInImage is NULL", -37);
  }
  if (m_pOutData == nullptr) {
    KLV_RAISE(ClException, "ClIpCalibrateGeometricBuildRefPointsBase m_pOutData is NULL", -37);
  }
  if (m_pRefData != nullptr) m_pRefData->Log();
  m_pOutData->Clear();
  const int nPlanes = std::min(m_pInImage->Planes(), static_cast<int>(ClCalibrateGeometricData::cnMaxPlanes));
  ClImage aPlanes[ClCalibrateGeometricData::cnMaxPlanes];
  if (nPlanes > 1) {
    KLV_CHECK(ClIpSplitPlanes().ApplyParam(*m_pInImage, &aPlanes[0], &aPlanes[1],
                                           nPlanes > 2 ? &aPlanes[2] : nullptr, nullptr));
  }
  if (m_pOutDebugImage != nullptr) m_pOutDebugImage->New(*m_pInImage);
  for (int n = 0; n < nPlanes; ++n) {
    Grid aGrid;
    LocatePoints(nPlanes > 1 ? aPlanes[n] : *m_pInImage, aGrid);
    AssociatePoints(aGrid, m_pOutData->m_aActual[n]);
  }
  BuildTarget(m_pOutData->m_aTarget, m_dTargetDpiX, m_dTargetDpiY, 0, 0);
  CenterTarget(m_pOutData->m_aTarget, m_pOutData->m_aActual, static_cast<unsigned int>(nPlanes));
  FillData(static_cast<unsigned int>(nPlanes));
  return 0;
}

void ClIpCalibrateGeometricBuildRefPointsBase::FillData(unsigned int nPlanes) {
  ClCalibrateGeometricData& oData = *m_pOutData;
  oData.m_nSourceWidth = static_cast<uint32_t>(m_pInImage->Width());
  oData.m_nSourceHeight = static_cast<uint32_t>(m_pInImage->Height());
  oData.m_nSourcePelsX = PelsPerMetre(m_dSourceDpiX);
  oData.m_nSourcePelsY = PelsPerMetre(m_dSourceDpiY);
  oData.m_nTargetWidth = static_cast<uint32_t>(m_nTargetWidth);
  oData.m_nTargetHeight = static_cast<uint32_t>(m_nTargetHeight);
  oData.m_nTargetPelsX = PelsPerMetre(m_dTargetDpiX);
  oData.m_nTargetPelsY = PelsPerMetre(m_dTargetDpiY);
  oData.m_nPlanes = nPlanes;
  oData.m_nBackground = m_bInvert ? 0 : 255;
}

void ClIpCalibrateGeometricBuildRefPointsBase::LocatePoints(ClImage& oImage, Grid& aGrid) {
  const ClRefPointsLog oLog("LocatePoints");
  ClIpBinarizeLocal2 oBinarize;
  oBinarize.Timer(IsTimerEnabled());
  // Dots come out as 0, which is what makes an object.
  oBinarize.m_nBlack = m_bInvert ? 255 : 0;
  oBinarize.m_nWhite = m_bInvert ? 0 : 255;
  const long nOffset = Klv::ClampNumber<long>(m_dThresholdOffset);
  ClImage oBinary;
  KLV_CHECK(oBinarize.ApplyParam(
      oImage, oBinary,
      Klv::ClampNumber<long>(m_dSourceDpiX * m_dGridPitch / cdMillimetresPerInch * cdWindowPitches),
      Klv::ClampNumber<long>(m_dSourceDpiY * m_dGridPitch / cdMillimetresPerInch * cdWindowPitches),
      m_bInvert ? -nOffset : nOffset));
  ClImage oInverted;
  if (m_bInvert) KLV_CHECK(ClIpInvert().ApplyParam(oImage, oInverted));
  ClIpConnectedComponent2::ComponentsArray_t aComponents;
  KLV_CHECK(ClIpConnectedComponent2().ApplyParam(oBinary, aComponents, m_bInvert ? &oInverted : &oImage,
                                                 m_pOutLabelImage));
  BuildGrid(aGrid, aComponents);
}

void ClIpCalibrateGeometricBuildRefPointsBase::AssociatePoints(Grid& aGrid, Points& aActual) {
  const ClRefPointsLog oLog("AssociatePoints");
  RemoveLessNeighbours(aGrid);
  ReduceToFittingNeighbours(aGrid);
  RemoveLessNeighbours(aGrid);
  GridRemoveBadPoints(aGrid);
  GridToArray(aGrid, aActual);
  if (m_pOutDebugImage != nullptr) GridToDebugImage(aGrid, *m_pOutDebugImage);
}

void ClIpCalibrateGeometricBuildRefPointsBase::BuildTarget(Points& aOut, double dDpiX, double dDpiY,
                                                           double dOffsetX, double dOffsetY) {
  const ClRefPointsLog oLog("BuildTarget");
  if (m_pRefData == nullptr) {
    BuildTargetPoints(aOut, dDpiX, dDpiY, dOffsetX, dOffsetY);
    return;
  }
  const double dScaleX = dDpiX * cdInchesPerMetre / m_pRefData->m_nTargetPelsX;
  const double dScaleY = dDpiY * cdInchesPerMetre / m_pRefData->m_nTargetPelsY;
  aOut.CopyFrom(m_pRefData->m_aTarget);
  for (unsigned int n = 0; n < aOut.Entries(); ++n) {
    aOut[n] = ClVector(aOut[n].x * dScaleX + dOffsetX, aOut[n].y * dScaleY + dOffsetY);
  }
}

void ClIpCalibrateGeometricBuildRefPointsBase::CenterTarget(Points& aTarget, const Points* pActual,
                                                            unsigned int nPlanes) {
  const ClRefPointsLog oLog("CenterTarget");
  if (nPlanes == 0 || aTarget.Entries() == 0 || aTarget.Entries() != pActual[0].Entries()) {
    KLV_RAISE(ClException, "Target and Source arrays must have same size!", -39);
  }
  Spline oSpline;
  oSpline.Setup(static_cast<long>(aTarget.Entries()), aTarget.Data(), pActual[0].Data());
  ClVector vShift;
  if (m_bCentreByBorder) {
    const double dTop = GetBorderDelta(oSpline, 0, 0, m_nTargetWidth, false);
    const double dBottom = GetBorderDelta(oSpline, 0, m_nTargetHeight, m_nTargetWidth, false);
    const double dLeft = GetBorderDelta(oSpline, 0, 0, m_nTargetHeight, true);
    const double dRight = GetBorderDelta(oSpline, m_nTargetWidth, 0, m_nTargetHeight, true);
    vShift.x = m_dTargetDpiX / m_dSourceDpiX * (-0.5 * m_pInImage->Width() + (dRight + dLeft) * 0.5);
    vShift.y = m_dTargetDpiY / m_dSourceDpiY * (-0.5 * m_pInImage->Height() + (dTop + dBottom) * 0.5);
  } else {
    ClVector vMin = aTarget[0];
    ClVector vMax = aTarget[0];
    for (unsigned int n = 1; n < aTarget.Entries(); ++n) {
      vMin = ClVector(std::min(vMin.x, aTarget[n].x), std::min(vMin.y, aTarget[n].y));
      vMax = ClVector(std::max(vMax.x, aTarget[n].x), std::max(vMax.y, aTarget[n].y));
    }
    const double dOffset = m_dYOffset / cdMillimetresPerInch * m_dTargetDpiY;
    const int nMiddleX = m_nTargetWidth / 2;
    const int nMiddleY = m_nTargetHeight / 2;
    vShift = ClVector(nMiddleX, nMiddleY) - ClVector(vMin.x + vMax.x, vMin.y + vMax.y + dOffset) * 0.5;
  }
  MoveArray(aTarget, vShift);
}

double ClIpCalibrateGeometricBuildRefPointsBase::GetBorderDelta(const Spline& oSpline, int nX, int nY,
                                                                int nSteps, bool bVertical) const {
  const ClRefPointsLog oLog("GetBorderDelta");
  double dSum = 0;
  for (int n = 0; n < nSteps; ++n) {
    float fX;
    float fY;
    oSpline.Transform(static_cast<float>(bVertical ? nX : nX + n),
                      static_cast<float>(bVertical ? nY + n : nY), &fX, &fY);
    dSum += static_cast<double>(bVertical ? fX : fY);
  }
  return dSum / nSteps;
}

ClVector ClIpCalibrateGeometricBuildRefPointsBase::GetCentreOfVectorArray(const Points& aArray) const {
  const ClRefPointsLog oLog("GetCentreOfVectorArray");
  ClVector vSum;
  for (unsigned int n = 0; n < aArray.Entries(); ++n) vSum = vSum + aArray[n];
  return aArray.Entries() == 0 ? vSum : Divided(vSum, aArray.Entries());
}

void ClIpCalibrateGeometricBuildRefPointsBase::MoveArray(Points& aArray, const ClVector& vShift) const {
  const ClRefPointsLog oLog("MoveArray");
  for (unsigned int n = 0; n < aArray.Entries(); ++n) aArray[n] = aArray[n] + vShift;
}
