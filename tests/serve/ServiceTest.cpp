// The service as its clients see it; what they do stands in the scripts check-misuse and check-service.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

namespace {

/// The exit code of a script, which gets the tool as its last argument.
int CodeOf(const std::string& sScript) {
  const int nStatus =
      std::system((std::string(KLV_CHECKS) + "/" + sScript + " " KLV_RUN " " KLV_TOOL).c_str());
  return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
}

TEST(Service, AnswersMisuseAndGoesOn) {
  EXPECT_EQ(CodeOf("check-misuse"), 0);
}

TEST(Service, IsHeldByOneClientAtATime) {
  EXPECT_EQ(CodeOf("check-service claim"), 0);
}

TEST(Service, CapturesInEachMode) {
  EXPECT_EQ(CodeOf("check-service captures"), 0);
}

TEST(Service, LaysFingersWhereTheyAreDragged) {
  EXPECT_EQ(CodeOf("check-service platen"), 0);
}

TEST(Service, OpensAScannerAgainThatWasUnplugged) {
  EXPECT_EQ(CodeOf("check-service unplugging"), 0);
}

TEST(Service, KeepsTheRateOfAClientBesideSlowOnes) {
  EXPECT_EQ(CodeOf("check-service slow-client"), 0);
}

}  // namespace
