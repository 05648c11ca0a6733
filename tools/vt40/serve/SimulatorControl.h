// The control side of the simulated scanner, where the scan library has one.
#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "Picture.h"

namespace Serve {

/// What a simulated scanner shows to whoever stands before it.
struct StDevice {
  std::array<unsigned int, 12> anLeds{};
  std::array<std::string, 2> asDisplay;
  unsigned int nBeeps = 0;
  bool bLight = false;  ///< of the platen
  bool bPlugged = false;
  double dTime = 0.0;  ///< seconds on its time line

  bool LooksLike(const StDevice& o) const;
};

nlohmann::ordered_json JsonOf(const StDevice& oDevice);

/// Calls the loaded scan library's control functions.
///
/// Threads  thread-safe, as those functions are.
/// Errors   ClServiceError 400 with the simulator's reason; 404 NOT_SIMULATED without a control side, 501 for
///          a function that this simulator lacks.
class ClSimulatorControl {
 public:
  /// The library must be loaded as long as the object lives.
  explicit ClSimulatorControl(const std::string& sScanLibrary);
  ClSimulatorControl(const ClSimulatorControl&) = delete;
  ClSimulatorControl& operator=(const ClSimulatorControl&) = delete;
  ~ClSimulatorControl();

  /// The built-in scenes.
  static const std::vector<std::string>& Scenes();
  /// Whether the text is the name of a built-in scene, with or without a seed.
  static bool IsScene(const std::string& sScene);

  void LoadScene(const std::string& sScene) const;
  void Lay(const std::string& sSerial, const std::string& sPlaten) const;
  void SetPlugged(const std::string& sSerial, bool bPlugged) const;
  void FailCall(const std::string& sFunction, unsigned int nFirst, unsigned int nRepeat, long nResult) const;
  void Delay(const std::string& sSerial, unsigned int nMilliseconds) const;
  void ClearFaults() const;
  /// The ideal picture of what lies on the platen now.
  ClPicture Truth(const std::string& sSerial) const;
  StDevice Look(const std::string& sSerial) const;

 private:
  template <typename TFunction>
  TFunction* Find(const char* szName) const;
  void Check(long nResult) const;

  void* m_pLibrary;
};

/// Refuses what must not stand in a platen's description, which comes from a browser: keys of other things
/// than what lies there, and files at any depth. Errors: ClServiceError 400.
void CheckPlaten(const nlohmann::ordered_json& oPlaten);

}  // namespace Serve
