// Time-outs while somebody sets the wall clock: this program gives the library's reads of it an answer of its
// own.
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <thread>
#include <vector>

#include "KelvarinLiveScannerVT40.h"
#include "SimulatedScanner.h"

namespace {

/// Seconds by which the wall clock is wrong.
std::atomic<long> s_nWrong{0};

}  // namespace

// The library and those that it uses find these before the system's.
extern "C" {

int clock_gettime(clockid_t nClock, timespec* pNow) noexcept {
  const long nResult = syscall(SYS_clock_gettime, nClock, pNow);
  if (nClock == CLOCK_REALTIME) pNow->tv_sec += s_nWrong;
  return static_cast<int>(nResult);
}

int gettimeofday(timeval* pNow, void*) noexcept {
  timespec oNow = {};
  clock_gettime(CLOCK_REALTIME, &oNow);
  *pNow = {oNow.tv_sec, static_cast<suseconds_t>(oNow.tv_nsec / 1000)};
  return 0;
}

time_t time(time_t* pNow) noexcept {
  timespec oNow = {};
  clock_gettime(CLOCK_REALTIME, &oNow);
  if (pNow != nullptr) *pNow = oNow.tv_sec;
  return oNow.tv_sec;
}

}  // extern "C"

namespace {

constexpr long cnHour = 3600;
constexpr long cnTwentyYears = 20L * 365 * 24 * cnHour;

/// Sets the wall clock forth and back until it goes out of scope.
class ClUnsteadyClock {
 public:
  ~ClUnsteadyClock() {
    m_bStop = true;
    m_oThread.join();
    s_nWrong = 0;
  }

 private:
  std::atomic<bool> m_bStop{false};
  std::thread m_oThread{[this] {
    for (size_t n = 0; !m_bStop; ++n) {
      constexpr long anSteps[] = {cnHour, -cnHour, cnTwentyYears, 0, -cnTwentyYears};
      s_nWrong = anSteps[n % std::size(anSteps)];
      std::this_thread::sleep_for(std::chrono::milliseconds(7));
    }
  }};
};

using ImageCall = long(void*, void*, double*, unsigned char*, long*);

struct StWait {
  const char* szSerial;
  KLV_VT40_CAPTURE_MODE_TAGS eMode;
  ImageCall* pfnCall;
  double dSeconds;  ///< after which the call gives up
};

/// How long the call waits for a picture that does not come, in seconds.
double TimeOut(const StWait& oWait) {
  void* h = nullptr;
  EXPECT_EQ(LS_VT40OpenScanner(oWait.szSerial, &h), 0);
  EXPECT_EQ(VTSimHoldSequences(oWait.szSerial, 1), 0);
  EXPECT_EQ(LS_VT40SetCaptureMode(h, oWait.eMode), 0);
  std::vector<unsigned char> aRoom(1600 * 1600);
  double dScore = 0.0;
  unsigned char bDone = 0;
  long nResult = 0;
  const auto tBegin = std::chrono::steady_clock::now();
  EXPECT_EQ(oWait.pfnCall(h, aRoom.data(), &dScore, &bDone, &nResult), KLV_ERROR_DISCONNECTED);
  const std::chrono::duration<double> oTaken = std::chrono::steady_clock::now() - tBegin;
  EXPECT_EQ(VTSimHoldSequences(oWait.szSerial, 0), 0);
  EXPECT_EQ(LS_VT40CloseScanner(&h), 0);
  return oTaken.count();
}

TEST(WallClock, ItsStepsNeitherEndAWaitNorProlongIt) {
  constexpr StWait aWaits[] = {{"VT40-AB0001", KLV_VT40_CAPTURE_MODE_PREVIEW, LS_VT40GetPreviewImage, 15.0},
                               {"VT40-AB0002", KLV_VT40_CAPTURE_MODE_FULL, LS_VT40GetImage, 10.0},
                               {"VT40-AB0003", KLV_VT40_CAPTURE_MODE_ROLL, LS_VT40GetRollImage, 5.0}};
  // A wait by the wall clock may take twenty years.
  alarm(40);
  LoadScene(
      R"({"scanners": [{"serial": "VT40-AB0001"}, {"serial": "VT40-AB0002"}, {"serial": "VT40-AB0003"}]})");
  ASSERT_EQ(LS_VT40Initialize(nullptr), 0);
  {
    const ClUnsteadyClock oClock;
    std::vector<std::thread> aThreads;
    for (const StWait& oWait : aWaits)
      aThreads.emplace_back(
          [&oWait] { EXPECT_NEAR(TimeOut(oWait), oWait.dSeconds + 0.5, 1.0) << oWait.szSerial; });
    for (std::thread& oThread : aThreads) oThread.join();
  }
  EXPECT_EQ(LS_VT40Uninitialize(), 0);
  alarm(0);
}

}  // namespace
