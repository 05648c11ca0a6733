// The transformation of RFC 1321, section 3, with its table of 64 sines and its shifts.
#include "MXTools/MD5.h"

#include <cstring>

#include "MXTools/FileStream.h"
#include "MXTools/NewFile.h"

namespace {

/// trunc(2^32 * |sin(i + 1)|), as the RFC lists it.
constexpr uint32_t caSines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr unsigned int caShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

uint32_t RotateLeft(uint32_t nValue, unsigned int nBits) {
  return (nValue << nBits) | (nValue >> (32 - nBits));
}

/// The function of the round and the word of the block that the step takes.
uint32_t Mix(unsigned int nRound, unsigned int nStep, uint32_t b, uint32_t c, uint32_t d,
             unsigned int& rnWord) {
  switch (nRound) {
    case 0:
      rnWord = nStep;
      return (b & c) | (~b & d);
    case 1:
      rnWord = (5 * nStep + 1) % 16;
      return (b & d) | (c & ~d);
    case 2:
      rnWord = (3 * nStep + 5) % 16;
      return b ^ c ^ d;
    default:
      rnWord = (7 * nStep) % 16;
      return c ^ (b | ~d);
  }
}

}  // namespace

void ClMD5::Init(MD5_CTX* pContext) {
  pContext->count[0] = pContext->count[1] = 0;
  pContext->state[0] = 0x67452301;
  pContext->state[1] = 0xefcdab89;
  pContext->state[2] = 0x98badcfe;
  pContext->state[3] = 0x10325476;
}

void ClMD5::Update(MD5_CTX* pContext, const unsigned char* pData, unsigned int nLength) {
  if (nLength == 0) return;
  unsigned int nIndex = (pContext->count[0] >> 3) & 63;
  const uint64_t nBits = ((static_cast<uint64_t>(pContext->count[1]) << 32) | pContext->count[0]) +
                         static_cast<uint64_t>(nLength) * 8;
  pContext->count[0] = static_cast<uint32_t>(nBits);
  pContext->count[1] = static_cast<uint32_t>(nBits >> 32);

  const unsigned int nRoom = 64 - nIndex;
  unsigned int nDone = 0;
  if (nLength >= nRoom) {
    MD5_memcpy(pContext->buffer + nIndex, pData, nRoom);
    MD5Transform(pContext->state, pContext->buffer);
    for (nDone = nRoom; nLength - nDone >= 64; nDone += 64) MD5Transform(pContext->state, pData + nDone);
    nIndex = 0;
  }
  MD5_memcpy(pContext->buffer + nIndex, pData + nDone, nLength - nDone);
}

void ClMD5::Final(unsigned char* pDigest, MD5_CTX* pContext) {
  static const unsigned char aPadding[64] = {0x80};
  unsigned char aBits[8];
  Encode(aBits, pContext->count, 8);
  const unsigned int nIndex = (pContext->count[0] >> 3) & 63;
  Update(pContext, aPadding, nIndex < 56 ? 56 - nIndex : 120 - nIndex);
  Update(pContext, aBits, 8);
  Encode(pDigest, pContext->state, cnDigestSize);
  MD5_memset(reinterpret_cast<unsigned char*>(pContext), 0, sizeof(*pContext));
}

void ClMD5::MD5Transform(uint32_t aState[4], const unsigned char* pBlock) {
  uint32_t aWords[16];
  Decode(aWords, pBlock, 64);
  uint32_t a = aState[0];
  uint32_t b = aState[1];
  uint32_t c = aState[2];
  uint32_t d = aState[3];
  for (unsigned int nStep = 0; nStep < 64; ++nStep) {
    const unsigned int nRound = nStep / 16;
    unsigned int nWord = 0;
    const uint32_t nMixed = Mix(nRound, nStep, b, c, d, nWord);
    const uint32_t nSum = a + nMixed + aWords[nWord] + caSines[nStep];
    a = d;
    d = c;
    c = b;
    b += RotateLeft(nSum, caShifts[nRound][nStep % 4]);
  }
  aState[0] += a;
  aState[1] += b;
  aState[2] += c;
  aState[3] += d;
}

void ClMD5::Encode(unsigned char* pOut, const uint32_t* pIn, unsigned int nBytes) {
  for (unsigned int n = 0; n < nBytes; ++n) pOut[n] = static_cast<unsigned char>(pIn[n / 4] >> (8 * (n % 4)));
}

void ClMD5::Decode(uint32_t* pOut, const unsigned char* pIn, unsigned int nBytes) {
  for (unsigned int n = 0; n < nBytes; n += 4) {
    pOut[n / 4] = static_cast<uint32_t>(pIn[n]) | static_cast<uint32_t>(pIn[n + 1]) << 8 |
                  static_cast<uint32_t>(pIn[n + 2]) << 16 | static_cast<uint32_t>(pIn[n + 3]) << 24;
  }
}

void ClMD5::MD5_memcpy(unsigned char* pOut, const unsigned char* pIn, size_t nBytes) {
  if (nBytes != 0) std::memcpy(pOut, pIn, nBytes);
}

void ClMD5::MD5_memset(unsigned char* pOut, int nValue, size_t nBytes) {
  std::memset(pOut, nValue, nBytes);
}

void ClMD5::Make(const unsigned char* pData, unsigned int nLength, unsigned char* pDigest) {
  MD5_CTX oContext;
  Init(&oContext);
  Update(&oContext, pData, nLength);
  Final(pDigest, &oContext);
}

void ClMD5::Make(const char* szFile, unsigned char* pDigest) {
  ClFileStream oStream(szFile, "rb");
  MD5_CTX oContext;
  Init(&oContext);
  unsigned char aBlock[1024];
  for (unsigned int nRead = oStream.Read(aBlock, sizeof(aBlock)); nRead != 0;
       nRead = oStream.Read(aBlock, sizeof(aBlock)))
    Update(&oContext, aBlock, nRead);
  Final(pDigest, &oContext);
}

void ClMD5::Make(const char* szFile, const char* szDigestFile) {
  unsigned char aDigest[cnDigestSize];
  Make(szFile, aDigest);
  ClNewFile oFile(szDigestFile);
  ClFileStream oStream(oFile.WrittenName(), "wb");
  oStream.m_bFailureFlag = true;
  oStream.Write(aDigest, cnDigestSize);
  oStream.Close();
  oFile.Keep();
}
