// Fields of a call, put one after the other into the block's bytes.
#include "format/CallRecord.h"

#include <algorithm>

namespace Recording {
namespace {

/// What is longer becomes an attachment: all arguments of a function fit into the record, whatever an
/// application gives.
constexpr size_t cnLongestInline = 1024;

}  // namespace

uint8_t* StoreUtf8(uint8_t* p, uint32_t nCharacter) {
  if (nCharacter > 0x10FFFF || (nCharacter >= 0xD800 && nCharacter < 0xE000)) nCharacter = 0xFFFD;
  if (nCharacter < 0x80) {
    *p++ = static_cast<uint8_t>(nCharacter);
    return p;
  }
  const int nMore = nCharacter < 0x800 ? 1 : nCharacter < 0x10000 ? 2 : 3;
  *p++ = static_cast<uint8_t>((0xFF00 >> (nMore + 1) & 0xFF) | nCharacter >> (6 * nMore));
  for (int i = nMore - 1; i >= 0; --i) *p++ = static_cast<uint8_t>(0x80 | (nCharacter >> (6 * i) & 0x3F));
  return p;
}

uint8_t* ClCallRecord::AddField(size_t nArgument, EDirection eDirection, EFieldType eType, size_t nBytes) {
  uint8_t* p = m_aBytes.data() + m_nSize;
  *p++ = static_cast<uint8_t>(nArgument);
  *p++ = eDirection;
  *p++ = eType;
  *p++ = 0;
  p = Store(p, nBytes, 4);
  m_nSize += cnFieldHeader + nBytes;
  ++m_nFields;
  return p;
}

void ClCallRecord::AddNull(size_t nArgument, EDirection eDirection) {
  AddField(nArgument, eDirection, eFieldNull, 0);
}

void ClCallRecord::AddNumber(size_t nArgument, EDirection eDirection, int64_t n) {
  Store(AddField(nArgument, eDirection, eFieldNumber, 8), static_cast<uint64_t>(n), 8);
}

void ClCallRecord::AddReal(size_t nArgument, EDirection eDirection, double d) {
  uint64_t n;
  std::memcpy(&n, &d, sizeof n);
  Store(AddField(nArgument, eDirection, eFieldReal, 8), n, 8);
}

void ClCallRecord::AddText(size_t nArgument, EDirection eDirection, const char* szText) {
  if (szText == nullptr) return AddNull(nArgument, eDirection);
  const size_t nBytes = std::strlen(szText);
  if (nBytes > cnLongestInline) return AddBytes(nArgument, eDirection, szText, nBytes);
  std::memcpy(AddField(nArgument, eDirection, eFieldText, nBytes), szText, nBytes);
}

void ClCallRecord::AddText(size_t nArgument, EDirection eDirection, const wchar_t* wszText) {
  if (wszText == nullptr) return AddNull(nArgument, eDirection);
  std::array<uint8_t, cnLongestInline + 4> aText;
  uint8_t* p = aText.data();
  // A longer wide text is cut: names and values of properties are short.
  for (; *wszText != 0 && p < aText.data() + cnLongestInline; ++wszText)
    p = StoreUtf8(p, static_cast<uint32_t>(*wszText));
  const size_t nBytes = static_cast<size_t>(p - aText.data());
  std::memcpy(AddField(nArgument, eDirection, eFieldText, nBytes), aText.data(), nBytes);
}

void ClCallRecord::AddBytes(size_t nArgument, EDirection eDirection, const void* pData, size_t nBytes,
                            StAttachment::EKind eKind) {
  if (pData == nullptr) return AddNull(nArgument, eDirection);
  if (nBytes > cnLongestInline || eKind != StAttachment::ePlain)
    return Attach(nArgument, eDirection, {pData, nBytes, 0, eKind, 0, 0});
  std::memcpy(AddField(nArgument, eDirection, eFieldBytes, nBytes), pData, nBytes);
}

void ClCallRecord::AddFrames(size_t nArgument, EDirection eDirection, const void* pData, uint64_t nBytes,
                             uint32_t nWidth, uint32_t nHeight) {
  Attach(nArgument, eDirection, {pData, nBytes, 0, StAttachment::eFrames, nWidth, nHeight});
}

void ClCallRecord::Attach(size_t nArgument, EDirection eDirection, const StAttachment& oAttachment) {
  uint8_t* p = Store(AddField(nArgument, eDirection, eFieldData, 16), cnDroppedData, 4);
  Store(Store(p, 0, 4), oAttachment.nBytes, 8);
  m_aAttachments[m_nAttachments] = oAttachment;
  m_aAttachments[m_nAttachments++].nField = m_nSize - 16;
}

void ClCallRecord::SetHead(uint32_t nThread, uint32_t nDevice, int64_t nBegin, int64_t nEnd,
                           int64_t nResult) {
  m_nThread = nThread;
  m_nDevice = nDevice;
  m_nBegin = nBegin;
  m_nEnd = nEnd;
  m_nResult = nResult;
}

const uint8_t* ClCallRecord::Bytes() {
  uint8_t* p = Store(m_aBytes.data(), m_nFunction, 2);
  p = Store(p, m_nFlags, 2);
  p = Store(p, m_nThread, 4);
  p = Store(p, m_nDevice, 4);
  p = Store(p, m_nFields, 4);
  p = Store(p, static_cast<uint64_t>(m_nBegin), 8);
  p = Store(p, static_cast<uint64_t>(m_nEnd), 8);
  Store(p, static_cast<uint64_t>(m_nResult), 8);
  return m_aBytes.data();
}

std::string ClCallRecord::Fields() const {
  return std::string(reinterpret_cast<const char*>(m_aBytes.data()) + cnCallHeader, m_nSize - cnCallHeader);
}

}  // namespace Recording
