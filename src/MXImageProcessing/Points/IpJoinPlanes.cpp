// Strided copies into the pixels.
#include "MXImageProcessing/IpJoinPlanes.h"

#include <cmath>
#include <limits>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

long ClIpJoinPlanes::ApplyParam(ClImage& oOut, ClImage* pPlane0, ClImage* pPlane1, ClImage* pPlane2,
                                ClImage* pPlane3) {
  m_pOutImage = &oOut;
  m_apInPlanes[0] = pPlane0;
  m_apInPlanes[1] = pPlane1;
  m_apInPlanes[2] = pPlane2;
  m_apInPlanes[3] = pPlane3;
  return Apply();
}

ClProcessorBase* ClIpJoinPlanes::Create() const {
  return MakeProcessor<ClIpJoinPlanes>();
}

bool ClIpJoinPlanes::CanApply() {
  return m_pOutImage != nullptr && PlanesOfContent() >= 0;
}

void ClIpJoinPlanes::SetParametersToDefault() {
  for (double& dColor : dInFillcolors) dColor = std::numeric_limits<double>::quiet_NaN();
  eOutContent = ClImage::eUnknown;
  bFillEmptyPlanes = true;
}

void ClIpJoinPlanes::DeclareParameters(ClParameterRows& oRows) {
  const char* const szFill = "In: Fillcolor of a missing Plane";
  oRows.Input("pInPlane[0]", "InPlane[0]", "In: One-plane Image", &m_apInPlanes[0]);
  oRows.Input("pInPlane[1]", "InPlane[1]", "In: One-plane Image", &m_apInPlanes[1]);
  oRows.Input("pInPlane[2]", "InPlane[2]", "In: One-plane Image", &m_apInPlanes[2]);
  oRows.Input("pInPlane[3]", "InPlane[3]", "In: One-plane Image", &m_apInPlanes[3]);
  oRows.Number("dInFillcolors[0]", "InFillcolors[0]", szFill, &dInFillcolors[0]);
  oRows.Number("dInFillcolors[1]", "InFillcolors[1]", szFill, &dInFillcolors[1]);
  oRows.Number("dInFillcolors[2]", "InFillcolors[2]", szFill, &dInFillcolors[2]);
  oRows.Number("dInFillcolors[3]", "InFillcolors[3]", szFill, &dInFillcolors[3]);
  oRows.Output("pOutImage", "OutImage", "Out: Output Image", &m_pOutImage);
  oRows.Choice("eOutContent", "OutContent", "In: Content of the OutImage", &eOutContent,
               {{ClImage::eUnknown, "eUnknown"},
                {ClImage::eGrayscale, "eGrayscale"},
                {ClImage::eRGB, "eRGB"},
                {ClImage::eRGBA, "eRGBA"},
                {ClImage::eHSV, "eHSV"},
                {ClImage::eXYZ, "eXYZ"},
                {ClImage::eCIELab, "eCIELab"},
                {ClImage::eCIELUV, "eCIELUV"}});
  oRows.Flag("bFillEmptyPlanes", "FillEmptyPlanes", "In: Fill missing Planes", &bFillEmptyPlanes);
}

long ClIpJoinPlanes::PlanesOfContent() const {
  switch (eOutContent) {
    case ClImage::eUnknown:
      return nOutPlanes > 0 ? nOutPlanes : 0;
    case ClImage::eGrayscale:
      return 1;
    case ClImage::eRGB:
    case ClImage::eHSV:
    case ClImage::eCIELUV:
      return 3;
    case ClImage::eRGBA:
      return 4;
    default:
      return -1;
  }
}

const ClImage* ClIpJoinPlanes::FirstPlane() const {
  for (const ClImage* pPlane : m_apInPlanes) {
    if (pPlane != nullptr) return pPlane;
  }
  return nullptr;
}

void ClIpJoinPlanes::CheckPlanes(const ClImage& oFirst) const {
  for (const ClImage* pPlane : m_apInPlanes) {
    if (pPlane == nullptr) continue;
    if (pPlane->DataType() != oFirst.DataType() || !pPlane->HasSize(oFirst.Width(), oFirst.Height()) ||
        pPlane->Planes() != oFirst.Planes() || pPlane == m_pOutImage) {
      KLV_RAISE(ClException, "planes must be alike and differ from the output", -44);
    }
  }
}

long ClIpJoinPlanes::Process() {
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "m_pOutImage is not set", -701);
  const long nPlanes = PlanesOfContent();
  if (nPlanes < 0) return -35;
  const ClImage* pFirst = FirstPlane();
  if (nPlanes == 0 || pFirst == nullptr) return 0;
  if (nPlanes > 4) KLV_RAISE(ClException, "Image has more than 4 planes.", -44);
  CheckPlanes(*pFirst);
  m_pOutImage->NewWithType(pFirst->DataType(), pFirst->Width(), pFirst->Height(), static_cast<int>(nPlanes),
                           pFirst->PelsX(), pFirst->PelsY(), true);
  if (eOutContent != ClImage::eUnknown) m_pOutImage->SetContent(eOutContent);
  return DispatchElementType(pFirst->DataType(), 0, [&](auto oElement) {
    for (int n = 0; n < nPlanes; ++n) JoinPlane<typename decltype(oElement)::Type>(n);
    return 0L;
  });
}

template <typename T>
void ClIpJoinPlanes::JoinPlane(int nPlane) {
  const ClImage* pPlane = m_apInPlanes[nPlane];
  if (pPlane == nullptr && !bFillEmptyPlanes) return;
  const int nStep = m_pOutImage->Planes();
  const double dColor = dInFillcolors[nPlane];
  const T nFill = std::isnan(dColor) ? T{0} : ElementFromDouble<T>(dColor);
  for (int y = 0; y < m_pOutImage->Height(); ++y) {
    T* pOut = m_pOutImage->Row<T>(y) + nPlane;
    const T* pIn = pPlane != nullptr ? pPlane->Row<T>(y) : nullptr;
    for (int x = 0; x < m_pOutImage->Width(); ++x) pOut[x * nStep] = pIn != nullptr ? pIn[x] : nFill;
  }
}
