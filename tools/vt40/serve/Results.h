// The captures of a run of the service, in memory.
#pragma once

#include <deque>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace Serve {

/// What one capture has given: its facts as JSON, and its pictures as PNG files.
struct StResult {
  unsigned int nId = 0;
  nlohmann::ordered_json oFacts;
  std::vector<std::pair<std::string, std::string>> aPictures;  ///< names and bytes
};

/// Keeps the newest results.
///
/// Threads  thread-bound.
/// Errors   ClServiceError 404 for a result or a picture that is not there.
class ClResults {
 public:
  /// The most that are kept; older ones go.
  static constexpr size_t cnMost = 32;

  void Add(StResult oResult);
  void Remove(unsigned int nId);
  const nlohmann::ordered_json& Facts(unsigned int nId) const { return Find(nId).oFacts; }
  const std::string& Picture(unsigned int nId, const std::string& sName) const;
  /// All facts, newest first.
  nlohmann::ordered_json List() const;

 private:
  const StResult& Find(unsigned int nId) const;

  std::deque<StResult> m_aResults;  ///< newest first
};

}  // namespace Serve
