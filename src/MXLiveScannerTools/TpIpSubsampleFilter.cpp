// Windows of the resizing filter, and its passes.
#include "MXLiveScannerTools/TpIpSubsampleFilter.h"

#include <algorithm>
#include <cmath>

#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"
#include "portable/Math.h"

namespace {

[[noreturn]] void RaiseInvalid() {
  KLV_RAISE(ClException, "invalid parameter", -44);
}

int ScaledPels(int nPels, int nNew, int nOld) {
  return static_cast<int>(static_cast<int64_t>(nPels) * nNew / nOld);
}

}  // namespace

double ClFilterLanczos2::Weight(double dX, double dLimit) {
  if (dX == 0) return 1.0;
  if (!(std::fabs(dX) < dLimit)) return 0;
  return Portable::Sin(Portable::cdPi * dX) * Portable::Sin(Portable::cdPi * dX * 0.5) /
         (Portable::cdPi * Portable::cdPi * dX * dX * 0.5);
}

long ClIpSubsampleFilterBase::ApplyParam(ClImage& oIn, ClImage& oOut, int nWidth, int nHeight) {
  nNewWidth = nWidth;
  nNewHeight = nHeight;
  return ApplyParam(oIn, oOut);
}

void ClIpSubsampleFilterBase::DeclareParameters(ClParameterRows& oRows) {
  NewIpBase::ClIp1to1Base::DeclareParameters(oRows);
  oRows.Number("nNewWidth", &nNewWidth);
  oRows.Number("nNewHeight", &nNewHeight);
}

void ClIpSubsampleFilterBase::CheckInOutImageTypes() {
  if (m_pInImage == nullptr || m_pOutImage == nullptr || nNewWidth <= 0 || nNewHeight <= 0) RaiseInvalid();
  if (m_pInImage->DataType() != ClImage::eUint8 || m_pInImage->Planes() != 1) RaiseInvalid();
  if (m_pInImage->Width() <= 0 || m_pInImage->Height() <= 0 || m_pInImage->Data() == nullptr) RaiseInvalid();
}

long ClIpSubsampleFilterBase::Process() {
  if (m_pInImage->Height() == nNewHeight) return ProcessX();
  if (m_pInImage->Width() == nNewWidth) return ProcessY();
  return ProcessBoth();
}

void ClIpSubsampleFilterBase::MakeWindow(int nAt, int nIn, int nOut) {
  const double dCentre = static_cast<double>(nIn) * nAt / nOut;
  const double dHalf = 2.0 * nIn / nOut;
  if (dHalf < 2.0) {
    // An axis that grows takes one sample; at the edge the formula would put it before the first one.
    m_nFirst = m_nLast = std::max(0, static_cast<int>(dCentre - dHalf));
    m_aWeight[0] = m_dSum = 1.0;
    m_aIntWeight[0] = m_nSum = 1;
    return;
  }
  m_nFirst = std::max(0, static_cast<int>(dCentre - dHalf) - 1);
  m_nLast = static_cast<int>(std::min(static_cast<double>(nIn - 1), std::trunc(dCentre + dHalf) + 1));
  if (m_nLast - m_nFirst >= cnMaxTaps) RaiseInvalid();
  m_dSum = 0;
  m_nSum = 0;
  for (int n = m_nFirst; n <= m_nLast; ++n) {
    const int nTap = n - m_nFirst;
    m_aWeight[nTap] = Weight(2 * (n - dCentre) / dHalf, dHalf);
    m_aIntWeight[nTap] = static_cast<int32_t>(m_aWeight[nTap] * 1024.0);
    m_dSum += m_aWeight[nTap];
    m_nSum += m_aIntWeight[nTap];
  }
  if (m_nSum == 0) RaiseInvalid();
}

