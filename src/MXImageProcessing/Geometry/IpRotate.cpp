// Where the turned rows come from, and the loops along them.
#include "MXImageProcessing/IpRotate.h"

#include <algorithm>
#include <cmath>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/MultiPlane.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"
#include "portable/Math.h"

namespace {

constexpr int cnFractionBits = 12;
constexpr int64_t cnOne = int64_t{1} << cnFractionBits;
/// Beyond it 12 fractional bits and the products of a row do not fit their types.
constexpr double cdLargestCentre = 1 << 30;

ClVector Turned(const ClVector& oPoint, double dAngle) {
  const double dCos = Portable::Cos(dAngle), dSin = Portable::Sin(dAngle);
  return {dCos * oPoint.x - dSin * oPoint.y, dSin * oPoint.x + dCos * oPoint.y};
}

/// An axis of the source along one output row: its start, step and largest position.
struct ClWalk {
  /// Narrows [rnFirst, rnLast] to the columns whose source lies inside. Quotients are truncated and the ends
  /// left out, so that the source of no column of the range can lie outside.
  void Narrow(int64_t& rnFirst, int64_t& rnLast) const {
    if (m_nStep == 0) {
      if (m_nStart < 0 || m_nStart > m_nMaximum) rnLast = -1;
      return;
    }
    const int64_t nT1 = -m_nStart / m_nStep, nT2 = (m_nMaximum - m_nStart) / m_nStep;
    rnFirst = std::max(rnFirst, std::min(nT1, nT2) + 1);
    rnLast = std::min(rnLast, std::max(nT1, nT2) - 1);
  }

  int64_t m_nStart;
  int64_t m_nStep;
  int64_t m_nMaximum;
};

/// A blend of the four pixels round a position. A signed sample differs from the unsigned one by 128, and the
/// weights add up to a power of two, so that nSignBit turns the one into the other before and after the sum.
unsigned char Blend(const unsigned char* pPixel, size_t nRowBytes, int64_t nX, int64_t nY,
                    unsigned char nSignBit) {
  const auto nFx = static_cast<uint32_t>(nX & (cnOne - 1)), nFy = static_cast<uint32_t>(nY & (cnOne - 1));
  const uint32_t nWx = cnOne - nFx, nWy = cnOne - nFy;
  const auto Sample = [&](size_t nOffset) { return static_cast<uint32_t>(pPixel[nOffset] ^ nSignBit); };
  const uint32_t nSum = nWx * nWy * Sample(0) + nFx * nWy * Sample(1) + nFx * nFy * Sample(nRowBytes + 1) +
                        nWx * nFy * Sample(nRowBytes);
  return static_cast<unsigned char>((nSum >> (2 * cnFractionBits)) ^ nSignBit);
}

}  // namespace

struct ClIpRotate::ClFixedPoint {
  ClFixedPoint(double dAngle, const ClVector& oCentre, const ClVector& oShift)
      : m_nCos(static_cast<int64_t>(Portable::Cos(dAngle) * cnOne)),
        m_nSin(static_cast<int64_t>(Portable::Sin(dAngle) * cnOne)),
        m_nSinNegative(static_cast<int64_t>(Portable::Sin(-dAngle) * cnOne)),
        m_nCentreX(static_cast<int64_t>(oCentre.x * cnOne)),
        m_nCentreY(static_cast<int64_t>(oCentre.y * cnOne)),
        m_dFirstX(0 - oCentre.x - oShift.x),
        m_dFirstY(0 - oCentre.y - oShift.y) {}

  ClWalk WalkX(int nRow, int nWidth) const {
    return {Product(m_dFirstY + nRow, m_nSin) + Product(m_dFirstX, m_nCos) + m_nCentreX, m_nCos,
            (nWidth - 1) * cnOne};
  }
  ClWalk WalkY(int nRow, int nHeight) const {
    return {Product(m_dFirstY + nRow, m_nCos) + Product(m_dFirstX, m_nSinNegative) + m_nCentreY,
            m_nSinNegative, (nHeight - 1) * cnOne};
  }

 private:
  static int64_t Product(double dA, int64_t nB) { return static_cast<int64_t>(dA * static_cast<double>(nB)); }

  int64_t m_nCos;
  int64_t m_nSin;
  int64_t m_nSinNegative;
  int64_t m_nCentreX;
  int64_t m_nCentreY;
  double m_dFirstX;
  double m_dFirstY;
};

long ClIpRotate::ApplyParam(ClImage& oIn, ClImage& oOut, const ClVector& oCentre, double dAngle, bool bResize,
                            bool bInterpolate) {
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  m_oCentre = oCentre;
  m_dRotation = dAngle;
  m_bResizeOutImage = bResize;
  m_bInterpolate = bInterpolate;
  return Apply();
}

ClVector ClIpRotate::Transform(const ClVector& oPoint) const {
  return Turned(oPoint - m_oCentre, m_dRotation) + m_oOutCentre;
}

ClVector ClIpRotate::TransformInverse(const ClVector& oPoint) const {
  return Turned(oPoint - m_oOutCentre, -m_dRotation) + m_oCentre;
}

ClProcessorBase* ClIpRotate::Create() const {
  return MakeProcessor<ClIpRotate>();
}

bool ClIpRotate::CanApply() {
  return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage->Data() != nullptr;
}

void ClIpRotate::SetParametersToDefault() {
  m_oCentre = m_oOutCentre = ClVector();
  m_dRotation = 0;
  m_bResizeOutImage = true;
  m_bInterpolate = false;
  m_nBackgroundColor = 128;
}

