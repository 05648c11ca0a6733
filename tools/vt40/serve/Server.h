// The network side of the service: connections, and the loop that serves them.
#pragma once

#include <memory>
#include <string>

namespace Serve {

class ClService;

/// Listens on one address and serves it in one thread, so that nothing of the service needs a lock.
///
/// Threads  thread-bound, but for Wake.
class ClServer {
 public:
  /// Listens from now on; connections wait until Run. Port 0 takes a free one.
  /// Errors: ClToolError eExitUsage for what is no address, eExitFailure when it cannot be listened on.
  ClServer(const std::string& sHost, unsigned short nPort);
  ClServer(const ClServer&) = delete;
  ClServer& operator=(const ClServer&) = delete;
  ~ClServer();

  unsigned short Port() const;
  /// Serves until a signal comes, and ends the service then; false when the scanner's thread hangs.
  bool Run(ClService& oService);
  /// Makes the loop call the service's Drain. Threads: any, also before and after Run.
  void Wake();

 private:
  struct StNetwork;
  std::unique_ptr<StNetwork> m_pNetwork;
};

}  // namespace Serve
