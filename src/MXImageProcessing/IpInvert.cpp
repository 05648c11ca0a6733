// The reversed value.
#include "MXImageProcessing/IpInvert.h"

#include "MXImageProcessing/NewProcessor.h"

ClIpInvert::ClIpInvert() : NewIpBase::ClIp1to1Base(true, true) {
  EnableDataType(m_caAllTypes);
}

ClProcessorBase* ClIpInvert::Create() const {
  return NewProcessor<ClIpInvert>();
}

double ClIpInvert::GetValue(ClImage& oIn, ClImage& oOut, double dValue) {
  const double dInBlack = oIn.Black(), dInWhite = oIn.White();
  const double dOutBlack = oOut.Black(), dOutWhite = oOut.White();
  return dOutBlack +
         (dInWhite - (dValue - dInBlack) - dInBlack) * (dOutWhite - dOutBlack) / (dInWhite - dInBlack);
}
