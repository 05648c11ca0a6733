// What a run has found out: facts, lines for people, and how it ends.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "ToolError.h"

class ClLibrary;
class ClOutput;
class ClScanner;

/// Collects the facts of one run and prints them at its end, with the reason when it did not go well.
///
/// Errors  those of ClOutput.
class ClReport {
 public:
  explicit ClReport(ClOutput& oOutput) : m_oOutput(oOutput) {}
  ClReport(const ClReport&) = delete;
  ClReport& operator=(const ClReport&) = delete;

  /// Says which scan library is used, and whether the scanner is a simulated one; people are told it on the
  /// standard error.
  void Use(const ClLibrary& oLibrary, const std::string& sScanLibraryVersion);
  /// The same, with the scanner's serial number.
  void Use(const ClLibrary& oLibrary, const ClScanner& oScanner);
  bool IsSimulated() const { return m_bSimulated; }

  nlohmann::ordered_json& Facts() { return m_oFacts; }
  /// A line for people, at once.
  void Line(const std::string& sText);
  /// One fact of a stream: an entry of the list of that name, if it has one, or an object of its own with
  /// JSON lines.
  void Event(const char* szList, const char* szEvent, const nlohmann::ordered_json& oFact);

  /// How the run ends where that isn't well, and the sentence that says why. The first word counts.
  void SetVerdict(EExitCode eExit, const std::string& sReason, long nNumber = 0);
  void Fail(const ClToolError& oError) { SetVerdict(oError.Code(), oError.what(), oError.Number()); }
  /// Prints what is left to be said and returns the exit code.
  EExitCode Finish();

 private:
  ClOutput& m_oOutput;
  nlohmann::ordered_json m_oFacts = nlohmann::ordered_json::object();
  bool m_bSimulated = false;
  EExitCode m_eExit = eExitOk;
  std::string m_sReason;
  long m_nNumber = 0;
};
