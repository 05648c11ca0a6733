// How facts and failures are put into words and into JSON.
#include "Report.h"

#include <cstdio>

#include "ErrorNames.h"
#include "Output.h"
#include "Scanner.h"

namespace {

using nlohmann::ordered_json;

/// The version of the scan library in a scanner's text of versions: the word after its mark.
std::string VersionIn(const std::string& sVersions) {
  const std::string sMark = "LIB:";
  const size_t nMark = sVersions.find(sMark);
  if (nMark == std::string::npos) return "";
  const size_t nBegin = nMark + sMark.size();
  return sVersions.substr(nBegin, sVersions.find(' ', nBegin) - nBegin);
}

}  // namespace

void ClReport::Use(const ClLibrary& oLibrary, const std::string& sScanLibraryVersion) {
  const StScanLibrary& oScanLibrary = oLibrary.ScanLibrary();
  m_bSimulated = oScanLibrary.bSimulated;
  m_oFacts["simulated"] = m_bSimulated;
  ordered_json& oFacts = m_oFacts["scanLibrary"];
  oFacts["path"] = oScanLibrary.sPath;
  oFacts["version"] = sScanLibraryVersion.empty() ? ordered_json() : ordered_json(sScanLibraryVersion);
  if (m_bSimulated && !m_oOutput.IsJson())
    std::fprintf(stderr, "vt40: the scanner is simulated, by %s\n", oScanLibrary.sPath.c_str());
}

void ClReport::Use(const ClLibrary& oLibrary, const ClScanner& oScanner) {
  Use(oLibrary, VersionIn(oScanner.Versions()));
  m_oFacts["serial"] = oScanner.Serial();
}

void ClReport::Line(const std::string& sText) {
  m_oOutput.Line(sText);
}

void ClReport::Event(const char* szList, const char* szEvent, const ordered_json& oFact) {
  if (m_oOutput.Form() != ClOutput::eJsonLines) {
    m_oFacts[szList].push_back(oFact);
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
    const char* szName = m_nNumber != 0 ? NameOfNumber(m_nNumber) : nullptr;
    m_oFacts["error"] = {{"number", m_nNumber != 0 ? ordered_json(m_nNumber) : ordered_json()},
                         {"name", szName != nullptr ? szName : NameOfExit(m_eExit)},
                         {"text", m_sReason},
                         {"advice", AdviceFor(m_eExit)}};
  }
  m_oFacts["exitCode"] = static_cast<int>(m_eExit);
  m_oOutput.Document(m_oFacts);
  if (m_eExit != eExitOk) std::fprintf(stderr, "vt40: %s\n", m_sReason.c_str());
  return m_eExit;
}
