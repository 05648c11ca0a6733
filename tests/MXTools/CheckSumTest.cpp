// The check sums of calibration data: CRC-32 and MD5.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "MXTools/CRC32.h"
#include "MXTools/FileStream.h"
#include "MXTools/MD5.h"
#include "TemporaryDirectory.h"

namespace {

const unsigned char* Bytes(const char* szText) {
  return reinterpret_cast<const unsigned char*>(szText);
}

std::string Hex(const unsigned char* pDigest) {
  std::string szHex;
  for (unsigned int n = 0; n < 2 * ClMD5::cnDigestSize; ++n)
    szHex += "0123456789abcdef"[pDigest[n / 2] >> (n % 2 == 0 ? 4 : 0) & 15];
  return szHex;
}

std::string Digest(const std::string& szText) {
  unsigned char aDigest[ClMD5::cnDigestSize];
  ClMD5::Make(Bytes(szText.c_str()), static_cast<unsigned int>(szText.size()), aDigest);
  return Hex(aDigest);
}

TEST(CRC32, TheCheckValueIsThatOfTheMostSignificantBitFirstForm) {
  const ClCRC32 oCrc;
  EXPECT_EQ(oCrc.Get_CRC(Bytes("123456789"), 9), 0xFC891918u);
  EXPECT_EQ(oCrc.Get_CRC(Bytes("123456789"), 0), 0u);
}

TEST(MD5, TheDigestsAreThoseOfTheRfcsTestSuite) {
  EXPECT_EQ(Digest(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(Digest("abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(Digest("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
            "57edf4a22be3c955ac49da2e2107b67a");
  EXPECT_EQ(Digest(std::string(56, 'a')), "3b0c8ac703f828b04c6c197006d17218") << "no room for the length";
}

TEST(MD5, AFileInBlocksGivesTheDigestOfItsBytes) {
  const ClTemporaryDirectory oDirectory;
  const std::string szData = oDirectory.Path("data"), szDigest = oDirectory.Path("digest");
  const std::string szContent(2500, 'k');
  ClFileStream(szData.c_str(), "wb").Write(szContent.data(), 2500);
  ClMD5::Make(szData.c_str(), szDigest.c_str());
  unsigned char aDigest[17];
  ClFileStream oStream(szDigest.c_str(), "rb");
  ASSERT_EQ(oStream.Read(aDigest, 17), 16u);
  EXPECT_EQ(Hex(aDigest), Digest(szContent));
}

TEST(MD5, PiecesOfAnySizeGiveTheDigestOfTheWhole) {
  const std::string szContent(200, 'q');
  for (unsigned int nPiece : {1u, 7u, 63u, 64u, 65u, 130u}) {
    ClMD5::MD5_CTX oContext;
    ClMD5::Init(&oContext);
    for (unsigned int n = 0; n < 200; n += nPiece)
      ClMD5::Update(&oContext, Bytes(szContent.data()) + n, std::min(nPiece, 200 - n));
    unsigned char aDigest[ClMD5::cnDigestSize];
    ClMD5::Final(aDigest, &oContext);
    EXPECT_EQ(Hex(aDigest), Digest(szContent)) << nPiece;
  }
}

}  // namespace
