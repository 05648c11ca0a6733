// The service: what clients may do, and what they are told.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "Claim.h"
#include "Flow.h"
#include "Gate.h"
#include "Outbox.h"
#include "Results.h"
#include "SimulatorControl.h"
#include "Station.h"
#include "Worker.h"

namespace Serve {

struct StServiceOptions {
  std::string sSerial;  ///< empty: the first scanner
  std::string sFolder;  ///< for pictures; empty: none are written
  std::string sScene;   ///< that was asked for at the start
  std::chrono::milliseconds tClaimLife{10000};
};

/// The WebSocket of a client.
class ClSocket {
 public:
  virtual ~ClSocket() = default;
  virtual ClFlow& Flow() = 0;
  /// Sends what waits in the flow.
  virtual void Pump() = 0;
  virtual void Close() = 0;
};

/// Knows the clients, the claim and the results, and passes work on to the station.
///
/// Threads  thread-bound to the network's thread. The answers of calls come on that thread, perhaps later.
class ClService {
 public:
  /// The most WebSockets at once.
  static constexpr size_t cnMostClients = 16;
  /// The path of the WebSocket.
  static constexpr const char* cszEvents = "/api/events";

  /// fnWake makes the network's thread call Drain; it is called on any thread.
  ClService(const ClLibrary& oLibrary, StServiceOptions oOptions, ClGate oGate, std::function<void()> fnWake);
  ClService(const ClService&) = delete;
  ClService& operator=(const ClService&) = delete;
  ~ClService();

  /// Answers a call of the interface, or with a file of the page. fnAnswer is called once, unless the service
  /// ends before.
  void Handle(const StRequest& oRequest, const FnAnswer& fnAnswer);
  /// Judges the request for a WebSocket. Errors: ClServiceError.
  void CheckSocket(const StRequest& oRequest) const;
  /// A WebSocket is open; returns the number of its client.
  unsigned int Join(ClSocket& oSocket);
  void Message(unsigned int nClient, const std::string& sText);
  void Leave(unsigned int nClient);

  /// Takes what other threads have put into the outbox.
  void Drain();
  /// Ten times a second: what follows from time alone.
  void Tick();
  /// Says farewell to the clients.
  void CloseSockets();
  /// Ends the scanner's thread; false when that hangs.
  bool End();

 private:
  friend class ClApi;
  class ClListener;
  struct StClient {
    ClSocket* pSocket = nullptr;
    std::string sName;
  };

  nlohmann::ordered_json Status() const;
  nlohmann::ordered_json ClaimEvent(unsigned int nClient) const;
  void Tell(const nlohmann::ordered_json& oEvent);
  void TellOne(unsigned int nClient, const nlohmann::ordered_json& oEvent);
  void TellStatus();
  void TellClaim();
  void ExpireClaim();
  void Forward(const Text& pText, bool bMayBeLost);
  void Obey(unsigned int nClient, const nlohmann::ordered_json& oMessage);
  void SetFormat(unsigned int nClient, const nlohmann::ordered_json& oMessage);
  /// Lays what a client drags, newest first while the simulator is busy.
  void Drag(unsigned int nClient, const nlohmann::ordered_json& oPlaten);
  void LayNext();
  /// Makes files of a capture's pictures and keeps them; fnAnswer, if any, gets the result.
  void Keep(StTaken oTaken, const std::string& sSerial, const FnAnswer& fnAnswer);
  void Store(const std::shared_ptr<StResult>& pResult, const FnAnswer& fnAnswer);
  void LookAtDevice();

  const ClLibrary& m_oLibrary;
  const StServiceOptions m_oOptions;
  const ClGate m_oGate;
  const ClSimulatorControl m_oSimulator;
  ClClaim m_oClaim;
  ClResults m_oResults;
  std::map<unsigned int, StClient> m_aClients;
  unsigned int m_nLastClient = 0;
  unsigned int m_nLastResult = 0;
  StStationState m_oState;
  std::string m_sScene;  ///< empty: none of the built-in ones
  nlohmann::ordered_json m_oPlaten;
  std::string m_sDragged;  ///< what is to be laid next; empty: nothing
  unsigned int m_nDragger = 0;
  bool m_bLaying = false;
  StDevice m_oDevice;
  bool m_bLooking = false;
  ClOutbox m_oOutbox;
  ClOutbox::StContent m_oContent;
  ClWorker m_oWorker;
  std::unique_ptr<ClListener> m_pListener;
  std::unique_ptr<ClStation> m_pStation;
};

}  // namespace Serve
