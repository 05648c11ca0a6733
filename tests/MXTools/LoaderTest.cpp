// Loading of libraries, the search for them, and the shared table of functions.
#include <gmock/gmock.h>

#include <boost/thread/barrier.hpp>
#include <boost/thread/thread.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "MXTools/TpDynamicLibraryLoaderBase.h"
#include "Raised.h"
#include "TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Pair;

/// Binds two required functions and one optional one.
class ClTestWrapper : public TpDynamicLibraryLoaderBase<ClTestWrapper> {
 public:
  ClTestWrapper() = default;
  ClTestWrapper(const std::string& szPath, const char* szName) { OpenLibrary(szPath.c_str(), szName); }

  using Function = int (*)();
  static inline Function KlvTestRequired = nullptr, KlvTestSecond = nullptr, KlvTestOptional = nullptr;
  static inline int sm_nBindings = 0;

 protected:
  void BindFunctions() override {
    ++sm_nBindings;
    GetFunction(KlvTestRequired, "KlvTestRequired");
    GetOptionalFunction(KlvTestOptional, "KlvTestOptional");
    GetFunction(KlvTestSecond, "KlvTestSecond");
  }
};

class Loader : public testing::Test {
 protected:
  Loader() {
    for (const char* szDirectory : {"one", "two", "none"})
      fs::create_directory(m_oDirectory.Path(szDirectory));
  }
  void Install(const char* szLibrary, const std::string& szAs) const {
    fs::copy_file(szLibrary, m_oDirectory.Path(szAs));
  }
  std::string List(const std::vector<std::string>& aDirectories) const {
    std::string szList;
    for (const std::string& szDirectory : aDirectories) szList += m_oDirectory.Path(szDirectory) + ";";
    return szList;
  }
  static bool NothingIsBound() {
    return ClTestWrapper::ReferenceCount() == 0 && ClTestWrapper::KlvTestRequired == nullptr &&
           ClTestWrapper::KlvTestSecond == nullptr && ClTestWrapper::KlvTestOptional == nullptr;
  }
  ClTemporaryDirectory m_oDirectory;
};

TEST_F(Loader, TheFirstDirectoryThatHasTheLibraryWins) {
  Install(KLV_LIBRARY_20, "two/lib.so");
  {
    const ClTestWrapper oWrapper(List({"none", "one", "two"}), "lib.so");
    EXPECT_EQ(ClTestWrapper::KlvTestRequired(), 20);
    EXPECT_EQ(ClTestWrapper::KlvTestOptional(), 22);
  }
  EXPECT_TRUE(NothingIsBound());
  Install(KLV_LIBRARY_10, "one/lib.so");
  const ClTestWrapper oWrapper(List({"none", "one", "two"}), "lib.so");
  EXPECT_EQ(ClTestWrapper::KlvTestRequired(), 10);
}

TEST_F(Loader, ASecondUserSharesTheFirstLoadAndRebindsNothing) {
  Install(KLV_LIBRARY_10, "one/lib.so");
  Install(KLV_LIBRARY_20, "two/lib.so");
  ClTestWrapper oFirst(List({"one"}), "lib.so");
  const int nBindings = ClTestWrapper::sm_nBindings;
  ClTestWrapper oSecond(List({"two"}), "lib.so");
  EXPECT_EQ(ClTestWrapper::sm_nBindings, nBindings);
  EXPECT_EQ(ClTestWrapper::KlvTestRequired(), 10);
  oFirst.OpenLibrary(nullptr, "anything");
  EXPECT_EQ(ClTestWrapper::ReferenceCount(), 2u) << "one object holds one reference";
  oFirst.CloseLibrary();
  oFirst.CloseLibrary();
  ClTestWrapper().CloseLibrary();
  EXPECT_EQ(ClTestWrapper::ReferenceCount(), 1u) << "who holds none gives none back";
  EXPECT_EQ(ClTestWrapper::KlvTestSecond(), 11);
  oSecond.CloseLibrary();
  EXPECT_TRUE(NothingIsBound());
}