void ClIpSubsampleFilterBase::PrepareAxis(StAxis& oAxis, int nIn, int nOut) {
  if (oAxis.nIn == nIn && oAxis.nOut == nOut) return;
  oAxis.nIn = oAxis.nOut = 0;
  oAxis.aWindows.clear();
  oAxis.aWeights.clear();
  for (int n = 0; n < nOut; ++n) {
    MakeWindow(n, nIn, nOut);
    const int32_t nTaps = m_nLast - m_nFirst + 1;
    oAxis.aWindows.push_back({m_nFirst, nTaps, static_cast<int32_t>(oAxis.aWeights.size()), m_nSum});
    oAxis.aWeights.insert(oAxis.aWeights.end(), m_aIntWeight, m_aIntWeight + nTaps);
  }
  oAxis.nIn = nIn;
  oAxis.nOut = nOut;
}

ClImage& ClIpSubsampleFilterBase::NewOutput() {
  const ClImage& oIn = *m_pInImage;
  ClImage& oOut = m_pOutImage == m_pInImage ? m_oResult : *m_pOutImage;
  oOut.NewWithType(ClImage::eUint8, nNewWidth, nNewHeight, 1, ScaledPels(oIn.PelsX(), nNewWidth, oIn.Width()),
                   ScaledPels(oIn.PelsY(), nNewHeight, oIn.Height()), true);
  return oOut;
}

void ClIpSubsampleFilterBase::FilterColumn(int nRow, uint8_t* pOut) {
  const MXKernels::ResampleWindow& oWindow = m_oDown.aWindows[static_cast<size_t>(nRow)];
  const size_t nCount = static_cast<size_t>(m_pInImage->Width());
  m_aSums.assign(nCount, 0);
  for (int32_t n = 0; n < oWindow.m_nCount; ++n) {
    const int32_t nWeight = oWindow.m_nWeights + n;
    MXKernels::AddWeightedRow(m_pInImage->Row<uint8_t>(oWindow.m_nFirst + n),
                              m_oDown.aWeights[static_cast<size_t>(nWeight)], m_aSums.data(), nCount);
  }
  MXKernels::DivideRow(m_aSums.data(), oWindow.m_nDivisor, pOut, nCount);
}

long ClIpSubsampleFilterBase::ProcessX() {
  if (m_pInImage->Width() <= nNewWidth) RaiseInvalid();
  PrepareAxis(m_oAcross, m_pInImage->Width(), nNewWidth);
  ClImage& oOut = NewOutput();
  for (int nY = 0; nY < nNewHeight; ++nY) {
    MXKernels::ResampleRow(m_pInImage->Row<uint8_t>(nY), m_oAcross.aWindows.data(), m_oAcross.aWeights.data(),
                           static_cast<size_t>(nNewWidth), oOut.Row<uint8_t>(nY));
  }
  oOut.HandOver(*m_pOutImage);
  return 0;
}

long ClIpSubsampleFilterBase::ProcessY() {
  PrepareAxis(m_oDown, m_pInImage->Height(), nNewHeight);
  ClImage& oOut = NewOutput();
  for (int nY = 0; nY < nNewHeight; ++nY) FilterColumn(nY, oOut.Row<uint8_t>(nY));
  oOut.HandOver(*m_pOutImage);
  return 0;
}

long ClIpSubsampleFilterBase::ProcessBoth() {
  PrepareAxis(m_oDown, m_pInImage->Height(), nNewHeight);
  PrepareAxis(m_oAcross, m_pInImage->Width(), nNewWidth);
  ClImage& oOut = NewOutput();
  m_aLine.resize(static_cast<size_t>(m_pInImage->Width()));
  for (int nY = 0; nY < nNewHeight; ++nY) {
    FilterColumn(nY, m_aLine.data());
    MXKernels::ResampleRow(m_aLine.data(), m_oAcross.aWindows.data(), m_oAcross.aWeights.data(),
                           static_cast<size_t>(nNewWidth), oOut.Row<uint8_t>(nY));
  }
  oOut.HandOver(*m_pOutImage);
  return 0;
}
