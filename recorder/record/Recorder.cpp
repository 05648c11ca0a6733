// From the application's threads through the queue into the file.
#include "record/Recorder.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace Recording {
namespace {

int64_t SteadyNow() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

int64_t WallNow() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

bool IsSet(const char* szVariable) {
  const char* szValue = std::getenv(szVariable);
  return szValue != nullptr && szValue[0] != '\0' && std::strcmp(szValue, "0") != 0;
}

/// Opens a file for fingerprints: nobody but its owner reads it. One that another process records into is
/// left alone.
int OpenFile(const std::string& sFile) {
  const int nFile = open(sFile.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, 0600);
  if (nFile < 0) {
    std::fprintf(stderr, "vt40 recorder: \"%s\" cannot be written: %s\n", sFile.c_str(),
                 std::strerror(errno));
    return -1;
  }
  if (flock(nFile, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    std::fprintf(stderr, "vt40 recorder: another process records into \"%s\"\n", sFile.c_str());
    close(nFile);
    return -1;
  }
  // A file that was there may have been readable to others.
  struct stat oStat {};
  if (fstat(nFile, &oStat) == 0 && S_ISREG(oStat.st_mode) && fchmod(nFile, 0600) != 0) {
    std::fprintf(stderr, "vt40 recorder: \"%s\" stays readable to others: %s\n", sFile.c_str(),
                 std::strerror(errno));
  }
  // What is no regular file has no length to take away.
  if (ftruncate(nFile, 0) != 0 && errno != EINVAL) {
    std::fprintf(stderr, "vt40 recorder: \"%s\" cannot be emptied: %s\n", sFile.c_str(),
                 std::strerror(errno));
    close(nFile);
    return -1;
  }
  return nFile;
}

/// Signals are the application's: its handlers do not run in the writing thread, and a file that may not grow
/// is an error.
class ClSignalsBlocked {
 public:
  ClSignalsBlocked() {
    sigset_t oAll;
    sigfillset(&oAll);
    pthread_sigmask(SIG_SETMASK, &oAll, &m_oBefore);
  }
  ~ClSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_oBefore, nullptr); }
  ClSignalsBlocked(const ClSignalsBlocked&) = delete;
  ClSignalsBlocked& operator=(const ClSignalsBlocked&) = delete;

 private:
  sigset_t m_oBefore;
};

}  // namespace

StRecorderSettings StRecorderSettings::OfEnvironment() {
  StRecorderSettings oSettings;
  const char* szFile = std::getenv("KELVARIN_VT40_RECORD_FILE");
  if (szFile != nullptr) oSettings.sFile = szFile;
  oSettings.bBlur = IsSet("KELVARIN_VT40_RECORD_BLUR");
  oSettings.bWait = IsSet("KELVARIN_VT40_RECORD_WAIT");
  const char* szQueue = std::getenv("KELVARIN_VT40_RECORD_QUEUE");
  const long nMegabytes = szQueue != nullptr ? std::strtol(szQueue, nullptr, 10) : 0;
  if (nMegabytes >= 1 && nMegabytes <= 1024) oSettings.nQueueBytes = static_cast<size_t>(nMegabytes) << 20;
  return oSettings;
}

/// What stands before a call in the queue. Its call follows, then the bytes of its attachments.
struct ClRecorder::StEntryHead {
  size_t nCall = 0;  // bytes of the call; 0: the bytes are facts
  size_t nAttachments = 0;
  StAttachment aAttachments[ClCallRecord::cnMostAttachments];
};

/// The calibration blocks that are in the file.
struct ClRecorder::StCalibration {
  struct StKnown {
    uint32_t nBlock;
    std::vector<uint8_t> aBytes;
  };
  std::vector<StKnown> aKnown;
};

ClRecorder::ClRecorder(const StRecorderSettings& oSettings, bool bSimulated)
    : m_oSettings(oSettings), m_nSteadyStart(SteadyNow()), m_pCalibration(std::make_unique<StCalibration>()) {
  try {
    Open(oSettings, bSimulated);
  } catch (const std::exception& oError) {
    std::fprintf(stderr, "vt40 recorder: nothing is recorded: %s\n", oError.what());
  }
}

