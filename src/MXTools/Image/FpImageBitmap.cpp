// How an image shares the pixels of a BMP in memory.
#include "MXTools/Bitmap.h"
#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"

bool ClImage::Attach(const ClBitmap& oBitmap) {
  Delete();
  const tagBITMAPINFOHEADER* pHeader = oBitmap.Header();
  if (pHeader == nullptr || pHeader->biCompression != 0) return false;
  int nPlanes = 0;
  switch (pHeader->biBitCount) {
    case 8:
      nPlanes = 1;
      break;
    case 24:
      nPlanes = 3;
      break;
    case 32:
      nPlanes = 4;
      break;
    default:
      KLV_RAISE(ClException, "bitmap bit depth not supported\n", -12);
  }
  SetFields(eUint8, pHeader->biWidth, pHeader->biHeight, nPlanes, pHeader->biXPelsPerMeter,
            pHeader->biYPelsPerMeter, true);
  m_pData.reset(oBitmap.PixelHolder().get(), [pHolder = oBitmap.PixelHolder()](unsigned char*) {});
  m_nBlockBytes = cnNeverReused;
  return true;
}

ClImage& ClImage::operator=(const ClBitmap& oBitmap) {
  Attach(oBitmap);
  return *this;
}
