// The texture classes, row by row.
#include "MXLiveScannerTools/IpComputeLBPImage_4Neighborhood.h"

#include <algorithm>
#include <cstring>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXKernels/MaskRows.h"
#include "MXKernels/PointRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

// Index: bit 0 the upper neighbour, bit 1 the right one, bit 2 the lower one, bit 3 the left one.
const unsigned char ClIpComputeLBPImage_4Neighborhood::m_anMapping[16] = {0, 1, 1, 2, 1, 5, 2, 3,
                                                                          1, 2, 5, 3, 2, 3, 3, 4};

ClIpComputeLBPImage_4Neighborhood::ClIpComputeLBPImage_4Neighborhood() : m_aoClassImages(cnClasses) {
  EnableDataType(m_caAllTypes);
}

ClProcessorBase* ClIpComputeLBPImage_4Neighborhood::Create() const {
  return MakeProcessor<ClIpComputeLBPImage_4Neighborhood>();
}

void ClIpComputeLBPImage_4Neighborhood::DeclareParameters(ClParameterRows& oRows) {
  oRows.Input("m_poInImage", &m_poInImage);
}

void ClIpComputeLBPImage_4Neighborhood::ClearBorder(ClImage& oImage) {
  const int nWidth = oImage.Width(), nHeight = oImage.Height();
  for (int y = 0; y < nHeight; ++y) {
    unsigned char* pRow = oImage.Row<unsigned char>(y);
    if (y == 0 || y == nHeight - 1 || nWidth < 3) {
      std::memset(pRow, 0, oImage.RowBytes());
    } else {
      pRow[0] = 0;
      std::memset(pRow + nWidth - 1, 0, oImage.RowBytes() - static_cast<size_t>(nWidth) + 1);
    }
  }
}

long ClIpComputeLBPImage_4Neighborhood::Process() {
  if (m_poInImage == nullptr) KLV_RAISE(ClException, "No input sample assigned.", -701);
  if (m_poInImage->DataType() != ClImage::eUint8) KLV_RAISE(ClException, "Imput image must be uint8.", -44);
  if (m_poOutImage == nullptr) KLV_RAISE(ClException, "No output image assigned.", -701);
  if (m_poInImage->Planes() != 1 || m_poInImage == m_poOutImage) {
    KLV_RAISE(ClException, "only single plane images and another output supported", -44);
  }
  const ClImage& oIn = *m_poInImage;
  const int nWidth = oIn.Width(), nHeight = oIn.Height();
  m_poOutImage->NewWithType(ClImage::eUint8, nWidth, nHeight, 1, 19685, 19685, true);
  ClearBorder(*m_poOutImage);
  for (unsigned int n = 0; n < cnClasses; ++n) {
    m_aoClassImages[n].New(*m_poOutImage);
    ClearBorder(m_aoClassImages[n]);
  }
  if (nWidth < 3) return 0;
  const auto nInner = static_cast<size_t>(nWidth - 2);
  for (int y = 1; y < nHeight - 1; ++y) {
    unsigned char* pClass = m_poOutImage->Row<unsigned char>(y) + 1;
    MXKernels::TextureClassRow(oIn.Row<unsigned char>(y - 1) + 1, oIn.Row<unsigned char>(y) + 1,
                               oIn.Row<unsigned char>(y + 1) + 1, pClass, nInner, m_anMapping);
    for (unsigned int n = 0; n < cnClasses; ++n) {
      MXKernels::EqualRow(pClass, m_aoClassImages[n].Row<unsigned char>(y) + 1, nInner,
                          static_cast<unsigned char>(n));
    }
  }
  return 0;
}
