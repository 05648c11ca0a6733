/* Compiled as C: the headers of the libraries must not need a C++ compiler. */
#include "KelvarinFakeFingerDetectionVT40/FDSim.h"
#include "KelvarinFakeFingerDetectionVT40/FDVT40.h"
#include "KelvarinVTScanAPI/VTScanAPI.h"
#include "KelvarinVTScanAPI/VTSim.h"

int VTSimHeaderWorksInC(void) {
  VTSimState oState;
  oState.nStructSize = sizeof oState;
  FDSimState oDetection;
  oDetection.nStructSize = sizeof oDetection;
  return oDetection.nStructSize == sizeof(FDSimState) && oState.nStructSize == sizeof(VTSimState) &&
         sizeof(tagBITMAPINFOHEADER) == 40;
}
