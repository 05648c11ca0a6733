// The checks, and what random texts are made of.
#include "Gate.h"

#include <arpa/inet.h>
#include <sys/random.h>

#include <algorithm>
#include <sstream>

namespace Serve {
namespace {

/// Parts of a list of a header field, without blanks round them.
std::vector<std::string> PartsOf(const std::string& sList) {
  std::vector<std::string> aParts;
  std::istringstream oList(sList);
  for (std::string sPart; std::getline(oList, sPart, ',');) {
    const size_t nBegin = sPart.find_first_not_of(" \t");
    if (nBegin == std::string::npos) continue;
    aParts.push_back(sPart.substr(nBegin, sPart.find_last_not_of(" \t") + 1 - nBegin));
  }
  return aParts;
}

std::string Lower(std::string sText) {
  for (char& c : sText)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return sText;
}

/// Whether it is an address and no name, which could be made to point anywhere.
bool IsAddress(const std::string& sHost) {
  in6_addr oAddress{};
  const bool bBrackets = sHost.size() > 2 && sHost.front() == '[' && sHost.back() == ']';
  return bBrackets ? inet_pton(AF_INET6, sHost.substr(1, sHost.size() - 2).c_str(), &oAddress) == 1
                   : inet_pton(AF_INET, sHost.c_str(), &oAddress) == 1;
}

ClServiceError NoToken() {
  return {401, "UNAUTHORIZED", "the token is missing or wrong",
          "Send the token that vt40 serve has printed, as Authorization: Bearer TOKEN."};
}

}  // namespace

std::string RandomText(unsigned int nBytes) {
  std::vector<unsigned char> aBytes(nBytes);
  if (getrandom(aBytes.data(), nBytes, 0) != static_cast<ssize_t>(nBytes))
    throw ClToolError(eExitFailure, "the system gives no random numbers");
  std::string sText;
  for (const unsigned char n : aBytes) {
    sText += "0123456789abcdef"[n >> 4];
    sText += "0123456789abcdef"[n & 15];
  }
  return sText;
}

bool IsSame(const std::string& sA, const std::string& sB) {
  if (sA.size() != sB.size()) return false;
  unsigned int nDifferent = 0;
  for (size_t n = 0; n < sA.size(); ++n) nDifferent |= static_cast<unsigned char>(sA[n] ^ sB[n]);
  return nDifferent == 0;
}

bool IsLoopback(const std::string& sHost) {
  in_addr oAddress{};
  in6_addr oAddress6{};
  if (sHost == "localhost") return true;
  if (inet_pton(AF_INET, sHost.c_str(), &oAddress) == 1) return ntohl(oAddress.s_addr) >> 24 == 127;
  return inet_pton(AF_INET6, sHost.c_str(), &oAddress6) == 1 && IN6_IS_ADDR_LOOPBACK(&oAddress6) != 0;
}

std::string Authority(const std::string& sHost, unsigned short nPort) {
  const std::string sName = sHost.find(':') == std::string::npos ? sHost : "[" + sHost + "]";
  return sName + ":" + std::to_string(nPort);
}

ClGate::ClGate(const std::string& sHost, unsigned short nPort, std::string sToken)
    : m_sPort(":" + std::to_string(nPort)),
      m_bAnyAddress(sHost == "0.0.0.0" || sHost == "::"),
      m_sToken(std::move(sToken)) {
  for (const std::string& sName :
       {sHost, std::string("127.0.0.1"), std::string("localhost"), std::string("::1")})
    m_aAuthorities.push_back(Lower(Authority(sName, nPort)));
}

bool ClGate::IsOwn(const std::string& sAuthority) const {
  const std::string sName = Lower(sAuthority);
  if (std::find(m_aAuthorities.begin(), m_aAuthorities.end(), sName) != m_aAuthorities.end()) return true;
  // Who listens on all addresses of the machine is reached by each of them.
  return m_bAnyAddress && sName.size() > m_sPort.size() &&
         sName.compare(sName.size() - m_sPort.size(), std::string::npos, m_sPort) == 0 &&
         IsAddress(sName.substr(0, sName.size() - m_sPort.size()));
}

void ClGate::CheckHost(const StRequest& oRequest) const {
  if (!IsOwn(oRequest.sHost))
    throw ClServiceError(403, "FOREIGN_HOST", "this service is not \"" + oRequest.sHost + "\"",
                         "Use the address that vt40 serve has printed.");
  const std::string sScheme = "http://";
  if (oRequest.sOrigin.empty()) return;
  if (oRequest.sOrigin.compare(0, sScheme.size(), sScheme) != 0 ||
      Lower(oRequest.sOrigin.substr(sScheme.size())) != Lower(oRequest.sHost))
    throw ClServiceError(403, "FOREIGN_ORIGIN",
                         "pages of \"" + oRequest.sOrigin + "\" may not call this service",
                         "Call it from its own page, or from a program that sends no Origin.");
}

void ClGate::CheckToken(const StRequest& oRequest) const {
  if (!m_sToken.empty() && !IsSame(oRequest.sAuthorization, "Bearer " + m_sToken)) throw NoToken();
}

void ClGate::CheckSocketToken(const StRequest& oRequest) const {
  if (m_sToken.empty()) return;
  bool bRight = false;
  for (const std::string& sPart : PartsOf(oRequest.sProtocols)) bRight |= IsSame(sPart, "token." + m_sToken);
  if (!bRight) throw NoToken();
}

bool HasProtocol(const std::string& sProtocols) {
  const std::vector<std::string> aParts = PartsOf(sProtocols);
  return std::find(aParts.begin(), aParts.end(), "vt40") != aParts.end();
}

}  // namespace Serve
