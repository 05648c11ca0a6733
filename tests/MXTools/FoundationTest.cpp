// Errors and failures, arrays, the plane's vector and checksums.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <stdexcept>
#include <string>

#include "MXTools/CRC32.h"
#include "MXTools/ErrorTable.h"
#include "MXTools/Failure.h"
#include "MXTools/FileStream.h"
#include "MXTools/MD5.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/Vector.h"
#include "Raised.h"
#include "TemporaryDirectory.h"

namespace {

/// While it is set, every allocation that may fail without an exception fails.
bool s_bOutOfMemory = false;

}  // namespace

void* operator new[](std::size_t nBytes, const std::nothrow_t&) noexcept {
  if (s_bOutOfMemory) return nullptr;
  // The array form, whose blocks are those that delete[] takes.
  try {
    return operator new[](nBytes);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

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

TEST(ErrorTable, TheFirstRowAnswersANumberAndEveryRowItsName) {
  EXPECT_STREQ(GetErrorDescriptionIntern(0), "No errors occurred.");
  EXPECT_STREQ(GetKlvErrorInfo(-44).szName, "XSC_ERROR_INVALID_PARAMETER");
  EXPECT_STREQ(GetKlvErrorInfo("XSC_ERROR_PARAM_INVALID").szName, "XSC_ERROR_PARAM_INVALID");
  EXPECT_EQ(GetKlvErrorInfo(L"XSC_ERROR_ROLLED_SHIFTED").nNumber, -801);
  EXPECT_EQ(GetKlvErrorInfo("no such name").nNumber, 2147483647);
  EXPECT_STREQ(GetErrorDescriptionIntern(4711), "Unknown error code.");
}

TEST(Exception, TheCommentIsTheTablesMessageAndTheText) {
  ClException oFirst("x", -101, true, "file", 1);
  EXPECT_STREQ(oFirst.What(), "Internal error.\nx");
  ClException oCopy(oFirst);
  EXPECT_NE(oCopy.What(), oFirst.What()) << "a private copy of its own";
  ClException oPlain(ClExKelvarin(-60, "file", 1));
  oCopy = oPlain;
  EXPECT_EQ(oCopy.Number(), -60);
  oCopy = oFirst;
  const ClException& oItself = oCopy;
  oCopy = oItself;
  EXPECT_STREQ(oCopy.What(), "Internal error.\nx");
}

TEST(Exception, AFailureWithoutRoomForItsTextIsAFailureForWantOfMemory) {
  s_bOutOfMemory = true;
  const long nNumber = NumberOf([] { KLV_RAISE(ClException, "x", -101); });
  s_bOutOfMemory = false;
  EXPECT_EQ(nNumber, -102);
}

template <typename TRaise>
std::pair<long, std::string> Handled(TRaise&& fnRaise) {
  try {
    fnRaise();
  } catch (...) {
    return {Klv::FailureNumber(), Klv::FailureText()};
  }
  return {0, ""};
}

TEST(Failure, HasTheNumberAndTheTextOfWhatIsBeingHandled) {
  using Failure = std::pair<long, std::string>;
  EXPECT_EQ(Handled([] { throw ClException(-44, false, "", 0); }).first, -44);
  EXPECT_EQ(Handled([] { throw std::bad_alloc(); }).first, -102);
  EXPECT_EQ(Handled([] { throw std::runtime_error("a reason"); }), Failure(-721, "a reason"));
  EXPECT_EQ(Handled([] { throw 1; }).first, -722);
  EXPECT_NE(Handled([] { throw 1; }).second, "");
}

TEST(Undo, HappensOnlyOnTheWayOutWithAFailureAndNeverReplacesIt) {
  int nUndone = 0;
  const auto Leave = [&](long nNumber) {
    return NumberOf([&] {
      TpUndo oUndo([&] {
        ++nUndone;
        KLV_RAISE_NUMBER(-1);
      });
      KLV_CHECK(nNumber);
      oUndo.Dismiss();
    });
  };
  EXPECT_EQ(Leave(0), 0);
  EXPECT_EQ(nUndone, 0);
  EXPECT_EQ(Leave(-60), -60);
  EXPECT_EQ(nUndone, 1);
}

TEST(ArrayDynamic, ElevenEntriesOfAStepOfTenTakeTwentyPlaces) {
  TpArrayDynamic<int, 10> aArray;
  for (int n = 0; n < 10; ++n) aArray.Add(n);
  EXPECT_EQ(aArray.Capacity(), 10u);
  aArray.Add(aArray[0]);
  EXPECT_EQ(aArray.Capacity(), 20u);
  EXPECT_EQ(aArray.Entries(), 11u);
  EXPECT_EQ(aArray[9], 9);
  const int* pBlock = aArray.Data();
  aArray.Clear();
  EXPECT_EQ(aArray.Entries(), 0u);
  aArray.Add(5);
  EXPECT_EQ(aArray.Data(), pBlock) << "clearing keeps the block";
}

TEST(Vector, LinesMeetWhereTheyCrossAndParallelOnesDoNot) {
  double t1 = 0, t2 = 0;
  const ClVector oMeet = ClVector::Intersection({0, 0}, {1, 1}, {4, 0}, {0, 2}, t1, t2);
  EXPECT_TRUE(oMeet.IsNear({4, 4}));
  EXPECT_DOUBLE_EQ(t1, 4);
  EXPECT_DOUBLE_EQ(t2, 2);
  EXPECT_TRUE(ClVector::Intersection({0, 0}, {1, 1}, {4, 0}, {2, 2}, t1, t2).IsNear({0, 0}));
  EXPECT_EQ(t1, 0);
  EXPECT_TRUE(std::isinf(ClVector::IntersectionINF({0, 0}, {1, 1}, {4, 0}, {2, 2}, t1, t2).x));
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
