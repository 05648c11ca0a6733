// Errors, exceptions and what is made of them where they end.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "MXTools/ErrorTable.h"
#include "MXTools/Failure.h"
#include "Raised.h"

namespace {

/// While it is set, every allocation that may fail without an exception fails.
bool s_bOutOfMemory = false;

}  // namespace

void* operator new[](std::size_t nBytes, const std::nothrow_t&) noexcept {
  if (s_bOutOfMemory) return nullptr;
  // The array form, whose blocks are those that delete[] takes.
  try {
    return operator new[](nBytes);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

namespace {

TEST(ErrorTable, TheFirstRowAnswersANumberAndEveryRowItsName) {
  EXPECT_STREQ(GetErrorDescriptionIntern(0), "No errors occurred.");
  EXPECT_STREQ(GetKlvErrorInfo(-44).szName, "XSC_ERROR_INVALID_PARAMETER");
  EXPECT_STREQ(GetKlvErrorInfo("XSC_ERROR_PARAM_INVALID").szName, "XSC_ERROR_PARAM_INVALID");
  EXPECT_EQ(GetKlvErrorInfo(L"XSC_ERROR_ROLLED_SHIFTED").nNumber, -801);
  EXPECT_EQ(GetKlvErrorInfo("no such name").nNumber, 2147483647);
  EXPECT_STREQ(GetErrorDescriptionIntern(4711), "Unknown error code.");
}

TEST(Exception, TheCommentIsTheTablesMessageAndTheText) {
  ClException oFirst("x", -101, true, "file", 1);
  EXPECT_STREQ(oFirst.What(), "Internal error.\nx");
  ClException oCopy(oFirst);
  EXPECT_NE(oCopy.What(), oFirst.What()) << "a private copy of its own";
  ClException oPlain(ClExKelvarin(-60, "file", 1));
  oCopy = oPlain;
  EXPECT_EQ(oCopy.Number(), -60);
  oCopy = oFirst;
  const ClException& oItself = oCopy;
  oCopy = oItself;
  EXPECT_STREQ(oCopy.What(), "Internal error.\nx");
}

TEST(Exception, AFailureWithoutRoomForItsTextIsAFailureForWantOfMemory) {
  s_bOutOfMemory = true;
  const long nNumber = NumberOf([] { KLV_RAISE(ClException, "x", -101); });
  s_bOutOfMemory = false;
  EXPECT_EQ(nNumber, -102);
}

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
