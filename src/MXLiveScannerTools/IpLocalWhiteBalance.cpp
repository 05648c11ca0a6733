// Phases, their local means and the balanced mosaic.
#include "MXLiveScannerTools/IpLocalWhiteBalance.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

ClIpLocalWhiteBalance::ClIpLocalWhiteBalance() {
  EnableDataType(ClImage::eUint8);
  EnableDataType(ClImage::eUint16);
  EnableDataType(ClImage::eInt8);
  EnableDataType(ClImage::eInt16);
  ClIpLocalWhiteBalance::SetParametersToDefault();
}

ClProcessorBase* ClIpLocalWhiteBalance::Create() const {
  return MakeProcessor<ClIpLocalWhiteBalance>();
}

void ClIpLocalWhiteBalance::DeclareParameters(ClParameterRows& oRows) {
  NewIpBase::ClIp1to1Base::DeclareParameters(oRows);
  oRows.Number("nInFilterWidth", "InFilterWidth", "In: Filter Width", &m_nInFilterWidth);
}

void ClIpLocalWhiteBalance::CheckImages() const {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "Pointer to input image not assigned.", -701);
  const int nWidth = m_pInImage->Width(), nHeight = m_pInImage->Height();
  if (nWidth % 2 != 0 || nHeight % 2 != 0) {
    KLV_RAISE(ClException, "image must have even width and height", -44);
  }
  if (nWidth < 1 || nHeight < 1) KLV_RAISE(ClException, "Image dimensions must be positive.", -14);
  if (m_nInFilterWidth < 1) KLV_RAISE(ClException, "invalid filter width", -44);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "Pointer to output image not assigned.", -701);
  if (m_pInImage->Planes() != 1) KLV_RAISE(ClException, "only single plane images supported", -44);
}

long ClIpLocalWhiteBalance::Process() {
  CheckImages();
  ClImage& oTarget = m_pOutImage == m_pInImage ? m_oScratch : *m_pOutImage;
  oTarget.New(*m_pInImage);
  constexpr long cnUnknown = 1;
  const long nResult = DispatchElementType(m_pInImage->DataType(), cnUnknown, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    if constexpr (std::is_same_v<T, uint8_t>) {
      if (BalanceByRows(oTarget)) return 0L;
    }
    if constexpr (std::is_integral_v<T> && sizeof(T) <= 2) {
      SplitPhases<T>();
      for (int k = 0; k < 4; ++k) m_oMean.ApplyParam(m_aPhases[k], m_aMeans[k], m_nInFilterWidth);
      Balance<T>(oTarget);
      return 0L;
    } else {
      return cnUnknown;
    }
  });
  if (nResult == cnUnknown) KLV_RAISE(ClException, "illegal input image type; should never happen", -103);
  oTarget.HandOver(*m_pOutImage);
  return nResult;
}

bool ClIpLocalWhiteBalance::BalanceByRows(ClImage& oTarget) {
  const ClImage& oIn = *m_pInImage;
  // The mean filter copies pictures that are smaller than its window, and rounds for a width of 3.
  if ((m_nInFilterWidth | 1) == 3 || !ClIpLocalWhiteBalanceRows::Fits(oIn, m_nInFilterWidth)) return false;
  m_oByRows.Begin(oIn, m_nInFilterWidth);
  for (int y = 0; y < oIn.Height(); y += 2) {
    m_oByRows.Next(oTarget.Row<uint8_t>(y), oTarget.Row<uint8_t>(y + 1));
  }
  return true;
}

template <typename T>
void ClIpLocalWhiteBalance::SplitPhases() {
  const ClImage& oIn = *m_pInImage;
  const int nCells = oIn.Width() / 2;
  for (ClImage& oPhase : m_aPhases) {
    oPhase.NewWithType(oIn.DataType(), nCells, oIn.Height() / 2, 1, oIn.PelsX(), oIn.PelsY(), true);
  }
  for (int y = 0; y < oIn.Height(); ++y) {
    const T* pIn = oIn.Row<T>(y);
    T* pEven = m_aPhases[2 * (y % 2)].Row<T>(y / 2);
    T* pOdd = m_aPhases[2 * (y % 2) + 1].Row<T>(y / 2);
    for (int x = 0; x < nCells; ++x) {
      pEven[x] = pIn[2 * x];
      pOdd[x] = pIn[2 * x + 1];
    }
  }
}

template <typename T>
void ClIpLocalWhiteBalance::Balance(ClImage& oTarget) {
  using Limits = std::numeric_limits<T>;
  constexpr int64_t cnOffset = 1 - int64_t{Limits::lowest()};
  const int nCells = oTarget.Width() / 2;
  for (int y = 0; y < oTarget.Height() / 2; ++y) {
    for (int x = 0; x < nCells; ++x) {
      int64_t aMeans[4];
      for (int k = 0; k < 4; ++k) aMeans[k] = m_aMeans[k].Row<T>(y)[x] + cnOffset;
      const int64_t nTarget = (aMeans[0] + aMeans[1] + aMeans[2] + aMeans[3]) / 4;
      for (int k = 0; k < 4; ++k) {
        const int64_t nSample = m_aPhases[k].Row<T>(y)[x] + cnOffset;
        const int64_t nOut = nSample * nTarget / aMeans[k] - cnOffset;
        oTarget.Row<T>(2 * y + k / 2)[2 * x + k % 2] =
            static_cast<T>(std::min<int64_t>(std::max<int64_t>(nOut, Limits::lowest()), Limits::max()));
      }
    }
  }
}
