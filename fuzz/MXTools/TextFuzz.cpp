// Feeds texts to the conversions between UTF-8 and wide text, to name patterns and to the functions of file
// names.
#include <cstring>

#include "MXTools/FileSystem.h"
#include "MXTools/WildCard.h"
#include "MXTools/XChar.h"
#include "StreamBytes.h"

namespace {

void Convert(const std::string& sText) {
  std::wstring sWide(sText.size() + 1, L'#');
  const unsigned int nBytes = static_cast<unsigned int>(sText.size());
  const int nWide = ConvertSBCSToWidechar(sText.c_str(), nBytes, sWide.data(),
                                          static_cast<unsigned int>(sWide.size() * sizeof(wchar_t)));
  if (nWide < 0) return;
  Require(static_cast<size_t>(nWide) <= sText.size(), "no more characters than bytes");
  sWide.resize(static_cast<size_t>(nWide));
  Require(NarrowText(sWide.c_str()) == sText, "a text comes back from its wide form");
}

void TakeApart(const std::string& sName, const std::string& sOther) {
  char szPath[64];
  char szName[64];
  Refused([&] {
    FileSystem::GetPathAndName(sName.c_str(), szPath, sizeof(szPath), szName, sizeof(szName));
    Require(std::string(szPath) + szName == sName, "path and name are the whole");
  });
  Refused([&] { FileSystem::GetFileNameWithoutExt(sName.c_str(), szName, sizeof(szName)); });
  Refused([&] {
    std::strncpy(szName, sName.c_str(), sizeof(szName) - 1);
    szName[sizeof(szName) - 1] = 0;
    FileSystem::ChangeExtension(sOther.c_str(), szName, sizeof(szName));
    FileSystem::AddPath(szName, sizeof(szName), sOther.c_str());
  });
  Refused([&] { FileSystem::MakeAbsolutePath(sOther.c_str(), sName.c_str(), szPath, sizeof(szPath)); });
  Refused([&] { FileSystem::MakeRelativePath(sOther.c_str(), sName.c_str(), szPath, sizeof(szPath)); });
}

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (const char* szSeed : {"/a/b.c|/a/", "../x/./y.txt|/r/s/", "*.k?f|pic.kif",
                             "gr\xC3\xBC\xC3\x9F|\xE2\x82\xAC", "a*b*c|aabbcc"})
    aSeeds.push_back(BytesOf(szSeed, '|'));
  return aSeeds;
}

void Feed(const Bytes& aInput) {
  ClFuzzInput oInput(aInput);
  const std::string sFirst = oInput.Text();
  const std::string sSecond = oInput.Text();
  Convert(sFirst);
  FileSystem::ClWildCard(sFirst.c_str()).Match(sSecond.c_str());
  Require(FileSystem::ClWildCard(("*" + sSecond).c_str()).Match(sSecond.c_str()) ||
              sSecond.find_first_of("*?") != std::string::npos,
          "a star stands for nothing too");
  TakeApart(sFirst, sSecond);
}
