// Strided copies out of the pixels.
#include "MXImageProcessing/IpSplitPlanes.h"

#include "MXImageProcessing/MakeProcessor.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

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

void ClIpSplitPlanes::DeclareParameters(ClParameterRows& oRows) {
  oRows.Input("pInImage", "InImage", "In: Original Image", &m_pInImage);
  oRows.Output("pOutPlane[0]", "OutPlane[0]", "Out: One-plane Image", &m_apOutPlanes[0]);
  oRows.Output("pOutPlane[1]", "OutPlane[1]", "Out: One-plane Image", &m_apOutPlanes[1]);
  oRows.Output("pOutPlane[2]", "OutPlane[2]", "Out: One-plane Image", &m_apOutPlanes[2]);
  oRows.Output("pOutPlane[3]", "OutPlane[3]", "Out: One-plane Image", &m_apOutPlanes[3]);
}

long ClIpSplitPlanes::Process() {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "m_pInImage is not set", -701);
  const ClImage& oIn = *m_pInImage;
  if (oIn.Planes() > 4) KLV_RAISE(ClException, "Image has more than 4 planes.", -35);
  for (const ClImage* pOut : m_apOutPlanes) {
    // The first plane would otherwise replace the block that the next planes are taken from.
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
