// What crosses the ridges of a finger: creases, scars and cuts; and its pores.
#pragma once

#include <vector>

#include "scene/Plane.h"
#include "scene/PrintDescription.h"

namespace Simulator {

/// Where the marks of a finger are follows from its seed.
///
/// Units millimetres from the middle of the print, x to the right, y up; planes are at 500 dots per inch.
/// Threads const operations are thread-safe.
class ClSkinMarks {
 public:
  explicit ClSkinMarks(const ClPrintDescription& oDescription);

  /// True within a healed wound, where no ridge has grown.
  bool InScar(double dX, double dY) const;

  /// Lowers the skin of a plane of heights where creases, scars and cuts are.
  void Engrave(TpPlane<uint8_t>& oRidge) const;

  /// Opens pores on the crests of ridges, some two or three to a millimetre.
  static void AddPores(uint64_t nSeed, double dPores, TpPlane<uint8_t>& oRidge);

 private:
  enum EKind { eCrease, eScar, eCut };
  /// A line that bends, from its first point to its last.
  struct ClMark {
    EKind eKind;
    double adX[3], adY[3];
    double dHalfWidth;
    double dStrength;
    uint64_t nSeed;

    void At(double dPart, double& dX, double& dY) const;
    double Length() const;
  };

  void Add(uint64_t nSeed, EKind eKind, double dTurn, const ClPrintDescription& oDescription);
  static void Draw(const ClMark& oMark, TpPlane<uint8_t>& oDepth);

  std::vector<ClMark> m_aMarks;
};

}  // namespace Simulator
