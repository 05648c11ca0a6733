// The reversed value.
#include "MXImageProcessing/IpInvert.h"

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/SampleLoop.h"

namespace {

/// The rule with the ranges of both images, which are taken once for all samples.
class ClReversal {
 public:
  ClReversal(const ClImage& oIn, const ClImage& oOut)
      : m_dInBlack(oIn.Black()),
        m_dInWhite(oIn.White()),
        m_dOutBlack(oOut.Black()),
        m_dOutWhite(oOut.White()) {}
  double operator()(double dValue) const {
    return m_dOutBlack + (m_dInWhite - (dValue - m_dInBlack) - m_dInBlack) * (m_dOutWhite - m_dOutBlack) /
                             (m_dInWhite - m_dInBlack);
  }

 private:
  double m_dInBlack, m_dInWhite, m_dOutBlack, m_dOutWhite;
};

}  // namespace

ClIpInvert::ClIpInvert() : NewIpBase::ClIp1to1Base(true, true) {
  EnableDataType(m_caAllTypes);
}

ClProcessorBase* ClIpInvert::Create() const {
  return MakeProcessor<ClIpInvert>();
}

double ClIpInvert::GetValue(ClImage& oIn, ClImage& oOut, double dValue) {
  return ClReversal(oIn, oOut)(dValue);
}

long ClIpInvert::DoProcess(ClImage& oIn, ClImage& oOut) {
  return MapByRule(oIn, oOut, true, ClReversal(oIn, oOut));
}
