// What a recording holds, in words and in JSON.
#include <cinttypes>
#include <ctime>
#include <map>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Report.h"
#include "ToolError.h"
#include "format/Functions.h"
#include "format/RecordingReader.h"

namespace {

using nlohmann::ordered_json;
using Recording::StCall;

std::string Utc(int64_t nNanoseconds) {
  const auto nSeconds = static_cast<std::time_t>(nNanoseconds / 1000000000);
  std::tm oTime{};
  gmtime_r(&nSeconds, &oTime);
  char szTime[64];
  std::strftime(szTime, sizeof szTime, "%Y-%m-%dT%H:%M:%SZ", &oTime);
  return szTime;
}

/// How often each function was called, and how often it failed.
ordered_json FunctionsOf(const Recording::ClRecording& oRecording) {
  std::map<uint16_t, std::pair<uint64_t, uint64_t>> mapCounts;
  for (const StCall& oCall : oRecording.Calls()) {
    auto& oCounts = mapCounts[oCall.nFunction];
    ++oCounts.first;
    if (oCall.nResult != 0) ++oCounts.second;
  }
  ordered_json oFunctions = ordered_json::object();
  for (const auto& [nFunction, oCounts] : mapCounts)
    oFunctions[Recording::FunctionName(nFunction)] = {{"calls", oCounts.first}, {"failures", oCounts.second}};
  return oFunctions;
}

/// The sequences of frames, by what they are.
ordered_json SequencesOf(const Recording::ClRecording& oRecording) {
  using Kind = std::array<int64_t, 4>;
  std::map<Kind, uint64_t> mapCounts;
  for (const StCall& oCall : oRecording.Calls()) {
    const auto Added = [&](Recording::EAddedField eField) {
      return oCall.Number(eField, Recording::eGot, 0);
    };
    if (Added(Recording::eAddedPlanes) <= 0) continue;
    ++mapCounts[{Added(Recording::eAddedMode), Added(Recording::eAddedWidth), Added(Recording::eAddedHeight),
                 Added(Recording::eAddedPlanes)}];
  }
  ordered_json oSequences = ordered_json::array();
  for (const auto& [aKind, nCount] : mapCounts) {
    oSequences.push_back({{"mode", aKind[0]},
                          {"width", aKind[1]},
                          {"height", aKind[2]},
                          {"planes", aKind[3]},
                          {"count", nCount}});
  }
  return oSequences;
}

std::string Lines(const ordered_json& oFacts) {
  const auto Number = [](const ordered_json& o) { return o.dump(); };
  std::string sText = "begun      " + oFacts["begun"].get<std::string>() + ", " + Number(oFacts["seconds"]) +
                      " s\n" + "scanner    " + (oFacts["simulated"] ? "simulated" : "real") +
                      (oFacts["blurred"] ? ", frames without ridges" : ", frames are fingerprints") + "\n";
  for (const auto& oSequence : oFacts["sequences"]) {
    sText += "sequences  " + Number(oSequence["count"]) + " of " + Number(oSequence["planes"]) + " x " +
             Number(oSequence["width"]) + " x " + Number(oSequence["height"]) + ", sensor mode " +
             Number(oSequence["mode"]) + "\n";
  }
  for (const auto& [sName, oCounts] : oFacts["functions"].items()) {
    sText += "calls      " + Number(oCounts["calls"]) + " of " + sName;
    if (oCounts["failures"] != 0) sText += ", " + Number(oCounts["failures"]) + " failed";
    sText += "\n";
  }
  const ordered_json& oLost = oFacts["lost"];
  sText += "dropped    " + Number(oLost["calls"]) + " calls, " + Number(oLost["data"]) + " pieces of data";
  return sText;
}

}  // namespace

void RunRecording(const std::string& sFile, ClReport& oReport) {
  ordered_json& oFacts = oReport.Facts();
  try {
    const Recording::ClRecording oRecording(sFile);
    int64_t nEnd = 0;
    for (const StCall& oCall : oRecording.Calls()) nEnd = std::max(nEnd, oCall.nEnd);
    oFacts["file"] = sFile;
    oFacts["begun"] = Utc(oRecording.Start());
    oFacts["seconds"] = static_cast<double>(nEnd / 1000000) / 1000.0;
    oFacts["bytes"] = oRecording.FileBytes();
    oFacts["simulated"] = oRecording.IsSimulated();
    oFacts["blurred"] = oRecording.IsBlurred();
    oFacts["whole"] = oRecording.IsWhole();
    oFacts["facts"] = oRecording.Facts();
    oFacts["sequences"] = SequencesOf(oRecording);
    oFacts["functions"] = FunctionsOf(oRecording);
    const Recording::StLoss& oLoss = oRecording.Loss();
    oFacts["lost"] = {{"calls", oLoss.nCalls}, {"data", oLoss.nData}, {"bytes", oLoss.nBytes}};
    oReport.Line(Lines(oFacts));
    if (!oRecording.Damage().empty()) {
      oReport.SetVerdict(eExitNegative,
                         "the recording is damaged, and plays up to there: " + oRecording.Damage());
    } else if (!oRecording.IsWhole()) {
      oReport.SetVerdict(eExitNegative,
                         "the recording was not brought to its end; it plays as far as it goes");
    }
  } catch (const Recording::ClRecordingError& oError) {
    throw ClToolError(eExitFile, oError.what());
  }
}
