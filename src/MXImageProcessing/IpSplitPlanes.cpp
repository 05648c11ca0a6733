// Strided copies out of the pixels.
#include "MXImageProcessing/IpSplitPlanes.h"

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/PublishImage.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"

long ClIpSplitPlanes::ApplyParam(ClImage& oIn, ClImage* pPlane0, ClImage* pPlane1, ClImage* pPlane2,
                                 ClImage* pPlane3) {
  m_pInImage = &oIn;
  m_apOutPlanes[0] = pPlane0;
  m_apOutPlanes[1] = pPlane1;
  m_apOutPlanes[2] = pPlane2;
  m_apOutPlanes[3] = pPlane3;
  return Apply();
}

ClProcessorBase* ClIpSplitPlanes::Create() const {
  return MakeProcessor<ClIpSplitPlanes>();
}

bool ClIpSplitPlanes::CanApply() {
  return m_pInImage != nullptr && m_pInImage->Planes() <= 4;
}

void ClIpSplitPlanes::QueryParameters(ClParameterInterface& oInterface) {
  DescribeInputImage(oInterface, "InImage", "In: Original Image", &m_pInImage);
  const char* const aNames[4] = {"OutPlane[0]", "OutPlane[1]", "OutPlane[2]", "OutPlane[3]"};
  for (int n = 0; n < 4; ++n) {
    DescribeOutputImage(oInterface, aNames[n], "Out: One-plane Image", &m_apOutPlanes[n]);
  }
}

void ClIpSplitPlanes::PublishParameters(ClParameterContainer& oContainer) {
  PublishInputImage(oContainer, "pInImage", &m_pInImage);
  const char* const aNames[4] = {"pOutPlane[0]", "pOutPlane[1]", "pOutPlane[2]", "pOutPlane[3]"};
  for (int n = 0; n < 4; ++n) PublishOutputImage(oContainer, aNames[n], &m_apOutPlanes[n]);
}

long ClIpSplitPlanes::Process() {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "m_pInImage is not set", -701);
  const ClImage& oIn = *m_pInImage;
  if (oIn.Planes() > 4) KLV_RAISE(ClException, "Image has more than 4 planes.", -35);
  for (const ClImage* pOut : m_apOutPlanes) {
    // The first plane would otherwise take the block away from those behind it.
    if (pOut == m_pInImage) KLV_RAISE(ClException, "planes must differ from the input", -44);
  }
  for (int nPlane = 0; nPlane < oIn.Planes(); ++nPlane) {
    ClImage* pOut = m_apOutPlanes[nPlane];
    if (pOut == nullptr) continue;
    DispatchElementType(oIn.DataType(), 0, [&](auto oElement) {
      using T = typename decltype(oElement)::Type;
      pOut->NewWithType(oIn.DataType(), oIn.Width(), oIn.Height(), 1, oIn.PelsX(), oIn.PelsY(), true);
      for (int y = 0; y < oIn.Height(); ++y) {
        const T* pIn = oIn.Row<T>(y) + nPlane;
        T* pRow = pOut->Row<T>(y);
        for (int x = 0; x < oIn.Width(); ++x) pRow[x] = pIn[x * oIn.Planes()];
      }
      return 0L;
    });
  }
  return 0;
}
