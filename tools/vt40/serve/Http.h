// Requests and answers as the service knows them, without the network.
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>

#include "ToolError.h"

namespace Serve {

/// What the service looks at of a request. Missing fields are empty.
struct StRequest {
  std::string sMethod;
  std::string sPath;  ///< without the query
  std::string sHost;
  std::string sOrigin;
  std::string sContentType;
  std::string sAuthorization;
  std::string sProtocols;  ///< of a WebSocket's request
  std::string sClaim;
  std::string sBody;
};

struct StAnswer {
  unsigned int nStatus = 200;
  std::string sType = "application/json";
  std::string sBody;
  std::string sAllow;  ///< of 405: the methods there are
};

/// Takes an answer, once, on the network's thread.
using FnAnswer = std::function<void(StAnswer)>;

/// A request that is refused: the status, and the error as its JSON has it.
class ClServiceError : public std::runtime_error {
 public:
  ClServiceError(unsigned int nStatus, const char* szName, const std::string& sText, const char* szAdvice)
      : std::runtime_error(sText), m_nStatus(nStatus), m_szName(szName), m_szAdvice(szAdvice) {}
  unsigned int Status() const { return m_nStatus; }
  const char* Name() const { return m_szName; }
  const char* Advice() const { return m_szAdvice; }

 private:
  unsigned int m_nStatus;
  const char* m_szName;
  const char* m_szAdvice;
};

/// A request whose content is wrong: 400, BAD_REQUEST.
ClServiceError BadRequest(const std::string& sText);

StAnswer AnswerOf(const nlohmann::ordered_json& oJson, unsigned int nStatus = 200);
/// The JSON of the exception that is being handled: number, name, text and advice.
nlohmann::ordered_json CurrentError();
/// The answer to it, with the status that suits it.
StAnswer CurrentErrorAnswer();

/// Reads the JSON of a body or message: an object, at most so deep as any that the service takes.
/// Errors: ClServiceError 400.
nlohmann::ordered_json ReadObject(const std::string& sText);
/// The value of a key. Errors: ClServiceError 400 when it is missing, of another type, or not in range.
std::string TextIn(const nlohmann::ordered_json& oObject, const char* szKey, size_t nMost);
long NumberIn(const nlohmann::ordered_json& oObject, const char* szKey, long nLeast, long nMost);
bool TruthIn(const nlohmann::ordered_json& oObject, const char* szKey);
/// A whole number in range. Errors: ClServiceError 400, which names sWhat.
long NumberOf(const nlohmann::ordered_json& oValue, const std::string& sWhat, long nLeast, long nMost);
/// Refuses keys that are not in the list, which are separated by blanks.
void NeedKeys(const nlohmann::ordered_json& oObject, const char* szKeys);

}  // namespace Serve
