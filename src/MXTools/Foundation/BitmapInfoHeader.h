// The information header of the BMP format, as it lies in memory and in files.
#pragma once

#include <cstdint>

/// 40 bytes, little-endian in files.
struct tagBITMAPINFOHEADER {
  uint32_t biSize;
  int32_t biWidth;
  int32_t biHeight;
  uint16_t biPlanes;
  uint16_t biBitCount;
  uint32_t biCompression;
  uint32_t biSizeImage;
  int32_t biXPelsPerMeter;
  int32_t biYPelsPerMeter;
  uint32_t biClrUsed;
  uint32_t biClrImportant;
};

static_assert(sizeof(tagBITMAPINFOHEADER) == 40, "the format fixes the size");

constexpr unsigned int cnBitmapInfoHeaderSize = sizeof(tagBITMAPINFOHEADER);
/// What a file has before the information header.
constexpr unsigned int cnBitmapFileHeaderSize = 14;
