// Puts one-plane images together.
#pragma once

#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"

/// Makes an image whose planes are the given ones.
///
/// Domain     all planes have the type and size of the first one that is given. The number of planes follows
///            from "eOutContent"; for "eUnknown" it is nOutPlanes, and below 1 nothing happens.
/// Range      a plane that isn't given gets its fill colour with "bFillEmptyPlanes" (NaN fills 0), and what
///            the block held without.
/// Ownership  the output is allocated on the image handed in; with no plane at all it isn't touched.
/// Threads    thread-bound.
/// Errors     returned: -35 for a content without a number of planes. ClException -701 no output; -44 a plane
///            of another type or size, or more planes than the output has.
class ClIpJoinPlanes : public ClProcessorBase {
 public:
  ClIpJoinPlanes() { ClIpJoinPlanes::SetParametersToDefault(); }

  long ApplyParam(ClImage& oOut, ClImage* pPlane0, ClImage* pPlane1, ClImage* pPlane2, ClImage* pPlane3);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpJoinPlanes"; }
  bool CanApply() override;
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

  double dInFillcolors[4];
  ClImage::EContent eOutContent;
  bool bFillEmptyPlanes;
  /// The number of planes that "eUnknown" stands for.
  long nOutPlanes = 0;

 protected:
  long Process() override;

 private:
  long PlanesOfContent() const;
  const ClImage* FirstPlane() const;
  void CheckPlanes(const ClImage& oFirst) const;
  template <typename T>
  void JoinPlane(int nPlane);

  ClImage* m_apInPlanes[4] = {nullptr, nullptr, nullptr, nullptr};
  ClImage* m_pOutImage = nullptr;
};
