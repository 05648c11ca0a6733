// Points of a signature and lines between them.
#include "MXLiveScannerAPI/SignatureStrokes.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int cnPreviewWidth = 800;
constexpr int cnPreviewRows = 400;
constexpr int cnFullWidth = 1600;
constexpr int cnFullRows = 800;
constexpr int cnSensorWidth = 960;
constexpr int cnSensorRows = 340;
/// The number of frames without a pen that do not end a stroke, since the tip may be missed now and then.
constexpr int cnGap = 2;
/// A number of frames which says that no pen has been there for a while.
constexpr int cnLongUp = 10;
constexpr unsigned char cnInk = 255;

}  // namespace

void ClSignatureStrokes::Start(int nPreviewHeight) {
  m_nSignaturePoints = 0;
  m_nPenUpFrames = cnLongUp;
  if (m_oSignaturePreview.Height() == nPreviewHeight) return;
  m_oSignaturePreview.NewWithType(ClImage::eUint8, cnPreviewWidth, nPreviewHeight, 1, 0, 0, true);
  m_oSignaturePreview = 0;
}

void ClSignatureStrokes::Clear() {
  m_nSignaturePoints = 0;
  if (m_oSignaturePreview.Data() != nullptr) m_oSignaturePreview = 0;
}

void ClSignatureStrokes::NextFrame() {
  m_nPenUpFrames = std::min(m_nPenUpFrames + 1, cnLongUp);
}

bool ClSignatureStrokes::AddPoint(double dX, double dY, int nWeight) {
  if (m_nSignaturePoints == cnMaxPoints) return false;
  const int i = m_nSignaturePoints++;
  m_aSignatureX[i] = static_cast<int>(dX * nWeight);
  m_aSignatureY[i] = static_cast<int>(dY * nWeight);
  m_aSignatureWeight[i] = nWeight;
  m_nPenUpFrames = 0;
  const StPixel oPoint = Map(i, cnPreviewWidth, cnPreviewRows);
  if (i > 0 && m_aSignatureWeight[i - 1] != 0) {
    DrawLine(m_oSignaturePreview, Map(i - 1, cnPreviewWidth, cnPreviewRows), oPoint);
  }
  SetPixel(m_oSignaturePreview, oPoint.nX, oPoint.nY);
  return true;
}

void ClSignatureStrokes::EndStroke() {
  const int i = m_nSignaturePoints;
  if (m_nPenUpFrames <= cnGap || i == 0 || i == cnMaxPoints || m_aSignatureWeight[i - 1] == 0) return;
  m_aSignatureX[i] = 0;
  m_aSignatureY[i] = 0;
  m_aSignatureWeight[i] = 0;
  ++m_nSignaturePoints;
}

void ClSignatureStrokes::Draw(ClImage& oImage) const {
  for (int i = 0; i + 1 < m_nSignaturePoints; ++i) {
    if (m_aSignatureWeight[i] == 0) continue;
    const StPixel oPoint = Map(i, cnFullWidth, cnFullRows);
    if (m_aSignatureWeight[i + 1] == 0) {
      SetPixel(oImage, oPoint.nX, oPoint.nY);
    } else {
      DrawLine(oImage, oPoint, Map(i + 1, cnFullWidth, cnFullRows));
    }
  }
}

ClSignatureStrokes::StPixel ClSignatureStrokes::Map(int nPoint, int nColumns, int nRows) const {
  const int nWeight = m_aSignatureWeight[nPoint];
  return {m_aSignatureX[nPoint] * nColumns / (nWeight * cnSensorWidth),
          m_aSignatureY[nPoint] * nRows / (nWeight * cnSensorRows)};
}

void ClSignatureStrokes::SetPixel(ClImage& oImage, int nX, int nY) {
  if (nX < 0 || nX >= oImage.Width() || nY < 0 || nY >= oImage.Height()) return;
  oImage.Row<unsigned char>(nY)[nX] = cnInk;
}

/// Draws a line without its end, with which the next line begins.
void ClSignatureStrokes::DrawLine(ClImage& oImage, const StPixel& oFrom, const StPixel& oTo) {
  const int nX = oTo.nX - oFrom.nX;
  const int nY = oTo.nY - oFrom.nY;
  const int nSteps = std::max(std::abs(nX), std::abs(nY));
  for (int k = 0; k < nSteps; ++k) {
    SetPixel(oImage, oFrom.nX + k * nX / nSteps, oFrom.nY + k * nY / nSteps);
  }
}
