// The recording of this process: what is recorded, and the thread that writes it.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "format/BlockWriter.h"
#include "format/Blur.h"
#include "format/CallRecord.h"
#include "record/CallQueue.h"

namespace Recording {

/// What the environment asks for.
struct StRecorderSettings {
  std::string sFile;               ///< KELVARIN_VT40_RECORD_FILE; empty: nothing is recorded
  bool bBlur = false;              ///< KELVARIN_VT40_RECORD_BLUR
  bool bWait = false;              ///< KELVARIN_VT40_RECORD_WAIT: a full queue holds the application up
  size_t nQueueBytes = 64U << 20;  ///< KELVARIN_VT40_RECORD_QUEUE, in MB

  static StRecorderSettings OfEnvironment();
};

/// Takes calls from the application's threads and writes them in a thread of its own. The libraries of a
/// process share one: what both call is virtual, so that the code and the counters are those of the library
/// that made it.
///
/// Threads  thread-safe but for construction and Finish. Record allocates nothing, and waits for a lock that
///          others hold for a few instructions.
/// Errors   none: what goes wrong is said on the standard error, and the scanner goes on.
class ClRecorder {
 public:
  ClRecorder(const StRecorderSettings& oSettings, bool bSimulated);
  ClRecorder(const ClRecorder&) = delete;
  ClRecorder& operator=(const ClRecorder&) = delete;
  virtual ~ClRecorder();

  /// Nanoseconds since the recording began.
  virtual int64_t Now() const;
  /// The number of the calling thread.
  virtual uint32_t Thread();
  /// Takes a call, its head included, and copies its attachments.
  virtual void Record(ClCallRecord& oCall);
  /// Adds lines to the facts.
  virtual void RecordFacts(const std::string& sFacts);
  /// Waits until everything is in the file.
  virtual void Drain();
  /// Ends the file. Later calls are not recorded.
  void Finish();

 private:
  struct StEntryHead;

  void Open(const StRecorderSettings& oSettings, bool bSimulated);
  void Work();
  void WriteEntry(ClCallQueue::StEntry& oEntry);
  void WriteLoss();
  void WriteEnd();
  uint32_t WriteAttachment(const StAttachment& oAttachment, uint8_t* pData);
  uint32_t WriteCalibration(const uint8_t* pData, size_t nBytes);
  void ReportFailure();

  struct StCalibration;

  const StRecorderSettings m_oSettings;
  const int64_t m_nSteadyStart;
  std::unique_ptr<ClBlockWriter> m_pWriter;  // touched by the writing thread alone
  std::unique_ptr<ClCallQueue> m_pQueue;
  ClBlur m_oBlur;
  std::unique_ptr<StCalibration> m_pCalibration;
  bool m_bFailureReported = false;
  uint64_t m_nCalls = 0;
  uint64_t m_nData = 0;
  uint64_t m_nAllLostCalls = 0;
  uint64_t m_nAllLostData = 0;
  std::atomic<uint64_t> m_nLostCalls{0};  // since the last block that says so
  std::atomic<uint64_t> m_nLostData{0};
  std::atomic<uint64_t> m_nLostBytes{0};
  std::atomic<uint32_t> m_nThreads{0};
  std::atomic<bool> m_bOpen{false};
  std::thread m_oThread;
};

}  // namespace Recording
