// Keeps the prints that a process has made, so that scenes that share them pay once.
#include "scene/PrintCache.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <map>
#include <mutex>
#include <tuple>

#include "scene/PrintFile.h"
#include "scene/PrintGenerator.h"

namespace Simulator {
namespace {

/// Prints that were asked for last and stay when nobody holds them: fingers that are lifted come back. Two
/// hands.
constexpr size_t cnKept = 10;

/// Copies of what a description's key refers to. All prints of one file are alike.
auto KeyOf(const ClPrintDescription& o) {
  ClPrintDescription oFile;
  oFile.sFile = o.sFile;
  const auto Copy = [](const auto&... oPart) { return std::make_tuple(oPart...); };
  return std::apply(Copy, (o.sFile.empty() ? o : oFile).Key());
}
using Key = decltype(KeyOf(ClPrintDescription()));

}  // namespace

PrintPointer GetPrint(const ClPrintDescription& oDescription) {
  static std::mutex s_oMutex;
  static std::map<Key, std::weak_ptr<const ClPrint>> s_mapPrints;
  static std::deque<PrintPointer> s_aKept;
  std::lock_guard<std::mutex> oLock(s_oMutex);
  PrintPointer pPrint = s_mapPrints[KeyOf(oDescription)].lock();
  if (!pPrint) {
    // Prints that nobody holds any more, this one among them.
    for (auto it = s_mapPrints.begin(); it != s_mapPrints.end();)
      it = it->second.expired() ? s_mapPrints.erase(it) : std::next(it);
    pPrint = std::make_shared<const ClPrint>(oDescription.sFile.empty() ? GeneratePrint(oDescription)
                                                                        : ReadPrintFile(oDescription.sFile));
    s_mapPrints[KeyOf(oDescription)] = pPrint;
  }
  // What a file holds may be another print the next time.
  if (oDescription.sFile.empty()) {
    s_aKept.erase(std::remove(s_aKept.begin(), s_aKept.end(), pPrint), s_aKept.end());
    s_aKept.push_back(pPrint);
    if (s_aKept.size() > cnKept) s_aKept.pop_front();
  }
  return pPrint;
}

}  // namespace Simulator
