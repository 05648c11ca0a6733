// The choice between axes, sample signs and planes that all filters share.
#include "MXImageProcessing/IpFilterBase.h"

#include "MXImageProcessing/MultiPlane.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

long ClIpFilterBase::ApplyParam(ClImage& oIn, ClImage& oOut, long nWidth, long nFilterMode) {
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  nFilterWidth = nWidth;
  nMode = nFilterMode;
  return Apply();
}

bool ClIpFilterBase::CanApply() {
  return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage != m_pOutImage &&
         m_pInImage->Data() != nullptr;
}

void ClIpFilterBase::SetParametersToDefault() {
  nFilterWidth = 3;
  nMode = eModeXY;
}

void ClIpFilterBase::DeclareParameters(ClParameterRows& oRows) {
  oRows.InOutImages(&m_pInImage, &m_pOutImage);
  oRows.Number("nFilterWidth", "nFilterWidth", "in: Filter Width", &nFilterWidth);
  if (oRows.IsOlder() && !ListsModes()) return;
  oRows.Choice("nMode", "nMode", "in: Filter Mode", &nMode,
               {{eModeX, "Mode X"},
                {eModeY, "Mode Y"},
                {eModeXY, "Mode XY"},
                {eModeDirected, "MODE_DIRECTED"},
                {eModeDirectedOrtho, "MODE_DIRECTED_ORTHO"}},
               eModeX, eModeDirectedOrtho);
  oRows.Input("pInDxImage", "InDxImage", "in: Dx Image", &pInDxImage);
  oRows.Input("pInDyImage", "InDyImage", "in: Dy Image", &pInDyImage);
}

void ClIpFilterBase::CheckDirections() const {
  if (pInDxImage == nullptr) KLV_RAISE(ClException, "pInDxImage is not set", -701);
  if (pInDyImage == nullptr) KLV_RAISE(ClException, "pInDyImage is not set", -701);
  for (const ClImage* pImage : {pInDxImage, pInDyImage}) {
    if (!pImage->HasSize(m_pInImage->Width(), m_pInImage->Height())) {
      KLV_RAISE(ClException, "direction images must have the size of the input", -44);
    }
    if (pImage->DataType() != ClImage::eInt8 || pImage->Planes() > 1) {
      KLV_RAISE(ClException, "direction images must be signed, of 8 bits and one plane", -33);
    }
  }
}

void ClIpFilterBase::ParameterString(char* szText, unsigned int nSize) const {
  const char* szSign = "Unknown";
  if (m_pInImage != nullptr) szSign = m_pInImage->IsSigned() ? "Signed" : "Unsigned";
  FormatParameterString(szText, nSize, "W[%ld] M[%s%s%s%s] S[%s]", nFilterWidth,
                        (nMode & eModeX) != 0 ? "X" : "", (nMode & eModeY) != 0 ? "Y" : "",
                        (nMode & eModeDirected) != 0 ? "Directed" : "",
                        (nMode & eModeDirectedOrtho) != 0 ? "DirectedOrtho" : "", szSign);
}

long ClIpFilterBase::Process() {
  if (m_pInImage == nullptr) KLV_RAISE_NUMBER(-10);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "m_pOutImage is not set", -701);
  if (nFilterWidth < 2) {
    *m_pOutImage = *m_pInImage;
    return 0;
  }
  if (m_pInImage == m_pOutImage) return -10;
  return m_pInImage->Planes() >= 2 ? ProcessMultiPlane() : DoProcess();
}

long ClIpFilterBase::ProcessMultiPlane() {
  return ::ProcessMultiPlane(m_pInImage, m_pOutImage, IsTimerEnabled(), [this] { return Process(); });
}

long ClIpFilterBase::DoProcess() {
  if (m_pInImage == nullptr) KLV_RAISE_NUMBER(-10);
  const bool bSigned = m_pInImage->IsSigned();
  switch (nMode) {
    case eModeX:
      return bSigned ? ProcessSignedX() : ProcessX();
    case eModeY:
      return bSigned ? ProcessSignedY() : ProcessY();
    case eModeXY:
      return bSigned ? ProcessSignedXY() : ProcessXY();
    case eModeDirected:
      return bSigned ? ProcessSignedDirected(false) : ProcessDirected(false);
    case eModeDirectedOrtho:
      return bSigned ? ProcessSignedDirected(true) : ProcessDirected(true);
    default:
      KLV_RAISE_NUMBER(-35);
  }
}

long ClIpFilterBase::ProcessX() {
  return 0;
}
long ClIpFilterBase::ProcessY() {
  return 0;
}
long ClIpFilterBase::ProcessSignedX() {
  return 0;
}
long ClIpFilterBase::ProcessSignedY() {
  return 0;
}
long ClIpFilterBase::ProcessDirected(bool) {
  return 0;
}
long ClIpFilterBase::ProcessSignedDirected(bool) {
  return 0;
}

long ClIpFilterBase::ProcessXY() {
  return ProcessTwice([this] { return ProcessX(); }, [this] { return ProcessY(); });
}

long ClIpFilterBase::ProcessSignedXY() {
  return ProcessTwice([this] { return ProcessSignedX(); }, [this] { return ProcessSignedY(); });
}
