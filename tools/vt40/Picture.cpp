// Files of pictures, by format.
#include "Picture.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

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

namespace {

[[noreturn]] void Fail(const std::string& sFile, int nError) {
  throw ClToolError(eExitFile, sFile + ": " + std::strerror(nError));
}

/// 0, or the system's number of what went wrong.
int WriteWhole(const std::string& sFile, const std::vector<unsigned char>& aBytes) {
  std::FILE* pFile = std::fopen(sFile.c_str(), "wb");
  if (pFile == nullptr) return errno;
  const bool bWritten = std::fwrite(aBytes.data(), 1, aBytes.size(), pFile) == aBytes.size() &&
                        std::fflush(pFile) == 0 && fsync(fileno(pFile)) == 0;
  const int nError = errno;
  // A full disk may only show when the file is closed.
  if (std::fclose(pFile) != 0 && bWritten) return errno;
  return bWritten ? 0 : nError;
}

void MakeFolder(const std::string& sFolder) {
  std::error_code oError;
  std::filesystem::create_directories(sFolder, oError);
  if (oError) throw ClToolError(eExitFile, sFolder + ": " + oError.message());
}

}  // namespace

void WriteFile(const std::vector<unsigned char>& aBytes, const std::string& sFile) {
  std::error_code oError;
  // Pipes and devices have no other name to be written under, and a link stays one.
  const bool bInPlace =
      std::filesystem::is_symlink(sFile, oError) ||
      (std::filesystem::exists(sFile, oError) && !std::filesystem::is_regular_file(sFile, oError));
  const std::string sPart = bInPlace ? sFile : sFile + ".part";
  int nError = WriteWhole(sPart, aBytes);
  if (nError == 0 && !bInPlace && std::rename(sPart.c_str(), sFile.c_str()) != 0) nError = errno;
  if (nError == 0) return;
  if (!bInPlace) unlink(sPart.c_str());
  Fail(sFile, nError);
}

void PrepareFolder(const std::string& sFolder) {
  MakeFolder(sFolder);
  std::string sTrial = (std::filesystem::path(sFolder) / ".vt40-XXXXXX").string();
  const int nFile = mkstemp(sTrial.data());
  if (nFile == -1) Fail(sFolder, errno);
  close(nFile);
  unlink(sTrial.c_str());
}

std::string WritePicture(const ClPicture& oPicture, const std::string& sFolder, const std::string& sName,
                         const std::string& sFormat, const StPictureFacts& oFacts) {
  MakeFolder(sFolder);
  std::string sFile = (std::filesystem::path(sFolder) / (sName + "." + sFormat)).string();
  if (sFormat == "bmp") {
    WriteBmp(oPicture, sFile);
  } else if (sFormat == "kif") {
    WriteKif(oPicture, sFile);
  } else {
    WritePng(oPicture, sFile, oFacts);
  }
  return sFile;
}
