// Mean and pick of the cells.
#include "MXImageProcessing/IpSubsample.h"

#include <algorithm>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/MultiPlane.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

namespace {

int Quotient(int nExtent, int nRate) {
  return nExtent / nRate + (nExtent % nRate != 0 ? 1 : 0);
}

template <typename T, typename U>
T MeanOfTwo(T nA, T nB) {
  return static_cast<T>((static_cast<U>(nA) + static_cast<U>(nB)) / 2);
}

/// The means of the runs of a row; the padding of the output row repeats the last one.
template <typename T, typename U>
void MeanOfRuns(const T* pIn, int nWidth, int nRate, T* pOut, int nOutWidth, int nOutElements) {
  const int nWhole = nWidth / nRate;
  if (nRate == 2) {
    // This is by far the most usual rate: there is no inner loop, and the division is a shift.
    for (int x = 0; x < nWhole; ++x) pOut[x] = MeanOfTwo<T, U>(pIn[2 * x], pIn[2 * x + 1]);
    pIn += 2 * nWhole;
  } else {
    for (int x = 0; x < nWhole; ++x) {
      U nSum = 0;
      for (int k = 0; k < nRate; ++k) nSum += static_cast<U>(*pIn++);
      pOut[x] = static_cast<T>(nSum / static_cast<U>(nRate));
    }
  }
  const int nRest = nWidth % nRate;
  if (nRest > 0) {
    U nSum = 0;
    for (int k = 0; k < nRest; ++k) nSum += static_cast<U>(*pIn++);
    pOut[nWhole] = static_cast<T>(nSum / static_cast<U>(nRest));
  }
  for (int x = nOutWidth; x < nOutElements; ++x) pOut[x] = pOut[nOutWidth - 1];
}

/// The means of a run of rows, column by column.
template <typename T, typename U>
void MeanOfRows(const ClImage& oIn, int nFirst, int nRows, T* pOut) {
  const int nElements = oIn.ElementsPerRow();
  if (nRows == 2) {
    const T* pUpper = oIn.Row<T>(nFirst);
    const T* pLower = oIn.Row<T>(nFirst + 1);
    for (int x = 0; x < nElements; ++x) pOut[x] = MeanOfTwo<T, U>(pUpper[x], pLower[x]);
    return;
  }
  for (int x = 0; x < nElements; ++x) {
    U nSum = 0;
    for (int y = nFirst; y < nFirst + nRows; ++y) nSum += static_cast<U>(oIn.Row<T>(y)[x]);
    pOut[x] = static_cast<T>(nSum / static_cast<U>(nRows));
  }
}

}  // namespace

long ClIpSubsample::ApplyParam(ClImage& oIn, int nRate, ClImage& oOut, bool bMean) {
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  m_nRate = nRate;
  m_nRateX = m_nRateY = 0;
  m_bMid = bMean;
  return Apply();
}

long ClIpSubsample::ApplyParam(ClImage& oIn, int nRateX, int nRateY, ClImage& oOut, bool bMean) {
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  m_nRate = 0;
  m_nRateX = nRateX;
  m_nRateY = nRateY;
  m_bMid = bMean;
  return Apply();
}

ClProcessorBase* ClIpSubsample::Create() const {
  return MakeProcessor<ClIpSubsample>();
}

bool ClIpSubsample::CanApply() {
  return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage != m_pOutImage;
}

void ClIpSubsample::SetParametersToDefault() {
  m_nRate = 2;
  m_nRateX = m_nRateY = 0;
  m_bMid = true;
}

void ClIpSubsample::DeclareParameters(ClParameterRows& oRows) {
  oRows.InOutImages(&m_pInImage, &m_pOutImage);
  oRows.Number("nRate", "Rate", "In: Common Rate", &m_nRate);
  oRows.Number("nRateX", "RateX", "In: Rate X", &m_nRateX);
  oRows.Number("nRateY", "RateY", "In: Rate Y", &m_nRateY);
  oRows.Flag("bMid", "Mid", "In: Mean of the Pixels", &m_bMid);
}

