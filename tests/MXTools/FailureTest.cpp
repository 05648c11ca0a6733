// Failures as numbers and texts, and what is undone on their way out.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "MXTools/Failure.h"
#include "Raised.h"

namespace {

template <typename TRaise>
std::pair<long, std::string> Handled(TRaise&& fnRaise) {
  try {
    fnRaise();
  } catch (...) {
    return {Klv::FailureNumber(), Klv::FailureText()};
  }
  return {0, ""};
}

TEST(Failure, HasTheNumberAndTheTextOfWhatIsBeingHandled) {
  using Failure = std::pair<long, std::string>;
  EXPECT_EQ(Handled([] { throw ClException(-44, false, "", 0); }).first, -44);
  EXPECT_EQ(Handled([] { throw std::bad_alloc(); }).first, -102);
  EXPECT_EQ(Handled([] { throw std::runtime_error("a reason"); }), Failure(-721, "a reason"));
  EXPECT_EQ(Handled([] { throw 1; }).first, -722);
  EXPECT_NE(Handled([] { throw 1; }).second, "");
}

TEST(Failure, AResultThatIsNotZeroIsRaised) {
  EXPECT_EQ(NumberOf([] { KLV_CHECK(0); }), 0);
  EXPECT_EQ(NumberOf([] { KLV_CHECK(-7); }), -7);
}

TEST(Undo, HappensOnlyOnTheWayOutWithAFailureAndNeverReplacesIt) {
  int nUndone = 0;
  const auto Leave = [&](long nNumber) {
    return NumberOf([&] {
      TpUndo oUndo([&] {
        ++nUndone;
        KLV_RAISE_NUMBER(-1);
      });
      KLV_CHECK(nNumber);
      oUndo.Dismiss();
    });
  };
  EXPECT_EQ(Leave(0), 0);
  EXPECT_EQ(nUndone, 0);
  EXPECT_EQ(Leave(-60), -60);
  EXPECT_EQ(nUndone, 1);
}

}  // namespace
