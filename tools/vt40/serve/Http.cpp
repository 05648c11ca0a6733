// JSON of requests, answers and errors.
#include "Http.h"

#include <climits>
#include <nlohmann/json.hpp>

#include "ErrorNames.h"
#include "KelvarinLiveScannerVT40.h"

namespace Serve {
namespace {

using nlohmann::ordered_json;

/// Deeper than any body that means something: a platen's fingers have a roll with a path of moments.
constexpr int cnDeepest = 12;
constexpr char cszCorrect[] = "Correct the request; see /openapi.yaml.";

unsigned int StatusOf(const ClToolError& oError) {
  if (oError.Number() == KLV_ERROR_INVALID_STATE) return 409;
  switch (oError.Code()) {
    case eExitUsage:
    case eExitFile:
      return 400;
    case eExitNoScanner:
    case eExitBusy:
    case eExitLost:
    case eExitScanLibrary:
    case eExitInterrupted:
    case eExitTerminated:
      return 503;
    case eExitTimeout:
      return 504;
    case eExitLiveness:
      return 501;
    default:
      return 500;
  }
}

/// What to do where the command line's advice does not suit a service that goes on.
ordered_json ErrorOfService(const ClToolError& oError) {
  ordered_json oJson = ErrorOf(oError.Code(), oError.what(), oError.Number());
  switch (oError.Code()) {
    case eExitUsage:
      oJson["advice"] = cszCorrect;
      break;
    case eExitNoScanner:
    case eExitLost:
      oJson["advice"] = "Connect the scanner; it is opened by itself.";
      break;
    case eExitTimeout:
      oJson["advice"] = "Try again; the scanner is opened anew.";
      break;
    case eExitFailure:
      oJson["advice"] =
          "Try again; KELVARIN_SDK_LOG=1 in the service's environment shows what the library does.";
      break;
    default:
      break;
  }
  return oJson;
}

std::string Printed(const ordered_json& oValue) {
  constexpr size_t cnMost = 80;
  const std::string sText = oValue.dump(-1, ' ', true, ordered_json::error_handler_t::replace);
  return sText.size() <= cnMost ? sText : sText.substr(0, cnMost) + "…";
}

const ordered_json& Value(const ordered_json& oObject, const char* szKey) {
  const auto iValue = oObject.find(szKey);
  if (iValue == oObject.end()) throw BadRequest("\"" + std::string(szKey) + "\" is missing");
  return *iValue;
}

}  // namespace

ClServiceError BadRequest(const std::string& sText) {
  return {400, "BAD_REQUEST", sText, cszCorrect};
}

StAnswer AnswerOf(const ordered_json& oJson, unsigned int nStatus) {
  StAnswer oAnswer;
  oAnswer.nStatus = nStatus;
  oAnswer.sBody = oJson.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
  return oAnswer;
}

ordered_json CurrentError() {
  try {
    throw;
  } catch (const ClServiceError& oError) {
    return {
        {"number", nullptr}, {"name", oError.Name()}, {"text", oError.what()}, {"advice", oError.Advice()}};
  } catch (const ClToolError& oError) {
    return ErrorOfService(oError);
  } catch (const std::exception& oError) {
    return ErrorOfService(ClToolError(eExitFailure, oError.what()));
  }
}

StAnswer CurrentErrorAnswer() {
  unsigned int nStatus = 500;
  try {
    throw;
  } catch (const ClServiceError& oError) {
    nStatus = oError.Status();
  } catch (const ClToolError& oError) {
    nStatus = StatusOf(oError);
  } catch (const std::exception&) {
    nStatus = 500;
  }
  return AnswerOf({{"error", CurrentError()}}, nStatus);
}

ordered_json ReadObject(const std::string& sText) {
  // Whoever walks through what was read does so by recursion.
  const auto LimitDepth = [](int nDepth, ordered_json::parse_event_t, ordered_json&) {
    if (nDepth > cnDeepest)
      throw BadRequest("the JSON is nested deeper than " + std::to_string(cnDeepest) + " levels");
    return true;
  };
  ordered_json oObject;
  try {
    oObject = ordered_json::parse(sText, LimitDepth);
  } catch (const ordered_json::exception& oError) {
    throw BadRequest(std::string("no JSON: ") + oError.what());
  }
  if (!oObject.is_object()) throw BadRequest("the JSON is no object: " + Printed(oObject));
  return oObject;
}

std::string TextIn(const ordered_json& oObject, const char* szKey, size_t nMost) {
  const ordered_json& oValue = Value(oObject, szKey);
  if (!oValue.is_string()) throw BadRequest("\"" + std::string(szKey) + "\" is no text: " + Printed(oValue));
  std::string sText = oValue;
  for (const char c : sText) {
    if (static_cast<unsigned char>(c) < ' ')
      throw BadRequest("\"" + std::string(szKey) + "\" has control characters: " + Printed(oValue));
  }
  if (sText.size() > nMost)
    throw BadRequest("\"" + std::string(szKey) + "\" has " + std::to_string(sText.size()) +
                     " bytes, of at most " + std::to_string(nMost));
  return sText;
}

long NumberIn(const ordered_json& oObject, const char* szKey, long nLeast, long nMost) {
  return NumberOf(Value(oObject, szKey), "\"" + std::string(szKey) + "\"", nLeast, nMost);
}

long NumberOf(const ordered_json& oValue, const std::string& sWhat, long nLeast, long nMost) {
  // More than any signed number holds is out of every range.
  const bool bHuge = oValue.is_number_unsigned() && oValue.get<unsigned long long>() > LLONG_MAX;
  const long long n = oValue.is_number_integer() && !bHuge ? oValue.get<long long>() : 0;
  if (!oValue.is_number_integer() || bHuge || n < nLeast || n > nMost)
    throw BadRequest(sWhat + " is no whole number from " + std::to_string(nLeast) + " to " +
                     std::to_string(nMost) + ": " + Printed(oValue));
  return static_cast<long>(n);
}

bool TruthIn(const ordered_json& oObject, const char* szKey) {
  const ordered_json& oValue = Value(oObject, szKey);
  if (!oValue.is_boolean())
    throw BadRequest("\"" + std::string(szKey) + "\" is neither true nor false: " + Printed(oValue));
  return oValue;
}

void NeedKeys(const ordered_json& oObject, const char* szKeys) {
  const std::string sKeys = " " + std::string(szKeys) + " ";
  for (const auto& oItem : oObject.items()) {
    const bool bPlain = oItem.key().find(' ') == std::string::npos;
    if (!bPlain || sKeys.find(" " + oItem.key() + " ") == std::string::npos)
      throw BadRequest("the key " + Printed(oItem.key()) + " is unknown");
  }
}

}  // namespace Serve