ClRecorder::~ClRecorder() {
  Finish();
}

void ClRecorder::Open(const StRecorderSettings& oSettings, bool bSimulated) {
  const int nFile = OpenFile(oSettings.sFile);
  if (nFile < 0) return;
  const ClSignalsBlocked oBlocked;
  const int nFlags = (bSimulated ? eFileSimulated : 0) | (oSettings.bBlur ? eFileBlurred : 0);
  m_pWriter = std::make_unique<ClBlockWriter>(nFile, static_cast<uint16_t>(nFlags), WallNow());
  m_pQueue = std::make_unique<ClCallQueue>(oSettings.nQueueBytes);
  m_oThread = std::thread(&ClRecorder::Work, this);
  m_bOpen = true;
}

int64_t ClRecorder::Now() const {
  return SteadyNow() - m_nSteadyStart;
}

uint32_t ClRecorder::Thread() {
  static thread_local uint32_t s_nThread = 0;
  if (s_nThread == 0) s_nThread = ++m_nThreads;
  return s_nThread;
}

void ClRecorder::Record(ClCallRecord& oCall) {
  if (!m_bOpen) return;
  uint64_t nData = 0;
  for (size_t i = 0; i < oCall.AttachmentCount(); ++i) nData += oCall.Attachments()[i].nBytes;
  const size_t nHead = sizeof(StEntryHead) + oCall.Size();
  const bool bFits = nData < cnLargestContent;
  ClCallQueue::StEntry* pEntry =
      bFits ? m_pQueue->Reserve(nHead + static_cast<size_t>(nData), m_oSettings.bWait) : nullptr;
  bool bData = pEntry != nullptr;
  if (!bData && oCall.AttachmentCount() > 0) {
    m_nLostData += oCall.AttachmentCount();
    m_nLostBytes += nData;
    oCall.SetDataDropped();
    pEntry = m_pQueue->Reserve(nHead, m_oSettings.bWait);
  }
  if (pEntry == nullptr) {
    ++m_nLostCalls;
    return;
  }
  StEntryHead oHead;
  oHead.nCall = oCall.Size();
  oHead.nAttachments = bData ? oCall.AttachmentCount() : 0;
  std::copy_n(oCall.Attachments(), oHead.nAttachments, oHead.aAttachments);
  uint8_t* p = pEntry->Bytes();
  std::memcpy(p, &oHead, sizeof oHead);
  std::memcpy(p + sizeof oHead, oCall.Bytes(), oHead.nCall);
  p += nHead;
  for (size_t i = 0; i < oHead.nAttachments; ++i) {
    const auto nBytes = static_cast<size_t>(oHead.aAttachments[i].nBytes);
    std::memcpy(p, oHead.aAttachments[i].pData, nBytes);
    p += nBytes;
  }
  m_pQueue->Commit(pEntry);
}

void ClRecorder::RecordFacts(const std::string& sFacts) {
  if (!m_bOpen) return;
  const StEntryHead oHead;
  ClCallQueue::StEntry* pEntry = m_pQueue->Reserve(sizeof oHead + sFacts.size(), true);
  if (pEntry == nullptr) return;
  std::memcpy(pEntry->Bytes(), &oHead, sizeof oHead);
  std::memcpy(pEntry->Bytes() + sizeof oHead, sFacts.data(), sFacts.size());
  m_pQueue->Commit(pEntry);
}

void ClRecorder::Drain() {
  if (m_bOpen) m_pQueue->Drain();
}

void ClRecorder::Finish() {
  m_bOpen = false;
  if (!m_oThread.joinable()) return;
  m_pQueue->End();
  m_oThread.join();
}

