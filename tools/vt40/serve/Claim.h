// Who holds the scanner.
#pragma once

#include <chrono>
#include <string>

namespace Serve {

/// At most one client holds the scanner. A claim ends when it is given back, handed over, or when nothing was
/// heard of its client for a while: it lives as long as the WebSocket that has named it, and after each call
/// with it for the time that the constructor takes.
///
/// Threads  thread-bound.
/// Errors   ClServiceError 409: CLAIMED by another, CLAIM_NEEDED when nobody holds it.
class ClClaim {
 public:
  using Clock = std::chrono::steady_clock;

  explicit ClClaim(Clock::duration tLife) : m_tLife(tLife) {}

  /// Takes it for a name and returns the secret by which its holder is known.
  std::string Take(const std::string& sName, Clock::time_point tNow);
  /// Refuses whoever does not hold it.
  void Check(const std::string& sClaim, Clock::time_point tNow);
  /// Ties it to a WebSocket, when the secret is the right one.
  void Bind(const std::string& sClaim, unsigned int nClient, Clock::time_point tNow);
  /// A WebSocket has gone.
  void Unbind(unsigned int nClient, Clock::time_point tNow);
  /// Gives it to the client of another WebSocket, with a new secret, which is returned.
  std::string HandOver(const std::string& sName, unsigned int nClient, Clock::time_point tNow);
  void Release();
  /// Ends it when its time has come; true when it has.
  bool Expire(Clock::time_point tNow);

  bool IsHeld() const { return !m_sClaim.empty(); }
  const std::string& Holder() const { return m_sHolder; }
  /// Whether it is tied to that WebSocket.
  bool IsOf(unsigned int nClient) const { return IsHeld() && m_nClient == nClient; }

 private:
  const Clock::duration m_tLife;
  std::string m_sClaim;  ///< empty: nobody holds it
  std::string m_sHolder;
  unsigned int m_nClient = 0;  ///< 0: no WebSocket
  Clock::time_point m_tLast;
};

}  // namespace Serve