TEST_F(Loader, AMissingOptionalFunctionIsNullAndAMissingRequiredOneUndoesAll) {
  Install(KLV_LIBRARY_WITHOUT_OPTIONAL, "one/lib.so");
  {
    const ClTestWrapper oWrapper(List({"one"}), "lib.so");
    EXPECT_EQ(ClTestWrapper::KlvTestOptional, nullptr);
    EXPECT_EQ(ClTestWrapper::KlvTestSecond(), 31);
  }
  Install(KLV_LIBRARY_WITHOUT_SECOND, "two/lib.so");
  ClTestWrapper oWrapper;
  for (int nTry = 0; nTry < 2; ++nTry) {
    EXPECT_THAT(Raised([&] { oWrapper.OpenLibrary(List({"two"}).c_str(), "lib.so"); }),
                Pair(-206, AllOf(EndsWith("\nKlvTestSecond"), HasSubstr("undefined symbol"))));
    EXPECT_FALSE(oWrapper.IsOpen());
    EXPECT_TRUE(NothingIsBound());
  }
  oWrapper.OpenLibrary(List({"one"}).c_str(), "lib.so");
  EXPECT_EQ(ClTestWrapper::KlvTestRequired(), 30) << "a good library is loaded afterwards";
}

TEST_F(Loader, ALibraryThatIsNowhereOrIsNoneRaisesTheLinkersText) {
  fs::copy_file("/proc/self/cmdline", m_oDirectory.Path("one/text.so"), fs::copy_options::none);
  for (const char* szName : {"text.so", "libklv-that-is-nowhere.so"}) {
    EXPECT_THAT(Raised([&] { ClTestWrapper(List({"one"}), szName); }), Pair(-200, EndsWith(szName)));
    EXPECT_TRUE(NothingIsBound());
  }
}

TEST_F(Loader, OpeningAndClosingFromManyThreadsEndsWithNothingBound) {
  Install(KLV_LIBRARY_10, "one/lib.so");
  const std::string szList = List({"one"});
  boost::barrier oStart(4);
  boost::thread_group oThreads;
  for (int nThread = 0; nThread < 4; ++nThread) {
    oThreads.create_thread([&] {
      oStart.wait();
      for (int nRound = 0; nRound < 200; ++nRound) {
        const ClTestWrapper oWrapper(szList, "lib.so");
        if (ClTestWrapper::KlvTestRequired() != 10) ADD_FAILURE();
      }
    });
  }
  oThreads.join_all();
  EXPECT_TRUE(NothingIsBound());
}

TEST_F(Loader, TheAbsolutePathOfANameIsFoundOrRefused) {
  Install(KLV_LIBRARY_10, "two/lib.so");
  const auto Find = [&](const char* szName, unsigned int nSize) -> std::string {
    char szResult[FileSystem::cnMaxPath] = "";
    const long nNumber = NumberOf([&] {
      ClDynamicLibraryLoader::FindAbsoluteLibraryPath(List({"one", "two"}).c_str(), szName, szResult, nSize);
    });
    return nNumber == 0 ? szResult : std::to_string(nNumber);
  };
  EXPECT_EQ(Find("lib.so", 2048), m_oDirectory.Path("two/lib.so"));
  EXPECT_EQ(Find("lib.so", 10), "-21");
  for (const char* szAbsolute : {"/no/where.so", "~/where.so", "C:where.dll"})
    EXPECT_EQ(Find(szAbsolute, 2048), szAbsolute);
  EXPECT_EQ(Find("two/lib.so", 2048), "-101");
  EXPECT_EQ(Find("other.so", 2048), "-200");
}

TEST_F(Loader, ALibraryReportsItsPathAndThisModuleItsOwn) {
  Install(KLV_LIBRARY_10, "one/lib.so");
  const std::string szPath = m_oDirectory.Path("one/lib.so");
  ClDynamicLibrary oLibrary(szPath.c_str());
  char szFound[FileSystem::cnMaxPath];
  oLibrary.GetPathName(szFound, sizeof(szFound));
  EXPECT_EQ(szFound, szPath);
  EXPECT_THROW(oLibrary.GetPathName(szFound, static_cast<unsigned int>(szPath.size())), ClExKelvarin);
  oLibrary.Close();
  EXPECT_FALSE(oLibrary.IsOpen());
  ClDynamicLibrary::GetPathNameModule(nullptr, szFound, sizeof(szFound));
  EXPECT_THAT(szFound, HasSubstr("test_MXTools_Loader"));
  int nOnTheStack = 0;
  EXPECT_THROW(ClDynamicLibrary::GetPathNameModule(&nOnTheStack, szFound, sizeof(szFound)),
               ClExDynamicLibraryLoadFail);
}

}  // namespace
