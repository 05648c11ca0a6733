// What a capture has given: pictures in files, and facts to print.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "Commands.h"
#include "Scanner.h"
#include "ToolError.h"

/// Collects the facts of one run and writes the pictures as they come.
class ClCaptureResult {
 public:
  ClCaptureResult(const StCaptureOptions& oOptions, const std::string& sSerial);

  /// Writes the picture into the folder under the name. Errors: ClToolError eExitFile.
  void Add(const ClPicture& oPicture, const std::string& sName);
  void SetDelivery(const StDelivery& oDelivery);
  /// How the run ends, and the sentence that says why when that isn't well.
  void SetVerdict(EExitCode eExit, const std::string& sReason = "");
  /// A sentence for people, printed in place of the facts of JSON.
  void SetSummary(const std::string& sSummary) { m_sSummary = sSummary; }
  /// Facts that only one mode has.
  nlohmann::ordered_json& Facts() { return m_oJson; }

  /// Prints the facts on the standard output, and a verdict that isn't well on the standard error.
  EExitCode Print(bool bJson) const;

 private:
  const StCaptureOptions& m_oOptions;
  nlohmann::ordered_json m_oJson;
  EExitCode m_eExit = eExitOk;
  std::string m_sReason;
  std::string m_sSummary;
};
