// PNG files of 8-bit grey with the chunk that holds the resolution.
#include <png.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <utility>

#include "Picture.h"
#include "ToolError.h"

namespace {

constexpr unsigned long long cnMostPixels = 100000000;

void Collect(png_structp pPng, png_bytep pData, size_t nBytes) {
  auto* pBytes = static_cast<std::vector<unsigned char>*>(png_get_io_ptr(pPng));
  pBytes->insert(pBytes->end(), pData, pData + nBytes);
}

[[noreturn]] void Fail(png_structp, png_const_charp szReason) {
  throw ClToolError(eExitFile, std::string("PNG: ") + szReason);
}

void Ignore(png_structp, png_const_charp) {}

/// The two structures of the PNG library for a scope.
struct ClPngWriter {
  ClPngWriter() {
    pPng = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, Ignore);
    if (pPng != nullptr) pInfo = png_create_info_struct(pPng);
    if (pInfo == nullptr) throw ClToolError(eExitFile, "PNG: out of memory");
  }
  ClPngWriter(const ClPngWriter&) = delete;
  ClPngWriter& operator=(const ClPngWriter&) = delete;
  ~ClPngWriter() { png_destroy_write_struct(&pPng, &pInfo); }

  png_structp pPng = nullptr;
  png_infop pInfo = nullptr;
};

std::string CreationTime() {
  const std::time_t nNow = std::time(nullptr);
  std::tm oTime{};
  gmtime_r(&nNow, &oTime);
  char szTime[32];
  std::strftime(szTime, sizeof(szTime), "%Y-%m-%dT%H:%M:%SZ", &oTime);
  return szTime;
}

/// Says where the picture comes from. A picture of the simulated scanner says so wherever it goes,
/// and so does that of a replay.
void SetTexts(ClPngWriter& oWriter, const StPictureFacts& oFacts) {
  std::vector<std::pair<std::string, std::string>> aTexts = {{"Creation Time", CreationTime()}};
  if (!oFacts.sSoftware.empty()) aTexts.emplace_back("Software", oFacts.sSoftware);
  if (!oFacts.sSerial.empty()) aTexts.emplace_back("Serial Number", oFacts.sSerial);
  if (!oFacts.sMode.empty()) aTexts.emplace_back("Capture Mode", oFacts.sMode);
  if (oFacts.bSimulated) aTexts.emplace_back("Simulated", "yes");
  if (oFacts.bReplay) aTexts.emplace_back("Replay", "yes");
  std::vector<png_text> aChunks;
  for (auto& [sKey, sText] : aTexts) {
    png_text oChunk{};
    oChunk.compression = PNG_TEXT_COMPRESSION_NONE;
    oChunk.key = sKey.data();
    oChunk.text = sText.data();
    oChunk.text_length = sText.size();
    aChunks.push_back(oChunk);
  }
  png_set_text(oWriter.pPng, oWriter.pInfo, aChunks.data(), static_cast<int>(aChunks.size()));
}

/// The PNG library takes memory for some chunks by the size that they claim, before it looks for their bytes.
/// Errors: eExitFile for a chunk that is longer than the rest of the file. What is no PNG at all is left to
/// the library.
void CheckChunks(const std::string& sFile) {
  constexpr uint64_t cnSignature = 8, cnAround = 12;  // a chunk's length, name and checksum
  std::error_code oFailure;
  const uint64_t nFile = std::filesystem::file_size(sFile, oFailure);
  std::ifstream oFile(sFile, std::ios::binary);
  for (uint64_t nAt = cnSignature; !oFailure && nAt + cnAround <= nFile;) {
    unsigned char aLength[4] = {};
    oFile.seekg(static_cast<std::streamoff>(nAt));
    if (!oFile.read(reinterpret_cast<char*>(aLength), sizeof(aLength))) return;
    uint64_t nLength = 0;
    for (const unsigned char n : aLength) nLength = nLength << 8 | n;
    if (nLength > nFile - nAt - cnAround)
      throw ClToolError(eExitFile, sFile + ": a chunk of " + std::to_string(nLength) + " bytes at " +
                                       std::to_string(nAt) + " is longer than the file");
    nAt += cnAround + nLength;
  }
}

}  // namespace

std::vector<unsigned char> EncodePng(const ClPicture& oPicture, const StPictureFacts& oFacts) {
  std::vector<unsigned char> aBytes;
  ClPngWriter oWriter;
  png_set_write_fn(oWriter.pPng, &aBytes, Collect, nullptr);
  png_set_IHDR(oWriter.pPng, oWriter.pInfo, oPicture.nWidth, oPicture.nHeight, 8, PNG_COLOR_TYPE_GRAY,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_pHYs(oWriter.pPng, oWriter.pInfo, oPicture.nPelsX, oPicture.nPelsY, PNG_RESOLUTION_METER);
  SetTexts(oWriter, oFacts);
  png_write_info(oWriter.pPng, oWriter.pInfo);
  for (unsigned int y = 0; y < oPicture.nHeight; ++y) png_write_row(oWriter.pPng, oPicture.Row(y));
  png_write_end(oWriter.pPng, oWriter.pInfo);
  return aBytes;
}

void WritePng(const ClPicture& oPicture, const std::string& sFile, const StPictureFacts& oFacts) {
  WriteFile(EncodePng(oPicture, oFacts), sFile);
}

ClPicture ReadPng(const std::string& sFile) {
  NeedFile(sFile);
  CheckChunks(sFile);
  png_image oImage = {};
  oImage.version = PNG_IMAGE_VERSION;
  const auto Check = [&](int nGood) {
    if (nGood != 0) return;
    const std::string sReason = oImage.message;
    png_image_free(&oImage);
    throw ClToolError(eExitFile, sFile + ": " + sReason);
  };
  Check(png_image_begin_read_from_file(&oImage, sFile.c_str()));
  if (static_cast<unsigned long long>(oImage.width) * oImage.height > cnMostPixels) {
    const std::string sSize = std::to_string(oImage.width) + " x " + std::to_string(oImage.height);
    png_image_free(&oImage);
    throw ClToolError(eExitFile, sFile + ": " + sSize + " pixels are more than any picture of a scanner has");
  }
  oImage.format = PNG_FORMAT_GRAY;
  ClPicture oPicture;
  oPicture.nWidth = oImage.width;
  oPicture.nHeight = oImage.height;
  oPicture.aPixels.resize(static_cast<size_t>(oImage.width) * oImage.height);
  Check(png_image_finish_read(&oImage, nullptr, oPicture.aPixels.data(), 0, nullptr));
  return oPicture;
}
