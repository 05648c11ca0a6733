// The frame of every function of the scan library: the fault script decides first whether it runs.
#pragma once

#include "KelvarinVTScanAPI/Bus.h"
#include "boundary/Boundary.h"

namespace Simulator {

/// Runs the operation of a function unless the fault script strikes.
template <typename F>
long Called(const char* szFunction, bool bTakesDevice, F&& fnOperation) noexcept {
  return Guarded([&] {
    long nResult = 0;
    if (ClBus::Get().Faults().Strikes(szFunction, bTakesDevice, nResult)) {
      if (nResult == 0) return;
      throw ClSimError(nResult, std::string("fault script: ") + szFunction);
    }
    fnOperation();
  });
}

/// The same for a function that gives something back. It runs even when it is to fail, since no host could do
/// it again.
template <typename F>
long CalledToGiveBack(const char* szFunction, bool bTakesDevice, F&& fnOperation) noexcept {
  long nResult = 0;
  bool bStruck = false;
  const long nOutcome = Guarded([&] {
    bStruck = ClBus::Get().Faults().Strikes(szFunction, bTakesDevice, nResult);
    fnOperation();
  });
  return bStruck ? nResult : nOutcome;
}

/// The same for a function of an open device, which the operation gets.
template <typename F>
long CalledOn(const char* szFunction, void* hDevice, F&& fnOperation) noexcept {
  return Called(szFunction, true, [&] {
    const ClBus::ClDevice oDevice = ClBus::Get().Device(hDevice);
    fnOperation(*oDevice.pScanner, oDevice.nSession);
  });
}

}  // namespace Simulator
