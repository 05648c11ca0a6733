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

using Key = std::tuple<std::string, uint64_t, int, double, double, double, double, int>;

/// Prints that were asked for last and stay when nobody holds them: fingers that are lifted come back. Two
/// hands.
constexpr size_t cnKept = 10;

Key KeyOf(const ClPrintDescription& o) {
  if (!o.sFile.empty()) return Key(o.sFile, 0, 0, 0.0, 0.0, 0.0, 0.0, 0);
  return Key("", o.nSeed, o.ePattern, o.dWidthMm, o.dHeightMm, o.dRidgePeriodMm, o.dPores, o.eMaterial);
}

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
