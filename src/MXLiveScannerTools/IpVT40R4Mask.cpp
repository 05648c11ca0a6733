// Parameters and the order of the steps of the finger mask.
#include "MXLiveScannerTools/IpVT40R4Mask.h"

#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/ComposeRows.h"
#include "MXKernels/LayoutRows.h"
#include "MXKernels/PointRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

ClIpVT40R4Mask::ClIpVT40R4Mask() {
  ClIpVT40R4Mask::SetParametersToDefault();
}

ClProcessorBase* ClIpVT40R4Mask::Create() const {
  return MakeProcessor<ClIpVT40R4Mask>();
}

void ClIpVT40R4Mask::SetParametersToDefault() {
  ClIpLiveScannerMask::SetParametersToDefault();
  m_nInWidth500dpi = 1600;
  m_nInSignalBack = 14;
  m_nInSignalFront = 64;
  m_dInLBPThresh = 0.135;
  m_dInFogThresh = 0.8;
  m_nInMaskThresh = 8200;
  m_nInLeftFade = 10;
  m_nInRightFade = 10;
  m_nInTopFade = 20;
  m_nInBottomFade = 100;
}

void ClIpVT40R4Mask::DeclareParameters(ClParameterRows& oRows) {
  ClIpLiveScannerMask::DeclareParameters(oRows);
  oRows.Number("nInWidth500dpi", &m_nInWidth500dpi);
  oRows.Number("nInSignalBack", &m_nInSignalBack);
  oRows.Number("nInSignalFront", &m_nInSignalFront);
  oRows.Number("dInLBPThresh", &m_dInLBPThresh);
  oRows.Number("dInFogThresh", &m_dInFogThresh);
  oRows.Number("nInMaskThresh", &m_nInMaskThresh);
  oRows.Number("nInLeftFade", &m_nInLeftFade);
  oRows.Number("nInRightFade", &m_nInRightFade);
  oRows.Number("nInTopFade", &m_nInTopFade);
  oRows.Number("nInBottomFade", &m_nInBottomFade);
}

void ClIpVT40R4Mask::ScaleDown(ClImage& oIn, ClImage& oMean, ClImage& oMax, ClImage& oMin) const {
  const int nWidth = oIn.Width() / 2, nHeight = oIn.Height() / 2;
  for (ClImage* pOut : {&oMean, &oMax, &oMin}) {
    pOut->NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  }
  for (int y = 0; y < nHeight; ++y) {
    MXKernels::ScaleDownRow(oIn.Row<uint8_t>(2 * y), oIn.Row<uint8_t>(2 * y + 1), static_cast<size_t>(nWidth),
                            oMean.Row<uint8_t>(y), oMax.Row<uint8_t>(y), oMin.Row<uint8_t>(y));
  }
}

void ClIpVT40R4Mask::ScaleUp(ClImage& oIn, ClImage& oOut) const {
  oOut.NewWithType(ClImage::eUint8, 2 * oIn.Width(), 2 * oIn.Height(), 1, 0, 0, true);
  for (int y = 0; y < oIn.Height(); ++y) {
    const auto nCount = static_cast<size_t>(oIn.Width());
    MXKernels::ScaleUpRow(oIn.Row<uint8_t>(y), oOut.Row<uint8_t>(2 * y), nCount);
    MXKernels::ScaleUpRow(oIn.Row<uint8_t>(y), oOut.Row<uint8_t>(2 * y + 1), nCount);
  }
}

bool ClIpVT40R4Mask::TakesHalfResolution(const ClImage& oIn) const {
  return oIn.Width() == m_nInWidth500dpi || oIn.PelsX() >= 19601;
}

long ClIpVT40R4Mask::Process() {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "No input image assigned.", -701);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "No output image assigned.", -701);
  if (m_pInImage->Planes() != 1) KLV_RAISE(ClException, "only single plane images supported", -44);
  const int nPelsX = m_pInImage->PelsX(), nPelsY = m_pInImage->PelsY();
  const bool bHalf = TakesHalfResolution(*m_pInImage);
  if (bHalf && (m_pInImage->Width() % 2 != 0 || m_pInImage->Height() % 2 != 0)) {
    KLV_RAISE(ClException, "image must have even width and height", -44);
  }
  if (m_pInImage->Data() == nullptr) KLV_RAISE(ClException, "m_pInImage->Data() is not set", -701);
  if (bHalf) {
    EstimateAtHalfResolution();
  } else {
    EstimateAtInputResolution();
  }
  FadeBorders();
  MakeFirstMask();
  m_oRegions.RemoveIslands(m_oMask);
  m_oRegions.FillHoles(m_oMask);
  if (bHalf) {
    ComposeFullResolution();
  } else {
    ComposeInputResolution();
  }
  m_pOutImage->SetPels(nPelsX, nPelsY);
  return 0;
}

void ClIpVT40R4Mask::ComposeInputResolution() {
  const int nWidth = m_oMask.Width(), nHeight = m_oMask.Height();
  m_pOutImage->NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  m_oSoftMask.Start(m_oMask, false);
  for (int y = 0; y < nHeight; ++y) {
    MXKernels::FlattenRow(m_oSignal.Row<uint8_t>(y), m_oEnvelope.Row<uint8_t>(y), m_oSoftMask.Row(y),
                          m_pOutImage->Row<uint8_t>(y), static_cast<size_t>(nWidth));
  }
}

void ClIpVT40R4Mask::ComposeFullResolution() {
  const int nWidth = 2 * m_oMask.Width(), nHeight = 2 * m_oMask.Height();
  const auto nCount = static_cast<size_t>(nWidth);
  ClImage& oTarget = m_pOutImage == m_pInImage ? m_oScratch : *m_pOutImage;
  oTarget.NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 0, 0, true);
  m_oSoftMask.Start(m_oMask, true);
  m_oRows.Start(3, nCount, 0);
  uint8_t *pEnvelope = m_oRows.Row(0), *pBackground = m_oRows.Row(1), *pSignal = m_oRows.Row(2);
  for (int y = 0; y < nHeight; ++y) {
    if (y % 2 == 0) {
      MXKernels::ScaleUpRow(m_oEnvelope.Row<uint8_t>(y / 2), pEnvelope, nCount / 2);
      MXKernels::ScaleUpRow(m_oBackground.Row<uint8_t>(y / 2), pBackground, nCount / 2);
    }
    MXKernels::SubtractSaturated(m_pInImage->Row<uint8_t>(y), pBackground, pSignal, nCount);
    MXKernels::FlattenRow(pSignal, pEnvelope, m_oSoftMask.Row(y), oTarget.Row<uint8_t>(y), nCount);
  }
  if (&oTarget == m_pOutImage) return;
  // The input's block may be shared and must not be written into: the image gets the new one.
  m_oScratch.SetTag(m_pOutImage->Tag());
  m_oScratch.HandOver(*m_pOutImage);
}
