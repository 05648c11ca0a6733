// One frame of a roll.
#include "MXLiveScannerAPI/RollAssembly.h"

ClRollAssembly::StOutcome ClRollAssembly::Add(ClImage& oMask, ClImage& oPrint) {
  if (m_bReset.exchange(false)) m_oAutoRoll.ResetProcessor();
  m_oAutoRoll.SetAutoRotate(m_bAutoRotate);
  // The processor returns the verdict, which is no failure.
  m_oAutoRoll.ApplyParam(oMask, oPrint);
  return {static_cast<ClIpAutoRoll::EProcessorState>(m_oAutoRoll.GetProcessorState()),
          m_oAutoRoll.GetReturnCode()};
}
