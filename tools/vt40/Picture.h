// A grey picture and its file formats.
#pragma once

#include <string>
#include <vector>

/// 8-bit grey values, top row first, without padding. Units: resolution in pels per metre.
struct ClPicture {
  unsigned int nWidth = 0;
  unsigned int nHeight = 0;
  unsigned int nPelsX = 0;
  unsigned int nPelsY = 0;
  std::vector<unsigned char> aPixels;

  const unsigned char* Row(unsigned int nY) const {
    return aPixels.data() + static_cast<size_t>(nY) * nWidth;
  }
};

/// What a PNG file says of its picture besides the resolution.
struct StPictureFacts {
  std::string sSoftware;
  std::string sSerial;
  std::string sMode;
  bool bSimulated = false;
  bool bReplay = false;  ///< of a recording
};

/// The bytes of a PNG file with the resolution and the facts as text chunks. Errors: ClToolError eExitFile.
std::vector<unsigned char> EncodePng(const ClPicture& oPicture, const StPictureFacts& oFacts);
/// The Write functions write the picture with its resolution. Errors: ClToolError eExitFile.
void WritePng(const ClPicture& oPicture, const std::string& sFile, const StPictureFacts& oFacts);
/// The grey values of a PNG file; colours become grey. Errors: ClToolError eExitFile.
ClPicture ReadPng(const std::string& sFile);
void WriteBmp(const ClPicture& oPicture, const std::string& sFile);
void WriteKif(const ClPicture& oPicture, const std::string& sFile);

/// Makes the folder when it is missing, and tries to write into it. Errors: ClToolError eExitFile.
void PrepareFolder(const std::string& sFolder);
/// Writes <folder>/<name>.<format>, format being "png", "bmp" or "kif", makes the folder when it is missing,
/// and returns the file's path.
std::string WritePicture(const ClPicture& oPicture, const std::string& sFolder, const std::string& sName,
                         const std::string& sFormat, const StPictureFacts& oFacts);

/// Appends a number of nBytes bytes, lowest byte first or last.
void AppendLittleEndian(std::vector<unsigned char>& aBytes, unsigned long long nValue, unsigned int nBytes);
void AppendBigEndian(std::vector<unsigned char>& aBytes, unsigned long long nValue, unsigned int nBytes);
/// Refuses what can't be read, and devices and pipes, which may never end or never begin. Errors: ClToolError
/// eExitFile, with the reason.
void NeedFile(const std::string& sFile);
/// Writes a whole file, or none: it gets its name when all of it is on the disk, and a file that had the name
/// stands until then. Errors: ClToolError eExitFile, with the system's reason.
void WriteFile(const std::vector<unsigned char>& aBytes, const std::string& sFile);
