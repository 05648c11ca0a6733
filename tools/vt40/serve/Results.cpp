// A short list, newest first.
#include "Results.h"

#include <algorithm>

#include "Http.h"

namespace Serve {
namespace {

ClServiceError NoSuch(const std::string& sWhat) {
  return {404, "NOT_FOUND", sWhat, "See GET /api/results; older results are forgotten."};
}

}  // namespace

void ClResults::Add(StResult oResult) {
  m_aResults.push_front(std::move(oResult));
  if (m_aResults.size() > cnMost) m_aResults.pop_back();
}

void ClResults::Remove(unsigned int nId) {
  Find(nId);
  m_aResults.erase(
      std::find_if(m_aResults.begin(), m_aResults.end(), [=](const StResult& o) { return o.nId == nId; }));
}

const StResult& ClResults::Find(unsigned int nId) const {
  const auto iResult =
      std::find_if(m_aResults.begin(), m_aResults.end(), [=](const StResult& o) { return o.nId == nId; });
  if (iResult == m_aResults.end()) throw NoSuch("there is no result " + std::to_string(nId));
  return *iResult;
}

const std::string& ClResults::Picture(unsigned int nId, const std::string& sName) const {
  for (const auto& [sPicture, sBytes] : Find(nId).aPictures)
    if (sPicture == sName) return sBytes;
  throw NoSuch("result " + std::to_string(nId) + " has no picture \"" + sName + "\"");
}

nlohmann::ordered_json ClResults::List() const {
  nlohmann::ordered_json aList = nlohmann::ordered_json::array();
  for (const StResult& oResult : m_aResults) aList.push_back(oResult.oFacts);
  return aList;
}

}  // namespace Serve
