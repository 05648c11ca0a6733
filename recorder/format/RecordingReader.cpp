// Blocks are found from header to header; calls are taken apart at once, data only where it lies is kept.
#include "format/RecordingReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zstd.h>

#include <cerrno>
#include <cstring>

#include "format/BlockWriter.h"
#include "format/Functions.h"

namespace Recording {
namespace {

// A call has a few hundred bytes; an upper limit keeps made-up files from taking memory.
constexpr uint32_t cnLargestCall = 65536;
constexpr uint32_t cnLargestFacts = 1048576;

StField ParseField(const uint8_t* p, size_t nBytes) {
  StField oField;
  oField.nArgument = p[0];
  oField.eDirection = static_cast<EDirection>(p[1]);
  oField.eType = static_cast<EFieldType>(p[2]);
  p += cnFieldHeader;
  const size_t nWanted = oField.eType == eFieldNull                                   ? 0
                         : oField.eType == eFieldNumber || oField.eType == eFieldReal ? 8
                         : oField.eType == eFieldData                                 ? 16
                                                                                      : nBytes;
  if (oField.eDirection > eGot || oField.eType > eFieldData || nBytes != nWanted)
    throw ClRecordingError("a field of a call is none");
  switch (oField.eType) {
    case eFieldNull:
      break;
    case eFieldNumber:
      oField.nNumber = static_cast<int64_t>(Load(p, 8));
      break;
    case eFieldReal: {
      const uint64_t n = Load(p, 8);
      std::memcpy(&oField.dReal, &n, sizeof n);
      break;
    }
    case eFieldText:
    case eFieldBytes:
      oField.sBytes.assign(reinterpret_cast<const char*>(p), nBytes);
      break;
    case eFieldData:
      oField.nBlock = static_cast<uint32_t>(Load(p, 4));
      oField.nDataBytes = Load(p + 8, 8);
      break;
  }
  return oField;
}

}  // namespace

const StField* StCall::Find(size_t nArgument, EDirection eDirection) const {
  for (const StField& oField : aFields)
    if (oField.nArgument == nArgument && oField.eDirection == eDirection) return &oField;
  return nullptr;
}

int64_t StCall::Number(size_t nArgument, EDirection eDirection, int64_t nOtherwise) const {
  const StField* pField = Find(nArgument, eDirection);
  return pField != nullptr && pField->eType == eFieldNumber ? pField->nNumber : nOtherwise;
}

StCall ParseCall(const std::vector<uint8_t>& aContent) {
  if (aContent.size() < cnCallHeader) throw ClRecordingError("a call is too short");
  const uint8_t* p = aContent.data();
  StCall oCall;
  oCall.nFunction = static_cast<uint16_t>(Load(p, 2));
  oCall.nFlags = static_cast<uint16_t>(Load(p + 2, 2));
  oCall.nThread = static_cast<uint32_t>(Load(p + 4, 4));
  oCall.nDevice = static_cast<uint32_t>(Load(p + 8, 4));
  oCall.nBegin = static_cast<int64_t>(Load(p + 16, 8));
  oCall.nEnd = static_cast<int64_t>(Load(p + 24, 8));
  oCall.nResult = static_cast<int64_t>(Load(p + 32, 8));
  size_t nOffset = cnCallHeader;
  for (uint64_t n = Load(p + 12, 4); n > 0; --n) {
    const size_t nLeft = aContent.size() - nOffset;
    if (nLeft < cnFieldHeader) throw ClRecordingError("a call has fewer fields than it says");
    const uint64_t nBytes = Load(p + nOffset + 4, 4);
    if (nBytes > nLeft - cnFieldHeader) throw ClRecordingError("a field goes beyond its call");
    oCall.aFields.push_back(ParseField(p + nOffset, static_cast<size_t>(nBytes)));
    nOffset += cnFieldHeader + static_cast<size_t>(nBytes);
  }
  return oCall;
}

ClRecording::ClRecording(const std::string& sFile) : m_sFile(sFile) {
  m_nFile = open(sFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (m_nFile < 0) throw ClRecordingError("\"" + sFile + "\" cannot be read: " + std::strerror(errno));
  try {
    struct stat oStat {};
    if (fstat(m_nFile, &oStat) != 0 || !S_ISREG(oStat.st_mode))
      throw ClRecordingError("\"" + sFile + "\" is no regular file");
    m_nFileBytes = static_cast<uint64_t>(oStat.st_size);
    ReadHeader();
    ReadBlocks();
  } catch (...) {
    close(m_nFile);
    throw;
  }
}

ClRecording::~ClRecording() {
  close(m_nFile);
}

void ClRecording::ReadHeader() {
  uint8_t aHeader[cnFileHeader];
  if (m_nFileBytes < sizeof aHeader) throw ClRecordingError("\"" + m_sFile + "\" is no recording: too short");
  Read(0, aHeader, sizeof aHeader);
  if (std::memcmp(aHeader, cacFileMark, sizeof cacFileMark) != 0)
    throw ClRecordingError("\"" + m_sFile + "\" is no recording");
  if (Load(aHeader + 28, 4) != Checksum(aHeader, 28))
    throw ClRecordingError("\"" + m_sFile + "\": the header of the recording is damaged");
  if (Load(aHeader + 8, 2) != cnVersion)
    throw ClRecordingError("\"" + m_sFile + "\" is a recording of version " +
                           std::to_string(Load(aHeader + 8, 2)) + "; this program reads version " +
                           std::to_string(cnVersion));
  m_nFlags = static_cast<uint16_t>(Load(aHeader + 10, 2));
  m_nStart = static_cast<int64_t>(Load(aHeader + 16, 8));
}

void ClRecording::ReadBlocks() {
  for (uint64_t nOffset = cnFileHeader; nOffset < m_nFileBytes;) {
    StBlock oBlock;
    try {
      if (m_bWhole) throw ClRecordingError("there is more after the end");
      if (!ReadBlockHeader(nOffset, oBlock)) throw ClRecordingError("the header of the block is damaged");
      Take(oBlock);
    } catch (const ClRecordingError& oError) {
      m_sDamage = "block " + std::to_string(m_aBlocks.size()) + " at byte " + std::to_string(nOffset) + ": " +
                  oError.what();
      return;
    }
    m_aBlocks.push_back(oBlock);
    nOffset = oBlock.nOffset + oBlock.nStored;
  }
}

bool ClRecording::ReadBlockHeader(uint64_t nOffset, StBlock& oBlock) {
  uint8_t aHeader[cnBlockHeader];
  if (m_nFileBytes - nOffset < sizeof aHeader) throw ClRecordingError("the file ends within a block");
  Read(nOffset, aHeader, sizeof aHeader);
  if (std::memcmp(aHeader, cacBlockMark, sizeof cacBlockMark) != 0 ||
      Load(aHeader + 24, 4) != Checksum(aHeader, 24))
    return false;
  oBlock.nOffset = nOffset + cnBlockHeader;
  oBlock.eKind = static_cast<EBlock>(aHeader[4]);
  oBlock.nCoding = aHeader[5];
  oBlock.nStored = static_cast<uint32_t>(Load(aHeader + 8, 4));
  oBlock.nContent = static_cast<uint32_t>(Load(aHeader + 12, 4));
  oBlock.nChecksum = static_cast<uint32_t>(Load(aHeader + 20, 4));
  if (oBlock.nStored > m_nFileBytes - oBlock.nOffset) throw ClRecordingError("the file ends within a block");
  const bool bPlain = oBlock.nCoding == eCodingPlain;
  return Load(aHeader + 16, 4) == m_aBlocks.size() && oBlock.nCoding <= eCodingZstd &&
         oBlock.nContent <= cnLargestContent && (!bPlain || oBlock.nStored == oBlock.nContent) &&
         oBlock.nStored <= uint64_t{oBlock.nContent} + cnLargestOverhead;
}

void ClRecording::Take(const StBlock& oBlock) {
  const auto Limited = [&](uint32_t nLargest) {
    if (oBlock.nContent > nLargest)
      throw ClRecordingError("a block of this kind has " + std::to_string(oBlock.nContent) + " bytes");
    return Content(oBlock);
  };
  switch (oBlock.eKind) {
    case eBlockFacts:
      return TakeFacts(Limited(cnLargestFacts));
    case eBlockCall:
      return TakeCall(Limited(cnLargestCall));
    case eBlockLoss: {
      const std::vector<uint8_t> aLoss = Limited(cnLargestCall);
      if (aLoss.size() < 24) throw ClRecordingError("a loss is too short");
      m_oLoss.nCalls += Load(aLoss.data(), 8);
      m_oLoss.nData += Load(aLoss.data() + 8, 8);
      m_oLoss.nBytes += Load(aLoss.data() + 16, 8);
      return;
    }
    case eBlockEnd:
      if (Limited(cnLargestCall).size() < 32) throw ClRecordingError("the end is too short");
      m_bWhole = true;
      return;
    case eBlockData:
      return;
  }
}

void ClRecording::TakeFacts(const std::vector<uint8_t>& aContent) {
  const std::string sFacts(aContent.begin(), aContent.end());
  for (size_t nBegin = 0; nBegin < sFacts.size();) {
    const size_t nEnd = std::min(sFacts.find('\n', nBegin), sFacts.size());
    const std::string sLine = sFacts.substr(nBegin, nEnd - nBegin);
    const size_t nEquals = sLine.find('=');
    if (nEquals != std::string::npos) m_mapFacts[sLine.substr(0, nEquals)] = sLine.substr(nEquals + 1);
    nBegin = nEnd + 1;
  }
}

void ClRecording::TakeCall(const std::vector<uint8_t>& aContent) {
  StCall oCall = ParseCall(aContent);
  for (const StField& oField : oCall.aFields) {
    if (oField.eType != eFieldData || oField.nBlock == cnDroppedData) continue;
    if (oField.nBlock >= m_aBlocks.size() || m_aBlocks[oField.nBlock].eKind != eBlockData ||
        m_aBlocks[oField.nBlock].nContent != oField.nDataBytes)
      throw ClRecordingError("a call names data that is not there");
  }
  if (FunctionName(oCall.nFunction) == nullptr) return;
  m_aCalls.push_back(std::move(oCall));
}

void ClRecording::Read(uint64_t nOffset, void* pData, size_t nBytes) const {
  auto* p = static_cast<uint8_t*>(pData);
  while (nBytes > 0) {
    const ssize_t nRead = pread(m_nFile, p, nBytes, static_cast<off_t>(nOffset));
    if (nRead < 0 && errno == EINTR) continue;
    if (nRead <= 0) throw ClRecordingError("\"" + m_sFile + "\" cannot be read on");
    p += nRead;
    nOffset += static_cast<uint64_t>(nRead);
    nBytes -= static_cast<size_t>(nRead);
  }
}

std::vector<uint8_t> ClRecording::Content(const StBlock& oBlock) const {
  std::vector<uint8_t> aStored(oBlock.nStored);
  Read(oBlock.nOffset, aStored.data(), aStored.size());
  if (Checksum(aStored.data(), aStored.size()) != oBlock.nChecksum)
    throw ClRecordingError("the bytes of the block are damaged");
  if (oBlock.nCoding == eCodingPlain) return aStored;
  // The frame says how much it holds: what was made up is found before its room is taken.
  if (ZSTD_getFrameContentSize(aStored.data(), aStored.size()) != oBlock.nContent)
    throw ClRecordingError("the block has another size than it says");
  std::vector<uint8_t> aContent(oBlock.nContent);
  const size_t nBytes = ZSTD_decompress(aContent.data(), aContent.size(), aStored.data(), aStored.size());
  if (ZSTD_isError(nBytes) || nBytes != aContent.size())
    throw ClRecordingError("the block cannot be decompressed");
  return aContent;
}

std::vector<uint8_t> ClRecording::Data(uint32_t nBlock) const {
  if (nBlock >= m_aBlocks.size() || m_aBlocks[nBlock].eKind != eBlockData)
    throw ClRecordingError("the data was dropped when it was recorded");
  return Content(m_aBlocks[nBlock]);
}

}  // namespace Recording
