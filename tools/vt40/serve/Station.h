// The one thread that works with the scanner.
#pragma once

#include <array>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "Http.h"
#include "ModeRun.h"

namespace Serve {

/// What is known of the scanner.
struct StStationState {
  std::string sSerial;
  std::string sScanLibraryVersion;
  std::string sMode = "off";
  bool bConnected = false;
  unsigned int nCondition = 0;
  nlohmann::ordered_json oForms;  ///< of the last scanner that was open
  nlohmann::ordered_json oError;  ///< why it is not connected; null otherwise
};

/// Where the station puts what it has, on its own thread.
class ClStationListener : public ClStationSink {
 public:
  virtual void State(const StStationState& oState) = 0;
  /// The stream has failed.
  virtual void Failed(const nlohmann::ordered_json& oError) = 0;
  /// Something that is to be done on the network's thread.
  virtual void Answer(std::function<void()> fnAnswer) = 0;
};

/// Keeps a scanner open, fetches what its mode gives, and opens it again when it was unplugged and is back.
///
/// Threads  Ask and End from any thread; Work functions run on the station's thread, and what stands under
///          "for work" is called by them alone.
class ClStation {
 public:
  using FnWork = std::function<nlohmann::ordered_json(ClStation&)>;

  /// An empty serial number takes the first scanner there is. The library outlives the station.
  ClStation(const ClLibrary& oLibrary, std::string sSerial, ClStationListener& oListener);
  ClStation(const ClStation&) = delete;
  ClStation& operator=(const ClStation&) = delete;
  ~ClStation();

  /// Does the work between two frames, and hands what it returns, or the error, to fnAnswer.
  void Ask(FnWork fnWork, FnAnswer fnAnswer);
  /// Switches the lights off, closes the scanner and ends; false when that takes longer than a closing
  /// service can wait.
  bool End();

  // For work.
  /// Errors: ClServiceError 503 while there is none.
  ClScanner& Scanner();
  void SetMode(const std::string& sMode);
  void SetProperty(const std::string& sName, const std::string& sValue);
  void SetLed(unsigned int nIndex, unsigned int nState);
  void Choose(const std::string& sSerial);
  /// Begins the mode afresh, since another scene lies there.
  void Renew();
  StTaken Capture();
  const StStationState& State() const { return m_oState; }

 private:
  struct StTask {
    FnWork fnWork;
    FnAnswer fnAnswer;
  };

  void Run();
  void RunOnce();
  bool TakeTask(StTask& oTask, std::chrono::milliseconds tWait);
  void RunTask(const StTask& oTask);
  void Open();
  void Lose();
  void Retire();
  void LookForScanner();
  void Darken();
  void Publish() { m_oListener.State(m_oState); }

  const ClLibrary& m_oLibrary;
  ClStationListener& m_oListener;
  StStationState m_oState;
  std::string m_sWanted = "off";                   ///< the mode, also while there is no scanner
  std::map<std::string, std::string> m_oSettings;  ///< that clients have made
  std::array<unsigned int, 12> m_anLed{};          ///< states that clients have set
  ClFramePool m_oPool;
  uint32_t m_nFrame = 0;
  std::unique_ptr<ClScanner> m_pScanner;
  std::unique_ptr<ClModeRun> m_pRun;
  std::vector<std::unique_ptr<ClScanner>> m_aStuck;  ///< lost ones whose last call has not returned
  std::chrono::steady_clock::time_point m_tNextLook;

  std::mutex m_oMutex;
  std::condition_variable m_oChanged;
  std::deque<StTask> m_aTasks;  ///< m_oMutex
  bool m_bEnd = false;          ///< m_oMutex
  bool m_bEnded = false;        ///< m_oMutex
  std::thread m_oThread;
};

}  // namespace Serve