void ClIpRotate::DeclareParameters(ClParameterRows& oRows) {
  oRows.InOutImages(&m_pInImage, &m_pOutImage);
  oRows.Number("Rotation", "Rotation", "In: Rotation Angle", &m_dRotation);
  oRows.Flag("ResizeOutImage", "ResizeOutImage", "In: Resize Output Image", &m_bResizeOutImage);
  oRows.Flag("Interpolate", "Interpolate", "In: Interpolate", &m_bInterpolate);
  oRows.Number("BackgroundColor", "BackgroundColor", "In: Background Color", &m_nBackgroundColor, 0, 255);
}

void ClIpRotate::ParameterString(char* szText, unsigned int nSize) const {
  const char* szMode = m_bInterpolate ? "Interpolate" : m_bResizeOutImage ? "Resize" : "";
  FormatParameterString(szText, nSize, "%1.3frad %s", m_dRotation, szMode);
}

long ClIpRotate::Process() {
  m_oOutCentre = m_oCentre;
  if (!CanApply()) return -10;
  if (m_dRotation == 0) {
    *m_pOutImage = *m_pInImage;
    return 0;
  }
  if (m_pInImage == m_pOutImage) return -10;
  const bool bFinite = std::isfinite(m_dRotation) && std::fabs(m_oCentre.x) <= cdLargestCentre &&
                       std::fabs(m_oCentre.y) <= cdLargestCentre;
  if (!bFinite) return -35;
  const ClVector oInCentre(m_pInImage->Width() / 2, m_pInImage->Height() / 2);
  const long nResult =
      m_pInImage->Planes() > 1
          ? ::ProcessMultiPlane(m_pInImage, m_pOutImage, IsTimerEnabled(), [this] { return ProcessPlane(); })
          : ProcessPlane();
  // The centre is set after the last plane, so that all planes are turned about the same point.
  if (nResult == 0 && m_bResizeOutImage) m_oCentre = oInCentre;
  return nResult;
}

long ClIpRotate::ProcessPlane() {
  const ClImage& oIn = *m_pInImage;
  if (oIn.ElementSize() != 1) KLV_RAISE(ClException, "Image Type is not the assigned type", -101);
  m_oOutCentre = m_oCentre;
  int nWidth = oIn.Width(), nHeight = oIn.Height();
  const ClVector oShift = Shift(nWidth, nHeight);
  m_pOutImage->NewWithType(oIn.IsSigned() ? ClImage::eInt8 : ClImage::eUint8, nWidth, nHeight, 1, oIn.PelsX(),
                           oIn.PelsY(), true);
  *m_pOutImage = m_nBackgroundColor;
  Turn(ClFixedPoint(m_dRotation, m_oCentre, oShift));
  return 0;
}

/// How far the output's origin moves; with ResizeOutImage it also sets the size and centre of the output.
ClVector ClIpRotate::Shift(int& rnWidth, int& rnHeight) {
  if (!m_bResizeOutImage) return {};
  const double dRight = rnWidth - 1, dBottom = rnHeight - 1;
  const ClVector aCorners[] = {Transform({0, dBottom}), Transform({dRight, dBottom}), Transform({0, 0}),
                               Transform({dRight, 0})};
  const auto LessX = [](const ClVector& a, const ClVector& b) { return a.x < b.x; };
  const auto LessY = [](const ClVector& a, const ClVector& b) { return a.y < b.y; };
  const auto [pLeft, pRight] = std::minmax_element(std::begin(aCorners), std::end(aCorners), LessX);
  const auto [pTop, pBottom] = std::minmax_element(std::begin(aCorners), std::end(aCorners), LessY);
  rnWidth = static_cast<int>(pRight->x + 1 - pLeft->x);
  rnHeight = static_cast<int>(pBottom->y + 1 - pTop->y);
  m_oOutCentre = ClVector(rnWidth / 2, rnHeight / 2);
  return {std::trunc(-pLeft->x), std::trunc(-pTop->y)};
}

void ClIpRotate::Turn(const ClFixedPoint& oFixed) {
  const ClImage& oIn = *m_pInImage;
  const unsigned char nSignBit = oIn.IsSigned() ? 0x80 : 0;
  const size_t nRowBytes = oIn.RowBytes();
  for (int y = 0; y < m_pOutImage->Height(); ++y) {
    const ClWalk oX = oFixed.WalkX(y, oIn.Width()), oY = oFixed.WalkY(y, oIn.Height());
    int64_t nFirst = 0, nLast = m_pOutImage->Width() - 1;
    oX.Narrow(nFirst, nLast);
    oY.Narrow(nFirst, nLast);
    unsigned char* pOut = m_pOutImage->Row<unsigned char>(y);
    int64_t nX = oX.m_nStart + nFirst * oX.m_nStep, nY = oY.m_nStart + nFirst * oY.m_nStep;
    for (int64_t x = nFirst; x <= nLast; ++x, nX += oX.m_nStep, nY += oY.m_nStep) {
      const unsigned char* pPixel = oIn.Data() + static_cast<size_t>(nY >> cnFractionBits) * nRowBytes +
                                    static_cast<size_t>(nX >> cnFractionBits);
      if (!m_bInterpolate) {
        pOut[x] = *pPixel;
      } else if (nX < oX.m_nMaximum && nY < oY.m_nMaximum) {
        pOut[x] = Blend(pPixel, nRowBytes, nX, nY, nSignBit);
      }
    }
  }
}
