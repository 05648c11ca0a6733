// Files of pictures, by format.
#include "Picture.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "ToolError.h"

void AppendLittleEndian(std::vector<unsigned char>& aBytes, unsigned long long nValue, unsigned int nBytes) {
  for (unsigned int n = 0; n < nBytes; ++n) aBytes.push_back(static_cast<unsigned char>(nValue >> (8 * n)));
}

void AppendBigEndian(std::vector<unsigned char>& aBytes, unsigned long long nValue, unsigned int nBytes) {
  for (unsigned int n = nBytes; n-- > 0;) aBytes.push_back(static_cast<unsigned char>(nValue >> (8 * n)));
}

void NeedFile(const std::string& sFile) {
  if (access(sFile.c_str(), R_OK) != 0) throw ClToolError(eExitFile, sFile + ": " + std::strerror(errno));
  std::error_code oError;
  if (!std::filesystem::is_regular_file(sFile, oError))
    throw ClToolError(eExitFile, sFile + ": is no regular file");
}

void WriteFile(const std::vector<unsigned char>& aBytes, const std::string& sFile) {
  std::FILE* pFile = std::fopen(sFile.c_str(), "wb");
  if (pFile == nullptr) throw ClToolError(eExitFile, sFile + ": " + std::strerror(errno));
  const bool bWritten = std::fwrite(aBytes.data(), 1, aBytes.size(), pFile) == aBytes.size();
  const int nError = errno;
  // A full disk may only show when the file is closed.
  if (std::fclose(pFile) != 0 || !bWritten) {
    throw ClToolError(eExitFile, sFile + ": " + std::strerror(bWritten ? errno : nError));
  }
}

std::string WritePicture(const ClPicture& oPicture, const std::string& sFolder, const std::string& sName,
                         const std::string& sFormat) {
  std::error_code oError;
  std::filesystem::create_directories(sFolder, oError);
  if (oError) throw ClToolError(eExitFile, sFolder + ": " + oError.message());
  std::string sFile = (std::filesystem::path(sFolder) / (sName + "." + sFormat)).string();
  if (sFormat == "bmp") {
    WriteBmp(oPicture, sFile);
  } else if (sFormat == "kif") {
    WriteKif(oPicture, sFile);
  } else {
    WritePng(oPicture, sFile);
  }
  return sFile;
}
