// Writes out the sets of runs of object pixels.
#include "MXImageProcessing/IpLabeling.h"

#include <algorithm>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/RunRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

namespace {

/// Labels [nBegin, nEnd) of a row. Where there is room, a short run is written as a full step: what goes
/// beyond its end is overwritten by the runs that follow.
void FillAndBeyond(int32_t* pRow, int nBegin, int nEnd, int nRowEnd, int32_t nLabel) {
  constexpr int cnStep = 8;
  if (nEnd - nBegin <= cnStep && nBegin + cnStep <= nRowEnd) {
    std::fill_n(pRow + nBegin, cnStep, nLabel);
  } else {
    std::fill(pRow + nBegin, pRow + nEnd, nLabel);
  }
}

}  // namespace

ClProcessorBase* ClIpLabeling::Create() const {
  return MakeProcessor<ClIpLabeling>();
}

bool ClIpLabeling::CanApply() {
  return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage != m_pOutImage;
}

void ClIpLabeling::DeclareParameters(ClParameterRows& oRows) {
  oRows.InOutImages(&m_pInImage, &m_pOutImage);
}

long ClIpLabeling::ApplyParam(ClImage& oIn, ClImage& oOut) {
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  return Apply();
}

long ClIpLabeling::Process() {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "Inputimage is missing", -37);
  if (m_pOutImage == nullptr) KLV_RAISE(ClException, "Outputimage is missing", -37);
  if (m_pInImage == m_pOutImage) KLV_RAISE(ClException, "Resize image with im self is senseless.", -44);
  const ClImage& oIn = *m_pInImage;
  m_pOutImage->NewWithType(ClImage::eInt32, oIn.Width(), oIn.Height(), oIn.Planes(), oIn.PelsX(), oIn.PelsY(),
                           oIn.AlignedRows());
  m_pOutImage->SetContent(oIn.Content());
  m_pOutImage->SetBlackWhite(oIn.Black(), oIn.White());
  m_aBits.SetEntries((static_cast<unsigned int>(oIn.Width()) + 63) / 64);
  m_oSets.Begin(oIn.Width(), oIn.Height());
  for (int y = 0; y < oIn.Height(); ++y) {
    MXKernels::BelowBitsRow(oIn.Row<uint8_t>(y), m_aBits.Data(), static_cast<size_t>(oIn.Width()), 1);
    m_oSets.AddRow(m_aBits.Data());
  }
  m_nLabels = m_oSets.NumberSets();
  WriteLabels();
  return 0;
}

void ClIpLabeling::WriteLabels() {
  const int nRowEnd = m_pOutImage->ElementsPerRow();
  for (int y = 0; y < m_pOutImage->Height(); ++y) {
    int32_t* pRow = m_pOutImage->Row<int32_t>(y);
    int nDone = 0;
    m_oSets.ForEachRun(y, [&](int32_t nSet, int32_t nBegin, int32_t nEnd) {
      FillAndBeyond(pRow, nDone, nBegin, nRowEnd, 0);
      FillAndBeyond(pRow, nBegin, nEnd, nRowEnd, nSet);
      nDone = nEnd;
    });
    std::fill(pRow + nDone, pRow + nRowEnd, 0);
  }
}
