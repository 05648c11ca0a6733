// Canvas, overlap and generic rule of the two-image processors.
#include "MXImageProcessing/Ip2to1Base.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "MXImageProcessing/OverlapLoop.h"
#include "MXImageProcessing/SampleCast.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

namespace {

/// Reads and writes samples of any type as doubles; the virtual rule between them costs more than the call.
using SampleReader = double (*)(const unsigned char* pData, long nElement);
using SampleWriter = void (*)(unsigned char* pData, long nElement, double dValue);

SampleReader ReaderOf(const ClImage& oImage) {
  SampleReader pfnReader = nullptr;
  DispatchElementType(oImage.DataType(), -101, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    pfnReader = [](const unsigned char* pData, long nElement) {
      return static_cast<double>(reinterpret_cast<const T*>(pData)[nElement]);
    };
    return 0L;
  });
  return pfnReader;
}

SampleWriter WriterOf(const ClImage& oImage) {
  SampleWriter pfnWriter = nullptr;
  DispatchElementType(oImage.DataType(), -101, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    pfnWriter = [](unsigned char* pData, long nElement, double dValue) {
      reinterpret_cast<T*>(pData)[nElement] = ElementFromDouble<T>(dValue);
    };
    return 0L;
  });
  return pfnWriter;
}

bool IsElementType(const ClImage& oImage) {
  return DispatchElementType(oImage.DataType(), -101, [](auto) { return 0L; }) == 0;
}

template <typename T, typename V>
void CopyRowsOntoCanvas(const ClImage& oIn, ClImage& oCanvas, long nX, long nY) {
  const long nPlanes = oIn.Planes();
  const long nCanvasPlanes = oCanvas.Planes();
  if (nPlanes != nCanvasPlanes && !(nPlanes == 1 && nCanvasPlanes == 3)) return;
  const long nRepeat = nCanvasPlanes / nPlanes;
  for (int y = 0; y < oIn.Height(); ++y) {
    const T* pIn = oIn.Row<T>(y);
    V* pOut = oCanvas.Row<V>(static_cast<int>(nY) + y) + nX * nCanvasPlanes;
    for (long n = 0; n < oIn.SamplesPerRow(); ++n) {
      for (long k = 0; k < nRepeat; ++k) *pOut++ = SampleCast<V>(pIn[n]);
    }
  }
}

/// Copies an image onto the canvas, one plane onto all three where the canvas has three.
void CopyOntoCanvas(const ClImage& oIn, ClImage& oCanvas, long nX, long nY) {
  DispatchElementType(oIn.DataType(), 0, [&](auto oElement) {
    using T = typename decltype(oElement)::Type;
    return DispatchElementType(oCanvas.DataType(), 0, [&](auto oCanvasElement) {
      CopyRowsOntoCanvas<T, typename decltype(oCanvasElement)::Type>(oIn, oCanvas, nX, nY);
      return 0L;
    });
  });
}

template <typename V>
void FillRows(ClImage& oCanvas, double dColor, const double (&aPlaneColors)[4]) {
  const int nPlanes = oCanvas.Planes();
  for (int y = 0; y < oCanvas.Height(); ++y) {
    V* pRow = oCanvas.Row<V>(y);
    for (int n = 0; n < oCanvas.SamplesPerRow(); ++n) {
      const int nPlane = n % nPlanes;
      const double dPlaneColor = nPlanes <= 4 ? aPlaneColors[nPlane % 4] : 0.0;
      pRow[n] = ElementFromDouble<V>(nPlanes == 1 ? dColor : dPlaneColor);
    }
  }
}

void FillCanvas(ClImage& oCanvas, double dColor, const double (&aPlaneColors)[4]) {
  DispatchElementType(oCanvas.DataType(), 0, [&](auto oElement) {
    FillRows<typename decltype(oElement)::Type>(oCanvas, dColor, aPlaneColors);
    return 0L;
  });
}

bool PlanesFit(const ClImage& oIn1, const ClImage& oIn2) {
  return oIn1.Planes() == oIn2.Planes() || (oIn1.Planes() == 3 && oIn2.Planes() == 1);
}

/// Clears planes that no rule will write, so that old memory does not get into the output. In every type, 0
/// is bytes of 0.
void ClearOverlap(ClImage& oCanvas, long nStart, long nWidth, long nHeight) {
  const long nSize = oCanvas.ElementSize();
  for (long y = 0; y < nHeight; ++y) {
    std::fill_n(oCanvas.Data() + (nStart + y * oCanvas.ElementsPerRow()) * nSize,
                nWidth * oCanvas.Planes() * nSize, static_cast<unsigned char>(0));
  }
}

}  // namespace

long ClIp2to1Base::ApplyParam(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, unsigned char nType) {
  pInImage1 = &oIn1;
  pInImage2 = &oIn2;
  pOutImage = &oOut;
  OutImageType = nType;
  return Apply();
}

