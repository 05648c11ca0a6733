// Who holds the scanner, and for how long.
#include "serve/Claim.h"

#include <gtest/gtest.h>

#include <string>

#include "serve/Http.h"

namespace {

using namespace std::chrono_literals;
using Serve::ClClaim;

const ClClaim::Clock::time_point s_tStart{1000s};

/// The name of the error by which it is refused; "" when it is not.
std::string Refused(ClClaim& oClaim, const std::string& sClaim, ClClaim::Clock::time_point tNow) {
  try {
    oClaim.Check(sClaim, tNow);
  } catch (const Serve::ClServiceError& oError) {
    return oError.Name();
  }
  return "";
}

TEST(Claim, LivesAsLongAsItIsUsedOrItsWebSocketIsOpen) {
  ClClaim oClaim(10s);
  EXPECT_EQ(Refused(oClaim, "", s_tStart), "CLAIM_NEEDED");
  const std::string sClaim = oClaim.Take("A", s_tStart);
  EXPECT_EQ(Refused(oClaim, "", s_tStart), "CLAIMED");
  EXPECT_EQ(Refused(oClaim, sClaim, s_tStart + 9999ms), "");
  EXPECT_FALSE(oClaim.Expire(s_tStart + 19998ms));
  oClaim.Bind(sClaim, 7, s_tStart + 15s);
  EXPECT_TRUE(oClaim.IsOf(7));
  EXPECT_FALSE(oClaim.Expire(s_tStart + 3600s));
  oClaim.Unbind(8, s_tStart + 3600s);
  EXPECT_TRUE(oClaim.IsOf(7));
  oClaim.Unbind(7, s_tStart + 3600s);
  EXPECT_FALSE(oClaim.Expire(s_tStart + 3609999ms));
  EXPECT_TRUE(oClaim.Expire(s_tStart + 3610s));
  EXPECT_EQ(Refused(oClaim, sClaim, s_tStart + 3610s), "CLAIM_NEEDED");
}

TEST(Claim, IsTakenByOneAndKeptFromTheOneWhoHandedItOver) {
  ClClaim oClaim(10s);
  const std::string sFirst = oClaim.Take("A", s_tStart);
  EXPECT_THROW(oClaim.Take("B", s_tStart + 1s), Serve::ClServiceError);
  const std::string sSecond = oClaim.HandOver("B", 3, s_tStart + 1s);
  EXPECT_NE(sFirst, sSecond);
  EXPECT_EQ(oClaim.Holder(), "B");
  EXPECT_TRUE(oClaim.IsOf(3));
  EXPECT_EQ(Refused(oClaim, sFirst, s_tStart + 1s), "CLAIMED");
  EXPECT_EQ(Refused(oClaim, sSecond, s_tStart + 1s), "");
  // A claim whose time is over is free for the next, without a look at the clock in between.
  oClaim.Unbind(3, s_tStart + 2s);
  EXPECT_NE(oClaim.Take("C", s_tStart + 12s), sSecond);
}

}  // namespace
