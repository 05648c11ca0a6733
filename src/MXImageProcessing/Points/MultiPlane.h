// How the one-plane processors serve images of several planes.
#pragma once

#include "MXImageProcessing/IpJoinPlanes.h"
#include "MXImageProcessing/IpSplitPlanes.h"
#include "MXTools/FpImage.h"

/// Splits the input, calls fnRun for each plane with rpIn and rpOut set to a one-plane image each, and joins
/// the results into the output. The two pointers and the input are restored, whatever happens.
///
/// Domain  2 to 4 planes; input and output are two images.
/// Errors  ClException -35 for more planes; what fnRun returns or raises.
template <typename TRun>
long ProcessMultiPlane(ClImage*& rpIn, ClImage*& rpOut, bool bTimer, TRun&& fnRun) {
  class ClAside {
   public:
    ClAside(ClImage*& rpInput, ClImage*& rpOutput)
        : m_rpIn(rpInput), m_rpOut(rpOutput), m_pIn(rpInput), m_pOut(rpOutput) {
      m_oInput.Swap(*m_pIn);
    }
    ~ClAside() {
      m_oInput.Swap(*m_pIn);
      m_rpIn = m_pIn;
      m_rpOut = m_pOut;
    }
    ClAside(const ClAside&) = delete;
    ClAside& operator=(const ClAside&) = delete;

    ClImage*& m_rpIn;
    ClImage*& m_rpOut;
    ClImage* const m_pIn;
    ClImage* const m_pOut;
    ClImage m_oInput;
  };

  ClImage aPlanes[4], aResults[4];
  ClAside oAside(rpIn, rpOut);
  const int nPlanes = oAside.m_oInput.Planes();
  ClIpSplitPlanes oSplit;
  oSplit.Timer(bTimer);
  long nResult = oSplit.ApplyParam(oAside.m_oInput, &aPlanes[0], &aPlanes[1], &aPlanes[2], &aPlanes[3]);
  for (int n = 0; n < nPlanes && nResult == 0; ++n) {
    rpIn = &aPlanes[n];
    rpOut = &aResults[n];
    nResult = fnRun();
  }
  if (nResult != 0) return nResult;
  ClIpJoinPlanes oJoin;
  oJoin.Timer(bTimer);
  oJoin.nOutPlanes = nPlanes;
  const auto PlaneOf = [&](int n) { return n < nPlanes ? &aResults[n] : nullptr; };
  // NOLINTNEXTLINE(clang-analyzer-core.StackAddressEscape): oAside puts both pointers back
  return oJoin.ApplyParam(*oAside.m_pOut, PlaneOf(0), PlaneOf(1), PlaneOf(2), PlaneOf(3));
}