void ClRecorder::Work() {
  pthread_setname_np(pthread_self(), "vt40-record");
  try {
    while (ClCallQueue::StEntry* pEntry = m_pQueue->Front()) {
      WriteLoss();
      WriteEntry(*pEntry);
      m_pQueue->Pop(pEntry);
      ReportFailure();
    }
    WriteLoss();
    WriteEnd();
    ReportFailure();
  } catch (const std::exception& oError) {
    std::fprintf(stderr, "vt40 recorder: the recording ends here: %s\n", oError.what());
    m_bOpen = false;
    while (ClCallQueue::StEntry* pEntry = m_pQueue->Front()) m_pQueue->Pop(pEntry);
  }
  m_pWriter.reset();
}

void ClRecorder::WriteEntry(ClCallQueue::StEntry& oEntry) {
  StEntryHead oHead;
  std::memcpy(&oHead, oEntry.Bytes(), sizeof oHead);
  uint8_t* pCall = oEntry.Bytes() + sizeof oHead;
  if (oHead.nCall == 0) {
    m_pWriter->Write(eBlockFacts, pCall, oEntry.nBytes - sizeof oHead);
    return;
  }
  uint8_t* pData = pCall + oHead.nCall;
  for (size_t i = 0; i < oHead.nAttachments; ++i) {
    const StAttachment& oAttachment = oHead.aAttachments[i];
    Store(pCall + oAttachment.nField, WriteAttachment(oAttachment, pData), 4);
    pData += oAttachment.nBytes;
  }
  m_pWriter->Write(eBlockCall, pCall, oHead.nCall);
  ++m_nCalls;
}

uint32_t ClRecorder::WriteAttachment(const StAttachment& oAttachment, uint8_t* pData) {
  const auto nBytes = static_cast<size_t>(oAttachment.nBytes);
  if (oAttachment.eKind == StAttachment::eCalibration) return WriteCalibration(pData, nBytes);
  ++m_nData;
  if (oAttachment.eKind == StAttachment::eFrames && m_oSettings.bBlur)
    m_oBlur.BlurFrames(pData, nBytes, oAttachment.nWidth, oAttachment.nHeight);
  return m_pWriter->WriteCompressed(eBlockData, pData, nBytes);
}

uint32_t ClRecorder::WriteCalibration(const uint8_t* pData, size_t nBytes) {
  std::vector<uint8_t> aBytes(pData, pData + nBytes);
  for (const StCalibration::StKnown& oKnown : m_pCalibration->aKnown)
    if (oKnown.aBytes == aBytes) return oKnown.nBlock;
  ++m_nData;
  const uint32_t nBlock = m_pWriter->WriteCompressed(eBlockData, pData, nBytes);
  // A scanner has a handful of blocks; what reads others on and on is stored again rather than kept.
  if (m_pCalibration->aKnown.size() < 64) m_pCalibration->aKnown.push_back({nBlock, std::move(aBytes)});
  return nBlock;
}

void ClRecorder::WriteLoss() {
  const uint64_t nCalls = m_nLostCalls.exchange(0);
  const uint64_t nData = m_nLostData.exchange(0);
  const uint64_t nBytes = m_nLostBytes.exchange(0);
  if (nCalls == 0 && nData == 0) return;
  m_nAllLostCalls += nCalls;
  m_nAllLostData += nData;
  uint8_t aLoss[24];
  Store(Store(Store(aLoss, nCalls, 8), nData, 8), nBytes, 8);
  m_pWriter->Write(eBlockLoss, aLoss, sizeof aLoss);
}

void ClRecorder::WriteEnd() {
  uint8_t aEnd[32];
  Store(Store(Store(Store(aEnd, m_nCalls, 8), m_nData, 8), m_nAllLostCalls, 8), m_nAllLostData, 8);
  m_pWriter->Write(eBlockEnd, aEnd, sizeof aEnd);
}

void ClRecorder::ReportFailure() {
  if (m_pWriter->Failure() == 0 || m_bFailureReported) return;
  m_bFailureReported = true;
  std::fprintf(stderr, "vt40 recorder: \"%s\": %s; the recording ends here, and the scanner goes on\n",
               m_oSettings.sFile.c_str(), std::strerror(m_pWriter->Failure()));
}

}  // namespace Recording
