// Takes an image of several planes apart.
#pragma once

#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"

/// Copies each plane of the input into its one-plane output, where there is one. Outputs beyond the input's
/// planes aren't touched; an element type outside the eight leaves all of them out.
///
/// Ownership  outputs are allocated on the images handed in; none of them is the input.
/// Threads    thread-bound.
/// Errors     ClException -701 no input; -35 more than 4 planes; -44 an output that is the input.
class ClIpSplitPlanes : public ClProcessorBase {
 public:
  long ApplyParam(ClImage& oIn, ClImage* pPlane0, ClImage* pPlane1, ClImage* pPlane2, ClImage* pPlane3);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpSplitPlanes"; }
  bool CanApply() override;
  void DeclareParameters(ClParameterRows& oRows) override;

 protected:
  long Process() override;

 private:
  ClImage* m_pInImage = nullptr;
  ClImage* m_apOutPlanes[4] = {nullptr, nullptr, nullptr, nullptr};
};
