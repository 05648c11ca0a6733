// How facts and failures are put into words and into JSON.
#include "Report.h"

#include <cstdio>

#include "ErrorNames.h"
#include "Output.h"
#include "Scanner.h"
#include "StandIn.h"

namespace {

using nlohmann::ordered_json;

}  // namespace

void ClReport::Use(const ClLibrary& oLibrary, const std::string& sScanLibraryVersion) {
  const StScanLibrary& oScanLibrary = oLibrary.ScanLibrary();
  m_bSimulated = oScanLibrary.bSimulated;
  m_oFacts["simulated"] = m_bSimulated;
  ordered_json& oFacts = m_oFacts["scanLibrary"];
  oFacts["path"] = oScanLibrary.sPath;
  oFacts["version"] = sScanLibraryVersion.empty() ? ordered_json() : ordered_json(sScanLibraryVersion);
  if (!StandIn::ReplayFile().empty()) oFacts["replay"] = StandIn::ReplayFile();
  if (!StandIn::RecordFile().empty()) oFacts["recording"] = StandIn::RecordFile();
  if (m_oOutput.IsJson()) return;
  if (!StandIn::ReplayFile().empty())
    std::fprintf(stderr, "vt40: this is a replay of %s, not a scanner\n", StandIn::ReplayFile().c_str());
  if (m_bSimulated)
    std::fprintf(stderr, "vt40: the scanner is simulated, by %s\n", oScanLibrary.sPath.c_str());
}

void ClReport::Use(const ClLibrary& oLibrary, const ClScanner& oScanner) {
  Use(oLibrary, ScanLibraryVersionIn(oScanner.Versions()));
  m_oFacts["serial"] = oScanner.Serial();
}

void ClReport::Line(const std::string& sText) {
  m_oOutput.Line(sText);
}

void ClReport::Event(const char* szList, const char* szEvent, const ordered_json& oFact) {
  if (m_oOutput.Form() != ClOutput::eJsonLines) {
    if (szList != nullptr) m_oFacts[szList].push_back(oFact);
    return;
  }
  ordered_json oEvent = {{"event", szEvent}};
  oEvent.update(oFact);
  m_oOutput.Event(oEvent);
}

void ClReport::SetVerdict(EExitCode eExit, const std::string& sReason, long nNumber) {
  if (m_eExit != eExitOk) return;
  m_eExit = eExit;
  m_sReason = sReason;
  m_nNumber = nNumber;
}

EExitCode ClReport::Finish() {
  if (m_oOutput.Form() == ClOutput::eJsonLines) m_oFacts["event"] = "result";
  if (m_eExit != eExitOk) {
    m_oFacts["error"] = ErrorOf(m_eExit, m_sReason, m_nNumber);
  }
  m_oFacts["exitCode"] = static_cast<int>(m_eExit);
  m_oOutput.Document(m_oFacts);
  if (m_eExit != eExitOk) std::fprintf(stderr, "vt40: %s\n", m_sReason.c_str());
  return m_eExit;
}
