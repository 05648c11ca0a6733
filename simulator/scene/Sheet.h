// The sheets that image quality is measured with: what is printed on them, and how bright each point of one
// is.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "scene/SceneDescription.h"

namespace Simulator {

/// Light from the paper and from what is printed on it, as shares of that from a ridge in full contact.
constexpr double cdSheetBright = 0.9;
constexpr double cdSheetDark = 0.1;

/// Something that is printed on a sheet, in millimetres from its middle, x to the right and y down.
///
/// eGrey     an even area of light dHigh, which may be turned about its middle, counter-clockwise.
/// eDisc     a dark disc; dWidth is its diameter.
/// eSine     light between dLow and dHigh, cycles per millimetre along x or y.
/// eBars     the same with sharp edges, light and dark being equally wide.
struct ClSheetField {
  enum EKind { eGrey, eDisc, eSine, eBars } eKind = eGrey;
  double dX = 0.0, dY = 0.0;  ///< its middle
  double dWidth = 0.0, dHeight = 0.0;
  double dTurn = 0.0;
  double dFrequency = 0.0;
  bool bAlongX = true;
  double dLow = cdSheetDark, dHigh = cdSheetBright;
};

/// All that is printed on a sheet. The paper is bright but for the dark sheet, and has no end.
std::vector<ClSheetField> SheetFields(ESheet eKind);

/// A sheet as it lies on the platen and as an optics with a Gaussian point spread sees it.
///
/// Light is exact for even areas, waves and straight edges, however fine: it is computed for each point, and
/// not from a picture. An aperture is folded into the spread by its variance, which at 10 cycles per
/// millimetre differs from a box of a sensor pixel by less than one per cent.
///
/// Threads    const operations are thread-safe.
/// Cost       some nanoseconds a point.
class ClSheetView {
 public:
  /// The spread is a standard deviation on the platen, along the picture's axes.
  ClSheetView(const ClSheetDescription& oSheet, double dSpreadXMm, double dSpreadYMm);

  /// Light at a point of the platen, in millimetres from its left and top edge.
  float LightAt(float fXMm, float fYMm) const noexcept;

 private:
  static constexpr int m_cnSteps = 512;  // entries of the soft step, over four deviations to either side
  static constexpr int m_cnPhases = 1024;
  static constexpr int m_cnCells = 192;  // of half a millimetre, along each side
  static constexpr int m_cnMost = 4;     // fields that meet in a cell

  /// A field, ready to be looked up: its own axes, soft flanks, and a period of its wave.
  struct ClReady {
    float fX, fY, fCos, fSin;
    float fHalfX, fHalfY;  // radius of a disc
    float fPerSpreadX, fPerSpreadY;
    float fOver;   // its light over that of the paper
    float fPerMm;  // phases of the wave in a millimetre; 0 without one
    bool bDisc, bAlongX;
    std::vector<float> aWave;
  };
  struct ClCell {
    uint8_t nCount = 0;
    std::array<uint16_t, m_cnMost> anField{};
  };

  ClReady Ready(const ClSheetField& oField, double dSpreadX, double dSpreadY) const;
  static std::vector<float> Wave(const ClSheetField& oField, double dSpread, double dPaper);
  void Enter(const ClReady& o, double dSpread);
  /// 0 far on the negative side of an edge, 1 far on the positive one; the distance in deviations.
  float Step(float fDistance) const noexcept;
  float Cover(float fAt, float fHalf, float fPerSpread) const noexcept;
  float OverAt(const ClReady& o, float fX, float fY) const noexcept;

  float m_fMidX, m_fMidY, m_fCos, m_fSin, m_fPaper;
  std::array<float, m_cnSteps + 1> m_afStep;
  std::vector<ClReady> m_aFields;
  std::vector<ClCell> m_aCells;
};

}  // namespace Simulator
