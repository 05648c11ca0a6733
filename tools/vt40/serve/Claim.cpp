// The rules of the claim.
#include "Claim.h"

#include "Gate.h"
#include "Http.h"

namespace Serve {
namespace {

constexpr unsigned int cnSecretBytes = 16;

}  // namespace

std::string ClClaim::Take(const std::string& sName, Clock::time_point tNow) {
  Expire(tNow);
  if (IsHeld())
    throw ClServiceError(409, "CLAIMED", "\"" + m_sHolder + "\" holds the scanner",
                         "Ask for it with POST /api/claim/ask, or wait until it is given back.");
  m_sClaim = RandomText(cnSecretBytes);
  m_sHolder = sName;
  m_nClient = 0;
  m_tLast = tNow;
  return m_sClaim;
}

void ClClaim::Check(const std::string& sClaim, Clock::time_point tNow) {
  Expire(tNow);
  if (!IsHeld())
    throw ClServiceError(409, "CLAIM_NEEDED", "nobody holds the scanner",
                         "Take it with POST /api/claim, and send what that answers as the field Claim.");
  if (!IsSame(sClaim, m_sClaim))
    throw ClServiceError(409, "CLAIMED", "\"" + m_sHolder + "\" holds the scanner",
                         "Ask for it with POST /api/claim/ask, or wait until it is given back.");
  m_tLast = tNow;
}

void ClClaim::Bind(const std::string& sClaim, unsigned int nClient, Clock::time_point tNow) {
  Check(sClaim, tNow);
  m_nClient = nClient;
}

void ClClaim::Unbind(unsigned int nClient, Clock::time_point tNow) {
  if (!IsOf(nClient)) return;
  // A page that is loaded anew comes back with its claim.
  m_nClient = 0;
  m_tLast = tNow;
}

std::string ClClaim::HandOver(const std::string& sName, unsigned int nClient, Clock::time_point tNow) {
  Release();
  std::string sClaim = Take(sName, tNow);
  m_nClient = nClient;
  return sClaim;
}

void ClClaim::Release() {
  m_sClaim.clear();
  m_sHolder.clear();
  m_nClient = 0;
}

bool ClClaim::Expire(Clock::time_point tNow) {
  if (!IsHeld() || m_nClient != 0 || tNow - m_tLast < m_tLife) return false;
  Release();
  return true;
}

}  // namespace Serve
