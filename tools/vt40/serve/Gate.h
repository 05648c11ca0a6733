// Who may talk to the service: addresses, origins and the token.
#pragma once

#include <string>
#include <vector>

#include "Http.h"

namespace Serve {

/// A random text of so many bytes in hexadecimal digits. Errors: ClToolError when the system has none.
std::string RandomText(unsigned int nBytes);
/// Compares in a time that depends on the lengths alone.
bool IsSame(const std::string& sA, const std::string& sB);
/// Whether an address reaches this machine alone.
bool IsLoopback(const std::string& sHost);
/// Host and port as they stand in a URL.
std::string Authority(const std::string& sHost, unsigned short nPort);

/// Judges requests by the address that the service was started with.
///
/// A page of another origin in the user's browser can send requests to this machine, and a name of another
/// site can be made to point to it: the fields Host and Origin show both.
///
/// Errors  ClServiceError: 403 for a foreign host or origin, 401 for a missing or wrong token.
class ClGate {
 public:
  ClGate(const std::string& sHost, unsigned short nPort, std::string sToken);

  void CheckHost(const StRequest& oRequest) const;
  /// Of a call of the interface, "Authorization: Bearer TOKEN".
  void CheckToken(const StRequest& oRequest) const;
  /// Of a WebSocket: the sub-protocol "token.TOKEN".
  void CheckSocketToken(const StRequest& oRequest) const;

 private:
  bool IsOwn(const std::string& sAuthority) const;

  std::vector<std::string> m_aAuthorities;
  std::string m_sPort;
  bool m_bAnyAddress;
  std::string m_sToken;
};

/// Whether a list of sub-protocols has the service's own.
bool HasProtocol(const std::string& sProtocols);

}  // namespace Serve
