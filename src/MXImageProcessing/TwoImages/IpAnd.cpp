// The conjunction, row by row on bytes.
#include "MXImageProcessing/IpAnd.h"

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/OverlapLoop.h"
#include "MXKernels/PointRows.h"
#include "MXTools/ParameterRows.h"

ClProcessorBase* ClIpAnd::Create() const {
  return MakeProcessor<ClIpAnd>();
}

bool ClIpAnd::CanApply() {
  if (pInImage1 == nullptr || pInImage2 == nullptr || pOutImage == nullptr) return false;
  if (pInImage1->DataType() != pInImage2->DataType() || pInImage1->IsFloating()) return false;
  return pInImage1->Planes() == pInImage2->Planes() || pInImage2->Planes() == 1;
}

void ClIpAnd::DeclareOutImageType(ClParameterRows& oRows) {
  if (!oRows.IsOlder()) ClIp2to1Base::DeclareOutImageType(oRows);
}

long ClIpAnd::DoProcess(ClImage& oIn1, ClImage& oIn2, ClImage& oOut, long nWidth, long nHeight, long nPlanes1,
                        long nPlanes2, long nOffset1, long nRowStep1, long nOffset2, long nRowStep2,
                        long nOffsetOut, long nRowStepOut) {
  if (oOut.DataType() != oIn1.DataType()) return -101;
  ClOverlap oOverlap{nWidth,    nHeight,  nPlanes1,  nPlanes2,   nOffset1,
                     nRowStep1, nOffset2, nRowStep2, nOffsetOut, nRowStepOut};
  const bool bSpread = nPlanes2 == 1 && (nPlanes1 == 3 || nPlanes1 == 4);
  const ClImage& oSecond = bSpread ? SpreadOverlap(oIn2, oOverlap) : oIn2;
  if (!oOverlap.SamplesPair()) return 0;
  const long nSize = oIn1.ElementSize();
  const auto nRowBytes = static_cast<size_t>(oOverlap.m_nWidth * oOverlap.m_nPlanes1 * nSize);
  for (long y = 0; y < oOverlap.m_nHeight; ++y) {
    MXKernels::AndRow(oIn1.Data() + (oOverlap.m_nOffset1 + y * oOverlap.m_nRowStep1) * nSize,
                      oSecond.Data() + (oOverlap.m_nOffset2 + y * oOverlap.m_nRowStep2) * nSize,
                      oOut.Data() + (oOverlap.m_nOffsetOut + y * oOverlap.m_nRowStepOut) * nSize, nRowBytes);
  }
  return 0;
}
