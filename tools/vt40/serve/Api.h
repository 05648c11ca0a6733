// The calls of the interface.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Http.h"

namespace Serve {

class ClService;

/// One call: what was asked for, the variable parts of its path, and its body.
struct StCall {
  const StRequest& oRequest;
  std::vector<std::string> aParts;
  nlohmann::ordered_json oBody;
};

/// Finds the call that a request makes, checks what all calls need, and carries it out for the service.
///
/// Errors  ClServiceError: 404 and 405 for what there is not, 401, 415, 400, and 409 without the claim.
class ClApi {
 public:
  explicit ClApi(ClService& oService) : m_oService(oService) {}
  void Handle(const StRequest& oRequest, const FnAnswer& fnAnswer);

 private:
  using Handler = void (ClApi::*)(const StCall&, const FnAnswer&);
  struct StRoute {
    const char* szMethod;
    const char* szPath;  ///< "*" stands for one part
    bool bClaim;
    Handler pfnHandler;
  };
  static const std::vector<StRoute>& Routes();
  const StRoute* FindRoute(const StRequest& oRequest, StCall& oCall, std::string& sAllow) const;

  void GetStatus(const StCall& oCall, const FnAnswer& fnAnswer);
  void GetScanners(const StCall& oCall, const FnAnswer& fnAnswer);
  void PutScanner(const StCall& oCall, const FnAnswer& fnAnswer);
  void PostClaim(const StCall& oCall, const FnAnswer& fnAnswer);
  void PostAsk(const StCall& oCall, const FnAnswer& fnAnswer);
  void PostHandOver(const StCall& oCall, const FnAnswer& fnAnswer);
  void DeleteClaim(const StCall& oCall, const FnAnswer& fnAnswer);
  void PutMode(const StCall& oCall, const FnAnswer& fnAnswer);
  void GetSetting(const StCall& oCall, const FnAnswer& fnAnswer);
  void PutSetting(const StCall& oCall, const FnAnswer& fnAnswer);
  void PostCapture(const StCall& oCall, const FnAnswer& fnAnswer);
  void GetResults(const StCall& oCall, const FnAnswer& fnAnswer);
  void GetResult(const StCall& oCall, const FnAnswer& fnAnswer);
  void GetPicture(const StCall& oCall, const FnAnswer& fnAnswer);
  void DeleteResult(const StCall& oCall, const FnAnswer& fnAnswer);
  void PutLed(const StCall& oCall, const FnAnswer& fnAnswer);
  void PostBeep(const StCall& oCall, const FnAnswer& fnAnswer);
  void PutDisplay(const StCall& oCall, const FnAnswer& fnAnswer);

  void GetSimulator(const StCall& oCall, const FnAnswer& fnAnswer);
  void PutScene(const StCall& oCall, const FnAnswer& fnAnswer);
  void PutPlaten(const StCall& oCall, const FnAnswer& fnAnswer);
  void PutPlugged(const StCall& oCall, const FnAnswer& fnAnswer);
  void PostFaults(const StCall& oCall, const FnAnswer& fnAnswer);
  void GetTruth(const StCall& oCall, const FnAnswer& fnAnswer);
  void NeedSimulator() const;
  void SetScene(const std::string& sScene, const FnAnswer& fnAnswer);
  /// Makes a call of the simulator in the worker; its answer is what fnWork returns.
  void InWorker(std::function<StAnswer()> fnWork, const FnAnswer& fnAnswer);
  /// Answers with the status, once a work of the station has gone well.
  FnAnswer ThenStatus(const FnAnswer& fnAnswer);

  ClService& m_oService;
};

}  // namespace Serve