bool ClIp2to1Base::CanApply() {
  return pInImage1 != nullptr && pInImage2 != nullptr && pOutImage != nullptr &&
         pInImage1->Data() != nullptr && pInImage2->Data() != nullptr;
}

void ClIp2to1Base::SetParametersToDefault() {
  OutImageType = ClImage::cnTypeDefault;
  SizeMustBeEqual = true;
  FillColor = 0.0;
  OffsetX = 0;
  OffsetY = 0;
}

void ClIp2to1Base::DeclareParameters(ClParameterRows& oRows) {
  oRows.Input("pInImage1", "InImage1", "In1: Original Image", &pInImage1);
  oRows.Input("pInImage2", "InImage2", "In2: 2nd Original Image", &pInImage2);
  oRows.Output("pOutImage", "OutImage", "Out: Output Image", &pOutImage);
  DeclareOutImageType(oRows);
  oRows.Choice("SizeMustBeEqual", "SizeMustBeEqual", "Bool: Size must be equal", &SizeMustBeEqual,
               {{true, "true"}, {false, "false"}});
  oRows.Number("FillColor", "FillColor", "Double: Fillcolor for Offset-Images", &FillColor);
  oRows.Number("OffsetX", "OffsetX", "Long: Offset of Image2 to Image1 in x-direction", &OffsetX);
  oRows.Number("OffsetY", "OffsetY", "Long: Offset of Image2 to Image1 in y-direction", &OffsetY);
}

void ClIp2to1Base::DeclareOutImageType(ClParameterRows& oRows) {
  oRows.OutImageType(&OutImageType);
}

long ClIp2to1Base::Initialize() {
  // A subclass may have further conditions, but pixels are needed by all.
  if (!CanApply() || !ClIp2to1Base::CanApply()) return -37;
  return SizeMustBeEqual && IsOverlaid() ? -44 : 0;
}

bool ClIp2to1Base::IsOverlaid() const {
  return !pInImage1->HasSize(pInImage2->Width(), pInImage2->Height()) || OffsetX != 0 || OffsetY != 0;
}

long ClIp2to1Base::Process() {
  ClImage& oTarget = pOutImage == pInImage1 || pOutImage == pInImage2 ? m_oScratch : *pOutImage;
  oTarget.NewWithType(*pInImage1,
                      OutImageType == ClImage::cnTypeDefault ? pInImage1->DataType() : OutImageType);
  if (!IsElementType(*pInImage1) || !IsElementType(*pInImage2) || !IsElementType(oTarget)) return -101;
  PrepareOverlay(oTarget);
  const long nResult =
      DoProcess(*pInImage1, *pInImage2, oTarget, m_nOverlapWidth, m_nOverlapHeight, pInImage1->Planes(),
                pInImage2->Planes(), m_nOverlapStart1, pInImage1->ElementsPerRow(), m_nOverlapStart2,
                pInImage2->ElementsPerRow(), m_nOverlapStartOut, oTarget.ElementsPerRow());
  oTarget.HandOver(*pOutImage);
  return nResult;
}

void ClIp2to1Base::MakeCanvas(ClImage& oTarget) const {
  constexpr long cnLargest = std::numeric_limits<int>::max() / 2;
  if (OffsetX < -cnLargest || OffsetX > cnLargest || OffsetY < -cnLargest || OffsetY > cnLargest) {
    KLV_RAISE(ClException, "Offset of the images is too large.", -44);
  }
  const long nShiftX = std::labs(OffsetX);
  const long nShiftY = std::labs(OffsetY);
  const long nWidth1 = pInImage1->Width(), nHeight1 = pInImage1->Height();
  const long nWidth2 = pInImage2->Width(), nHeight2 = pInImage2->Height();
  const long nWidth =
      OffsetX < 0 ? std::max(nWidth2, nWidth1 + nShiftX) : std::max(nWidth1, nWidth2 + nShiftX);
  const long nHeight =
      OffsetY < 0 ? std::max(nHeight2, nHeight1 + nShiftY) : std::max(nHeight1, nHeight2 + nShiftY);
  if (nWidth > 2 * cnLargest || nHeight > 2 * cnLargest) {
    KLV_RAISE(ClException, "Offset of the images is too large.", -44);
  }
  oTarget.NewWithType(oTarget.DataType(), static_cast<int>(nWidth), static_cast<int>(nHeight),
                      pInImage1->Planes(), pInImage1->PelsX(), pInImage1->PelsY(), true);
}

void ClIp2to1Base::PrepareOverlay(ClImage& oTarget) {
  MakeCanvas(oTarget);
  if (IsOverlaid()) {
    FillCanvas(oTarget, FillColor, m_aPlaneFillColors);
    CopyOntoCanvas(*pInImage1, oTarget, std::max(0L, -OffsetX), std::max(0L, -OffsetY));
    CopyOntoCanvas(*pInImage2, oTarget, std::max(0L, OffsetX), std::max(0L, OffsetY));
  }
  SetOverlap(oTarget);
  if (!PlanesFit(*pInImage1, *pInImage2)) {
    ClearOverlap(oTarget, m_nOverlapStartOut, m_nOverlapWidth, m_nOverlapHeight);
  }
}

