// What other threads have for the network's thread.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Frame.h"

namespace Serve {

/// A queue in which only the newest frame and the newest facts wait, so that a network that is busy holds
/// nobody back, and what waits has a limit. All else keeps its order.
///
/// Threads  thread-safe; Take is called by the network's thread.
class ClOutbox {
 public:
  /// What waits. Actions are of requests, each of which waits for its answer.
  struct StContent {
    std::vector<std::function<void()>> aActions;
    std::vector<std::string> aFacts;
    std::shared_ptr<ClFrame> pFrame;
  };

  /// fnWake is called when something comes into the empty box.
  explicit ClOutbox(std::function<void()> fnWake) : m_fnWake(std::move(fnWake)) {}

  void Put(std::shared_ptr<ClFrame> pFrame);
  void PutFacts(std::string sFacts);
  void PutAction(std::function<void()> fnAction);
  /// Empties the box into oContent, whose own blocks are used again.
  void Take(StContent& oContent);

 private:
  static constexpr size_t cnMostFacts = 64;
  template <typename TChange>
  void Change(TChange fnChange);

  const std::function<void()> m_fnWake;
  std::mutex m_oMutex;
  bool m_bAwake = false;  ///< the network's thread will look; m_oMutex
  StContent m_oContent;   ///< m_oMutex
};

}  // namespace Serve
