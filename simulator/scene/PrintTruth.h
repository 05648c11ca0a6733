// What a judge of fingerprints should find in a generated print.
#pragma once

#include <vector>

#include "scene/Plane.h"
#include "scene/PrintDescription.h"

namespace Simulator {

/// The points of a print that a judge looks for. Numbers as in VTSim.h.
enum EPrintPoint { ePointEnding = 1, ePointBifurcation = 2, ePointCore = 3, ePointDelta = 4 };

/// Measured on the ridges that have grown, before pores, marks and pressure: an ending or a bifurcation is
/// where the phase of the ridges turns once about a point (K. G. Larkin and P. A. Fletcher, "A coherent
/// framework for fingerprint analysis: are fingerprints holograms?", Optics Express 15 (2007)).
///
/// Units      millimetres from the middle of the print, x to the right, y up; angles in radians,
///            counter-clockwise from the right.
struct ClPrintTruth {
  /// dDirection of an ending points into the ridge that ends, of a bifurcation into the valley that ends
  /// there (between the branches), of a core to where its loop opens, of a delta along its lowest arm.
  struct ClPoint {
    EPrintPoint ePoint;
    double dX, dY;
    double dDirection;
  };
  /// Direction and period of ridges; fPeriodMm is 0 where none have grown.
  struct ClRidge {
    float fDirection = 0.0f;
    float fPeriodMm = 0.0f;
  };

  std::vector<ClPoint> aPoints;
  /// One value for each square of the side dBlockMm; the middle of the print is in the middle of the plane.
  TpPlane<ClRidge> oRidges;
  double dBlockMm = 1.0;

  /// The ridge at a position.
  ClRidge RidgeAt(double dX, double dY) const;
};

/// Domain     a generated print; one of a file has neither points nor ridges.
/// Cost       twice that of the print.
/// Threads    reentrant.
ClPrintTruth MeasurePrint(const ClPrintDescription& oDescription);

}  // namespace Simulator