void ClIp2to1Base::SetOverlap(const ClImage& oTarget) {
  const long nShiftX = std::labs(OffsetX);
  const long nShiftY = std::labs(OffsetY);
  const long nStep1 = pInImage1->ElementsPerRow(), nStep2 = pInImage2->ElementsPerRow();
  m_nOverlapWidth = std::min(pInImage1->Width(), pInImage2->Width()) - nShiftX;
  m_nOverlapHeight = std::min(pInImage1->Height(), pInImage2->Height()) - nShiftY;
  if (m_nOverlapWidth <= 0 || m_nOverlapHeight <= 0) m_nOverlapWidth = m_nOverlapHeight = 0;
  m_nOverlapStartOut = nShiftX * oTarget.Planes() + nShiftY * oTarget.ElementsPerRow();
  m_nOverlapStart1 = std::max(0L, OffsetX) * pInImage1->Planes() + std::max(0L, OffsetY) * nStep1;
  m_nOverlapStart2 = std::max(0L, -OffsetX) * pInImage2->Planes() + std::max(0L, -OffsetY) * nStep2;
}

const ClImage& ClIp2to1Base::SpreadOverlap(const ClImage& oIn2, ClOverlap& rOverlap) {
  const long nRepeat = rOverlap.m_nPlanes1;
  m_oSpread.NewWithType(oIn2.DataType(), static_cast<int>(rOverlap.m_nWidth),
                        static_cast<int>(rOverlap.m_nHeight), static_cast<int>(nRepeat), 0, 0, true);
  DispatchElementType(oIn2.DataType(), 0, [&](auto oElement) {
    using U = typename decltype(oElement)::Type;
    for (int y = 0; y < m_oSpread.Height(); ++y) {
      const U* pIn = oIn2.Row<U>(0) + rOverlap.m_nOffset2 + y * rOverlap.m_nRowStep2;
      U* pOut = m_oSpread.Row<U>(y);
      for (long x = 0; x < rOverlap.m_nWidth; ++x, pOut += nRepeat) std::fill_n(pOut, nRepeat, pIn[x]);
    }
    return 0L;
  });
  rOverlap.m_nPlanes2 = nRepeat;
  rOverlap.m_nOffset2 = 0;
  rOverlap.m_nRowStep2 = m_oSpread.ElementsPerRow();
  return m_oSpread;
}

double ClIp2to1Base::GetValue(ClImage&, ClImage&, ClImage&, double, double) {
  return 0.0;
}

long ClIp2to1Base::DoProcess(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, long nWidth, long nHeight,
                             long nPlanes1, long nPlanes2, long nOffset1, long nRowStep1, long nOffset2,
                             long nRowStep2, long nOffsetOut, long nRowStepOut) {
  const SampleReader pfnRead1 = ReaderOf(oIn1);
  const SampleReader pfnRead2 = ReaderOf(oIn2);
  const SampleWriter pfnWrite = WriterOf(oOut);
  if (pfnRead1 == nullptr || pfnRead2 == nullptr || pfnWrite == nullptr) return -101;
  const ClOverlap oOverlap{nWidth,    nHeight,  nPlanes1,  nPlanes2,   nOffset1,
                           nRowStep1, nOffset2, nRowStep2, nOffsetOut, nRowStepOut};
  const unsigned char* pIn1 = oIn1.Data();
  const unsigned char* pIn2 = oIn2.Data();
  unsigned char* pOut = oOut.Data();
  if (m_bLookUpTable && oIn2.DataType() == ClImage::eUint8 && oIn1.ElementSize() == 1) {
    TpArrayStatic<double> aTable;
    FillTable(aTable, oIn1, oIn2, oOut);
    ForOverlapElements(oOverlap, [&](long n1, long n2, long nOut) {
      pfnWrite(pOut, nOut, aTable[static_cast<unsigned int>(pIn1[n1] * 256 + pIn2[n2])]);
    });
  } else {
    ForOverlapElements(oOverlap, [&](long n1, long n2, long nOut) {
      pfnWrite(pOut, nOut, GetValue(oIn1, oIn2, oOut, pfnRead1(pIn1, n1), pfnRead2(pIn2, n2)));
    });
  }
  return 0;
}

void ClIp2to1Base::FillTable(TpArrayStatic<double>& aTable, ClImage& oIn1, ClImage& oIn2, ClImage& oOut) {
  aTable.New(65536);
  const int nFirst = oIn1.IsSigned() ? -128 : 0;
  for (int a = nFirst; a < nFirst + 256; ++a) {
    if (a < oIn1.Black() || a > oIn1.White()) continue;
    for (int b = 0; b < 256; ++b) {
      if (b < oIn2.Black() || b > oIn2.White()) continue;
      aTable[static_cast<unsigned int>((a & 255) * 256 + b)] = GetValue(oIn1, oIn2, oOut, a, b);
    }
  }
}
