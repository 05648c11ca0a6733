// One call on its way into a recording: its fields, in the form of the file, without an allocation.
#pragma once

#include <array>
#include <string>

#include "format/Layout.h"

namespace Recording {

/// Bytes that are stored as a block of their own, and the field that names it.
struct StAttachment {
  enum EKind : uint8_t { ePlain, eCalibration, eFrames };
  const void* pData = nullptr;
  uint64_t nBytes = 0;
  size_t nField = 0;  ///< position of the field's value in the call
  EKind eKind = ePlain;
  uint32_t nWidth = 0;  ///< of frames
  uint32_t nHeight = 0;
};

/// Fields are added in the order of the arguments. What is too long becomes an attachment, which points to
/// the caller's bytes.
///
/// Threads  thread-bound.
class ClCallRecord {
 public:
  static constexpr size_t cnMostAttachments = 4;

  explicit ClCallRecord(uint16_t nFunction) : m_nFunction(nFunction) {}
  ClCallRecord(const ClCallRecord&) = delete;
  ClCallRecord& operator=(const ClCallRecord&) = delete;

  void AddNull(size_t nArgument, EDirection eDirection);
  void AddNumber(size_t nArgument, EDirection eDirection, int64_t n);
  void AddReal(size_t nArgument, EDirection eDirection, double d);
  void AddText(size_t nArgument, EDirection eDirection, const char* szText);
  void AddText(size_t nArgument, EDirection eDirection, const wchar_t* wszText);
  void AddBytes(size_t nArgument, EDirection eDirection, const void* pData, size_t nBytes,
                StAttachment::EKind eKind = StAttachment::ePlain);
  void AddFrames(size_t nArgument, EDirection eDirection, const void* pData, uint64_t nBytes, uint32_t nWidth,
                 uint32_t nHeight);

  /// Completes the call's head; the fields may still be added.
  void SetHead(uint32_t nThread, uint32_t nDevice, int64_t nBegin, int64_t nEnd, int64_t nResult);
  void SetDataDropped() { m_nFlags |= eCallDataDropped; }

  uint16_t Function() const { return m_nFunction; }
  /// The call as it is stored.
  const uint8_t* Bytes();
  size_t Size() const { return m_nSize; }
  const StAttachment* Attachments() const { return m_aAttachments.data(); }
  size_t AttachmentCount() const { return m_nAttachments; }
  /// The fields so far, which a player compares.
  std::string Fields() const;

 private:
  uint8_t* AddField(size_t nArgument, EDirection eDirection, EFieldType eType, size_t nBytes);
  void Attach(size_t nArgument, EDirection eDirection, const StAttachment& oAttachment);

  uint16_t m_nFunction;
  uint16_t m_nFlags = 0;
  uint32_t m_nFields = 0;
  uint32_t m_nThread = 0;
  uint32_t m_nDevice = 0;
  int64_t m_nBegin = 0;
  int64_t m_nEnd = 0;
  int64_t m_nResult = 0;
  size_t m_nSize = cnCallHeader;
  size_t m_nAttachments = 0;
  std::array<StAttachment, cnMostAttachments> m_aAttachments;
  std::array<uint8_t, 8192> m_aBytes;
};

/// Appends a character as UTF-8 at p, which has room for four bytes; returns the position after it.
uint8_t* StoreUtf8(uint8_t* p, uint32_t nCharacter);

}  // namespace Recording
