/* Compiled as C: the headers of the library must not need a C++ compiler. */
#include "KelvarinVTScanAPI/VTScanAPI.h"
#include "KelvarinVTScanAPI/VTSim.h"

int VTSimHeaderWorksInC(void) {
  VTSimState oState;
  oState.nStructSize = sizeof oState;
  return oState.nStructSize == sizeof(VTSimState) && sizeof(tagBITMAPINFOHEADER) == 40;
}
