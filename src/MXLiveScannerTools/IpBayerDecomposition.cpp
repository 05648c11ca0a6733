// The checks of the four images and the walk over the cells.
#include "MXLiveScannerTools/IpBayerDecomposition.h"

#include <type_traits>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

namespace {

template <typename T>
T MeanOfGreens(T nA, T nB) {
  if constexpr (std::is_floating_point_v<T>) {
    return (nA + nB) * static_cast<T>(0.5);
  } else {
    return static_cast<T>((nA + nB) / 2);
  }
}

}  // namespace

ClIpBayerDecomposition::ClIpBayerDecomposition() {
  EnableDataType(ClImage::eUint8);
  EnableDataType(ClImage::eInt8);
  EnableDataType(ClImage::eUint16);
  EnableDataType(ClImage::eInt16);
  EnableDataType(m_caFloatTypes);
  ClIpBayerDecomposition::SetParametersToDefault();
}

ClProcessorBase* ClIpBayerDecomposition::Create() const {
  return MakeProcessor<ClIpBayerDecomposition>();
}

void ClIpBayerDecomposition::SetParametersToDefault() {
  m_oRed = {1, 0};
  m_oGreen1 = {0, 0};
  m_oGreen2 = {1, 1};
  m_oBlue = {0, 1};
}

void ClIpBayerDecomposition::DeclareParameters(ClParameterRows& oRows) {
  oRows.Input("pInImage", "InImage", "In: Original Image", &m_pInImage);
  oRows.Output("pOutImageRed", "OutImageRed", "Out: Red Image", &m_pOutImageRed);
  oRows.Output("pOutImageGreen", "OutImageGreen", "Out: Green Image", &m_pOutImageGreen);
  oRows.Output("pOutImageBlue", "OutImageBlue", "Out: Blue Image", &m_pOutImageBlue);
}

void ClIpBayerDecomposition::CheckInput() {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "no input image provided", -44);
  const int nWidth = m_pInImage->Width(), nHeight = m_pInImage->Height();
  if (nWidth < 1 || nHeight < 1) KLV_RAISE(ClException, "Image must have dimensions > 0.", -14);
  if (nWidth % 2 != 0 || nHeight % 2 != 0) {
    KLV_RAISE(ClException, "odd image dimension not supported", -44);
  }
  CheckTypeAllowed(m_pInImage);
}

void ClIpBayerDecomposition::CheckInOutImageTypes() {
  CheckInput();
  if (m_pOutImageRed == nullptr) KLV_RAISE(ClException, "no red output image provided", -44);
  if (m_pOutImageGreen == nullptr) KLV_RAISE(ClException, "no green output image provided", -44);
  if (m_pOutImageBlue == nullptr) KLV_RAISE(ClException, "no blue output image provided", -44);
  if (m_pOutImageRed == m_pInImage || m_pOutImageGreen == m_pInImage || m_pOutImageBlue == m_pInImage) {
    KLV_RAISE(ClException, "Processor does not work in-place.", -701);
  }
  if (m_pOutImageRed == m_pOutImageGreen || m_pOutImageGreen == m_pOutImageBlue ||
      m_pOutImageBlue == m_pOutImageRed) {
    KLV_RAISE(ClException, "No output pointer is allowed to be used for more than one output.", -701);
  }
  if (m_pInImage->Planes() != 1) KLV_RAISE(ClException, "only single plane images supported", -44);
  for (const ClPosition& oAt : {m_oRed, m_oGreen1, m_oGreen2, m_oBlue}) {
    if ((oAt.m_nX & ~1) != 0 || (oAt.m_nY & ~1) != 0) {
      KLV_RAISE(ClException, "sample position outside the cell", -44);
    }
  }
}

long ClIpBayerDecomposition::Process() {
  const ClImage& oIn = *m_pInImage;
  for (ClImage* pOut : {m_pOutImageRed, m_pOutImageGreen, m_pOutImageBlue}) {
    pOut->NewWithType(oIn.DataType(), oIn.Width() / 2, oIn.Height() / 2, 1, 0, 0, true);
  }
  return DispatchElementType(oIn.DataType(), -101, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    if constexpr (std::is_floating_point_v<T> || sizeof(T) <= 2) Decompose<T>();
    return 0L;
  });
}

template <typename T>
void ClIpBayerDecomposition::Decompose() {
  const int nCells = m_pInImage->Width() / 2;
  for (int y = 0; y < m_pInImage->Height() / 2; ++y) {
    const auto SampleRow = [&](const ClPosition& oAt) {
      return m_pInImage->Row<T>(2 * y + oAt.m_nY) + oAt.m_nX;
    };
    const T* pRed = SampleRow(m_oRed);
    const T* pGreen1 = SampleRow(m_oGreen1);
    const T* pGreen2 = SampleRow(m_oGreen2);
    const T* pBlue = SampleRow(m_oBlue);
    T* __restrict pOutRed = m_pOutImageRed->Row<T>(y);
    T* __restrict pOutGreen = m_pOutImageGreen->Row<T>(y);
    T* __restrict pOutBlue = m_pOutImageBlue->Row<T>(y);
    for (int x = 0; x < nCells; ++x) {
      pOutRed[x] = pRed[2 * x];
      pOutGreen[x] = MeanOfGreens(pGreen1[2 * x], pGreen2[2 * x]);
      pOutBlue[x] = pBlue[2 * x];
    }
  }
}
