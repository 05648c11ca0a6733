// A scan-line fill from the first pixel of each object.
#include "MXImageProcessing/IpLabeling.h"

#include "MXImageProcessing/NewProcessor.h"
#include "MXImageProcessing/PublishImage.h"
#include "MXTools/Exception.h"

namespace {

/// One row of input and labels, told whether a run that can still be filled begins at a place.
class ClRunFinder {
 public:
  ClRunFinder(const ClImage& oIn, const ClImage& oOut, long nY)
      : m_pIn(nY >= 0 && nY < oIn.Height() ? oIn.Row<uint8_t>(static_cast<int>(nY)) : nullptr),
        m_pLabels(m_pIn != nullptr ? oOut.Row<int32_t>(static_cast<int>(nY)) : nullptr) {}

  bool BeginsAt(long nX) {
    if (m_pIn == nullptr) return false;
    const bool bBefore = m_bInRun;
    m_bInRun = m_pIn[nX] == 0 && m_pLabels[nX] == 0;
    return m_bInRun && !bBefore;
  }

 private:
  const uint8_t* m_pIn;
  const int32_t* m_pLabels;
  bool m_bInRun = false;
};

}  // namespace

void ClIpLabeling::ClLineParts::Push(long nX, long nY) {
  // A noisy image stacks very many places; fixed steps would copy the stack over and over.
  if (Entries() == Capacity()) {
    const unsigned int nEntries = Entries();
    SetEntries(nEntries + nEntries / 2 + 100);
    SetEntries(nEntries);
  }
  Add({nX, nY});
}

ClIpLabeling::ClLinePart ClIpLabeling::ClLineParts::Pop() {
  const unsigned int nLast = Entries() - 1;
  const ClLinePart oLast = (*this)[nLast];
  SetEntries(nLast);
  return oLast;
}

ClProcessorBase* ClIpLabeling::Create() const {
  return NewProcessor<ClIpLabeling>();
}

bool ClIpLabeling::CanApply() {
  return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage != m_pOutImage;
}

void ClIpLabeling::PublishParameters(ClParameterContainer& oContainer) {
  PublishInputImage(oContainer, "pInImage", &m_pInImage);
  PublishOutputImage(oContainer, "pOutImage", &m_pOutImage);
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
  *m_pOutImage = 0;
  m_nLabels = 0;
  for (int y = 0; y < oIn.Height(); ++y) {
    const uint8_t* pIn = oIn.Row<uint8_t>(y);
    const int32_t* pLabels = m_pOutImage->Row<int32_t>(y);
    for (int x = 0; x < oIn.Width(); ++x) {
      if (pIn[x] == 0 && pLabels[x] == 0) FloodFill(x, y, ++m_nLabels);
    }
  }
  return 0;
}

void ClIpLabeling::FloodFill(long nX, long nY, int32_t nLabel) {
  const long nWidth = m_pInImage->Width();
  m_oStack.Clear();
  m_oStack.Push(nX, nY);
  while (m_oStack.Entries() > 0) {
    const ClLinePart oPart = m_oStack.Pop();
    const uint8_t* pIn = m_pInImage->Row<uint8_t>(static_cast<int>(oPart.m_nY));
    int32_t* pLabels = m_pOutImage->Row<int32_t>(static_cast<int>(oPart.m_nY));
    ClRunFinder oAbove(*m_pInImage, *m_pOutImage, oPart.m_nY - 1);
    ClRunFinder oBelow(*m_pInImage, *m_pOutImage, oPart.m_nY + 1);
    long x = oPart.m_nX;
    while (x > 0 && pIn[x - 1] == 0 && pLabels[x - 1] == 0) --x;
    for (; x < nWidth && pIn[x] == 0 && pLabels[x] == 0; ++x) {
      pLabels[x] = nLabel;
      if (oAbove.BeginsAt(x)) m_oStack.Push(x, oPart.m_nY - 1);
      if (oBelow.BeginsAt(x)) m_oStack.Push(x, oPart.m_nY + 1);
    }
  }
}
