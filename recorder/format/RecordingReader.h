// A recording as it is read: its calls, and its data on demand.
#pragma once

#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "format/Layout.h"

namespace Recording {

/// Why a file is no recording, or cannot be read further.
class ClRecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct StField {
  uint8_t nArgument = 0;
  EDirection eDirection = eGiven;
  EFieldType eType = eFieldNull;
  int64_t nNumber = 0;      ///< of eFieldNumber
  double dReal = 0.0;       ///< of eFieldReal
  std::string sBytes;       ///< of eFieldText and eFieldBytes
  uint32_t nBlock = 0;      ///< of eFieldData; cnDroppedData when it was dropped
  uint64_t nDataBytes = 0;  ///< likewise
};

struct StCall {
  uint16_t nFunction = 0;
  uint16_t nFlags = 0;
  uint32_t nThread = 0;
  uint32_t nDevice = 0;
  int64_t nBegin = 0;
  int64_t nEnd = 0;
  int64_t nResult = 0;
  std::vector<StField> aFields;

  /// NULL when the call has no such field.
  const StField* Find(size_t nArgument, EDirection eDirection) const;
  /// A number among the fields; nOtherwise without it.
  int64_t Number(size_t nArgument, EDirection eDirection, int64_t nOtherwise) const;
};

struct StLoss {
  uint64_t nCalls = 0;
  uint64_t nData = 0;
  uint64_t nBytes = 0;
};

/// Reads all calls at once. What follows a damaged block is not there; a damaged piece of data shows when it
/// is read.
///
/// Ownership  the file stays open, and must not be changed.
/// Threads    Data is thread-safe, all else is constant.
/// Errors     ClRecordingError, with the name of the file, when it cannot be opened or its header is none.
class ClRecording {
 public:
  explicit ClRecording(const std::string& sFile);
  ClRecording(const ClRecording&) = delete;
  ClRecording& operator=(const ClRecording&) = delete;
  ~ClRecording();

  bool IsSimulated() const { return (m_nFlags & eFileSimulated) != 0; }
  bool IsBlurred() const { return (m_nFlags & eFileBlurred) != 0; }
  int64_t Start() const { return m_nStart; }
  const std::vector<StCall>& Calls() const { return m_aCalls; }
  const std::map<std::string, std::string>& Facts() const { return m_mapFacts; }
  /// All that was dropped.
  const StLoss& Loss() const { return m_oLoss; }
  /// The block with which a recording ends is there.
  bool IsWhole() const { return m_bWhole; }
  /// Why the reading stopped before the end of the file; empty when it did not.
  const std::string& Damage() const { return m_sDamage; }
  uint64_t FileBytes() const { return m_nFileBytes; }
  uint64_t BlockCount() const { return m_aBlocks.size(); }

  /// The bytes of a piece of data.
  ///
  /// Errors  ClRecordingError when there is no such data, it was dropped, or it is damaged.
  std::vector<uint8_t> Data(uint32_t nBlock) const;

 private:
  struct StBlock {
    uint64_t nOffset = 0;  // of the stored bytes
    EBlock eKind = eBlockData;
    uint8_t nCoding = 0;
    uint32_t nStored = 0;
    uint32_t nContent = 0;
    uint32_t nChecksum = 0;
  };

  void ReadHeader();
  void ReadBlocks();
  bool ReadBlockHeader(uint64_t nOffset, StBlock& oBlock);
  void Take(const StBlock& oBlock);
  void TakeFacts(const std::vector<uint8_t>& aContent);
  void TakeCall(const std::vector<uint8_t>& aContent);
  void Read(uint64_t nOffset, void* pData, size_t nBytes) const;
  std::vector<uint8_t> Content(const StBlock& oBlock) const;

  std::string m_sFile;
  int m_nFile = -1;
  uint64_t m_nFileBytes = 0;
  uint16_t m_nFlags = 0;
  int64_t m_nStart = 0;
  bool m_bWhole = false;
  std::string m_sDamage;
  std::vector<StBlock> m_aBlocks;
  std::vector<StCall> m_aCalls;
  std::map<std::string, std::string> m_mapFacts;
  StLoss m_oLoss;
};

/// Takes a call apart.
///
/// Errors  ClRecordingError when it isn't one.
StCall ParseCall(const std::vector<uint8_t>& aContent);

}  // namespace Recording
