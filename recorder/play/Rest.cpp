// The kernel says of each thread whether it runs, or would if a processor were free.
#include "play/Rest.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

namespace Recording {
namespace {

struct ClCloseFolder {
  void operator()(DIR* p) const { closedir(p); }
};

/// True for a thread that runs, can run, or waits for a disk; false when it sleeps, or is gone.
bool IsBusy(const char* szThread) {
  const int nFile =
      open((std::string("/proc/self/task/") + szThread + "/stat").c_str(), O_RDONLY | O_CLOEXEC);
  if (nFile < 0) return false;
  char szStat[256];
  const ssize_t nRead = read(nFile, szStat, sizeof szStat - 1);
  close(nFile);
  if (nRead <= 0) return false;
  szStat[nRead] = '\0';
  // The name, which may hold anything, stands in brackets before the state.
  const char* szState = std::strrchr(szStat, ')');
  return szState != nullptr && szState[1] == ' ' && (szState[2] == 'R' || szState[2] == 'D');
}

bool IsAnyBusy() {
  const std::unique_ptr<DIR, ClCloseFolder> pFolder(opendir("/proc/self/task"));
  if (pFolder == nullptr) return false;
  const long nOwn = syscall(SYS_gettid);
  while (const dirent* pEntry = readdir(pFolder.get())) {
    if (pEntry->d_name[0] == '.' || std::atol(pEntry->d_name) == nOwn) continue;
    if (IsBusy(pEntry->d_name)) return true;
  }
  return false;
}

}  // namespace

void WaitForRest(std::chrono::milliseconds oLongest) {
  const auto oEnd = std::chrono::steady_clock::now() + oLongest;
  // One look goes from thread to thread: a second one finds those that were woken meanwhile by one that it
  // had seen busy later.
  for (int nQuiet = 0; nQuiet < 2;) {
    if (std::chrono::steady_clock::now() >= oEnd) return;
    nQuiet = IsAnyBusy() ? 0 : nQuiet + 1;
    if (nQuiet == 0) std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
}

}  // namespace Recording
