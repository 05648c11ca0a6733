// The rectangle that receives data, and the fill around it.
#include "MXImageProcessing/IpMoveImage.h"

#include <algorithm>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

namespace {

/// The part [m_nFirst, m_nEnd) of an axis of the output that the shifted input covers.
struct ClCovered {
  /// Offsets are first limited to the extent, so that no sum can overflow an int.
  ClCovered(int nExtent, int nOffset)
      : m_nOffset(std::clamp(nOffset, -nExtent, nExtent)),
        m_nFirst(std::max(m_nOffset, 0)),
        m_nEnd(nExtent + std::min(m_nOffset, 0)) {}

  int m_nOffset;
  int m_nFirst;
  int m_nEnd;
};

}  // namespace

ClIpMoveImage::ClIpMoveImage() {
  EnableDataType(m_caAllTypes);
  ClIpMoveImage::SetParametersToDefault();
}

long ClIpMoveImage::ApplyParam(ClImage& oIn, ClImage& oOut, int nOffsetX, int nOffsetY, double dFillValue) {
  m_nOffsetX = nOffsetX;
  m_nOffsetY = nOffsetY;
  m_dFillValue = dFillValue;
  return ApplyParam(oIn, oOut);
}

ClProcessorBase* ClIpMoveImage::Create() const {
  return MakeProcessor<ClIpMoveImage>();
}

void ClIpMoveImage::SetParametersToDefault() {
  m_nOffsetX = m_nOffsetY = 0;
  m_dFillValue = 0;
}

void ClIpMoveImage::DeclareParameters(ClParameterRows& oRows) {
  NewIpBase::ClIp1to1Base::DeclareParameters(oRows);
  oRows.Number("nOffsetX", "OffsetX", "In: Offset X", &m_nOffsetX);
  oRows.Number("nOffsetY", "OffsetY", "In: Offset Y", &m_nOffsetY);
  oRows.Number("dFillValue", "FillValue", "In: Fill Value", &m_dFillValue);
}

long ClIpMoveImage::DoProcess(ClImage& oIn, ClImage& oOut) {
  return DispatchElementType(oIn.DataType(), -33, [&](auto oElement) {
    Move<typename decltype(oElement)::Type>(oIn, oOut);
    return 0L;
  });
}

template <typename T>
void ClIpMoveImage::Move(const ClImage& oIn, ClImage& oOut) const {
  const T nFill = ElementFromDouble<T>(m_dFillValue);
  const int nPlanes = oIn.Planes();
  const ClCovered oX(oIn.Width(), m_nOffsetX), oY(oIn.Height(), m_nOffsetY);
  for (int y = 0; y < oOut.Height(); ++y) {
    T* pOut = oOut.Row<T>(y);
    T* const pEnd = pOut + oOut.SamplesPerRow();
    if (y >= oY.m_nFirst && y < oY.m_nEnd && oX.m_nFirst < oX.m_nEnd) {
      const T* pIn = oIn.Row<T>(y - oY.m_nOffset) + (oX.m_nFirst - oX.m_nOffset) * nPlanes;
      pOut = std::fill_n(pOut, oX.m_nFirst * nPlanes, nFill);
      pOut = std::copy_n(pIn, (oX.m_nEnd - oX.m_nFirst) * nPlanes, pOut);
    }
    std::fill(pOut, pEnd, nFill);
  }
}
