// Who may talk to the service.
#include "serve/Gate.h"

#include <gtest/gtest.h>

namespace {

using namespace Serve;

/// The status by which a request with that host and origin is refused; 0 when it is not.
unsigned int Status(const ClGate& oGate, const std::string& sHost, const std::string& sOrigin = "") {
  StRequest oRequest;
  oRequest.sHost = sHost;
  oRequest.sOrigin = sOrigin;
  try {
    oGate.CheckHost(oRequest);
  } catch (const ClServiceError& oError) {
    return oError.Status();
  }
  return 0;
}

TEST(Gate, TakesItsOwnHostsAndOriginsOnly) {
  const ClGate oGate("127.0.0.1", 8040, "");
  for (const char* szHost : {"127.0.0.1:8040", "localhost:8040", "LOCALHOST:8040", "[::1]:8040"}) {
    EXPECT_EQ(Status(oGate, szHost), 0u) << szHost;
    EXPECT_EQ(Status(oGate, szHost, std::string("http://") + szHost), 0u) << szHost;
  }
  for (const char* szHost : {"", "127.0.0.1", "127.0.0.1:80", "127.0.0.2:8040", "localhost.example:8040",
                             "localhost:8040.example", "::1:8040"})
    EXPECT_EQ(Status(oGate, szHost), 403u) << szHost;
  for (const char* szOrigin : {"null", "https://localhost:8040", "http://localhost", "http://127.0.0.1:8040",
                               "http://localhost:8040.example", "http://"})
    EXPECT_EQ(Status(oGate, "localhost:8040", szOrigin), 403u) << szOrigin;
}

TEST(Gate, TakesAnyAddressButNoNameWhereItListensOnAll) {
  for (const char* szListens : {"0.0.0.0", "::"}) {
    const ClGate oGate(szListens, 8040, "x");
    EXPECT_EQ(Status(oGate, "192.0.2.1:8040"), 0u);
    EXPECT_EQ(Status(oGate, "[2001:db8::1]:8040"), 0u);
    for (const char* szHost : {"station.example:8040", "192.0.2.1:8041", "192.0.2:8040", "[]:8040", ":8040"})
      EXPECT_EQ(Status(oGate, szHost), 403u) << szHost;
  }
  EXPECT_EQ(Status(ClGate("192.0.2.1", 8040, "x"), "192.0.2.2:8040"), 403u);
}

TEST(Gate, ComparesWholeTokens) {
  EXPECT_TRUE(IsSame("", ""));
  EXPECT_TRUE(IsSame("abc", "abc"));
  for (const char* szOther : {"", "ab", "abcd", "bbc", "acc", "abd"})
    EXPECT_FALSE(IsSame("abc", szOther)) << szOther;
  EXPECT_EQ(RandomText(16).size(), 32u);
  EXPECT_NE(RandomText(16), RandomText(16));
}

TEST(Gate, KnowsWhichAddressesOthersReach) {
  for (const char* szHost : {"localhost", "127.0.0.1", "127.1.2.3", "::1"})
    EXPECT_TRUE(IsLoopback(szHost)) << szHost;
  for (const char* szHost : {"0.0.0.0", "::", "192.0.2.1", "126.0.0.1", "128.0.0.1", "station", ""})
    EXPECT_FALSE(IsLoopback(szHost)) << szHost;
}

}  // namespace
