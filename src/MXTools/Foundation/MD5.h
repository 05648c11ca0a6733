// The MD5 message digest.
#pragma once

#include <cstddef>
#include <cstdint>

/// R. Rivest, "The MD5 Message-Digest Algorithm", RFC 1321. It distinguishes data and is no protection
/// against forgery.
///
/// Threads  reentrant.
/// Errors   those of ClFileStream for the forms with files.
class ClMD5 {
 public:
  struct MD5_CTX {
    uint32_t state[4];
    uint32_t count[2];  ///< length in bits, low word first
    unsigned char buffer[64];
  };
  static constexpr unsigned int cnDigestSize = 16;

  static void Init(MD5_CTX* pContext);
  static void Update(MD5_CTX* pContext, const unsigned char* pData, unsigned int nLength);
  static void Final(unsigned char* pDigest, MD5_CTX* pContext);

  /// These give the digest of a block, or of a file's bytes, or write the latter to a file of its own.
  static void Make(const unsigned char* pData, unsigned int nLength, unsigned char* pDigest);
  static void Make(const char* szFile, unsigned char* pDigest);
  static void Make(const char* szFile, const char* szDigestFile);

 private:
  static void MD5Transform(uint32_t aState[4], const unsigned char* pBlock);
  static void Encode(unsigned char* pOut, const uint32_t* pIn, unsigned int nBytes);
  static void Decode(uint32_t* pOut, const unsigned char* pIn, unsigned int nBytes);
  static void MD5_memcpy(unsigned char* pOut, const unsigned char* pIn, size_t nBytes);
  static void MD5_memset(unsigned char* pOut, int nValue, size_t nBytes);
};