void ClIpSubsample::ParameterString(char* szText, unsigned int nSize) const {
  const long nX = m_nRate != 0 ? m_nRate : m_nRateX;
  const long nY = m_nRate != 0 ? m_nRate : m_nRateY;
  FormatParameterString(szText, nSize, "SubX%ld,SubY%ld,Mid=%s", nX, nY, m_bMid ? "Yes" : "No");
}

long ClIpSubsample::Process() {
  if (m_nRate != 0) m_nRateX = m_nRateY = m_nRate;
  if (m_nRateX < 1 || m_nRateY < 1) KLV_RAISE(ClException, "rate parameter out of range (1..n)", -44);
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "m_pInImage is not set", -701);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "m_pOutImage is not set", -701);
  if (m_pInImage == m_pOutImage) KLV_RAISE(ClException, "input and output must be two images", -44);
  if (m_pInImage->Planes() > 1) {
    return ::ProcessMultiPlane(m_pInImage, m_pOutImage, IsTimerEnabled(), [this] { return ProcessPlane(); });
  }
  return ProcessPlane();
}

long ClIpSubsample::ProcessPlane() {
  // The type of the sums holds a whole row or column of any image.
  switch (m_pInImage->DataType()) {
    case ClImage::eUint8:
      m_bMid ? ProcessMid<uint8_t, uint32_t>() : ProcessFast<uint8_t>();
      return 0;
    case ClImage::eInt8:
      m_bMid ? ProcessMid<int8_t, int32_t>() : ProcessFast<int8_t>();
      return 0;
    case ClImage::eUint16:
      m_bMid ? ProcessMid<uint16_t, uint64_t>() : ProcessFast<uint16_t>();
      return 0;
    case ClImage::eInt16:
      m_bMid ? ProcessMid<int16_t, int64_t>() : ProcessFast<int16_t>();
      return 0;
    default:
      KLV_RAISE(ClException, "unsupported image type", -103);
  }
}

void ClIpSubsample::AllocateOutImage() {
  const ClImage& oIn = *m_pInImage;
  m_pOutImage->NewWithType(oIn.DataType(), Quotient(oIn.Width(), m_nRateX), Quotient(oIn.Height(), m_nRateY),
                           1, oIn.PelsX() / m_nRateX, oIn.PelsY() / m_nRateY, true);
}

template <typename T, typename U>
void ClIpSubsample::ProcessMid() {
  const ClImage& oIn = *m_pInImage;
  AllocateOutImage();
  const int nOutWidth = m_pOutImage->Width();
  if (nOutWidth == 0) return;
  m_oNarrow.NewWithType(oIn.DataType(), nOutWidth, oIn.Height(), 1, 0, 0, true);
  for (int y = 0; y < oIn.Height(); ++y) {
    MeanOfRuns<T, U>(oIn.Row<T>(y), oIn.Width(), m_nRateX, m_oNarrow.Row<T>(y), nOutWidth,
                     m_oNarrow.ElementsPerRow());
  }
  for (int y = 0; y < m_pOutImage->Height(); ++y) {
    const int nFirst = y * m_nRateY;
    MeanOfRows<T, U>(m_oNarrow, nFirst, std::min(m_nRateY, oIn.Height() - nFirst), m_pOutImage->Row<T>(y));
  }
}

template <typename T>
void ClIpSubsample::ProcessFast() {
  AllocateOutImage();
  for (int y = 0; y < m_pOutImage->Height(); ++y) {
    const T* pIn = m_pInImage->Row<T>(y * m_nRateY);
    T* pOut = m_pOutImage->Row<T>(y);
    for (int x = 0; x < m_pOutImage->Width(); ++x) pOut[x] = pIn[x * m_nRateX];
  }
}
