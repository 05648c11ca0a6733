// Flattens an image against a reference brightness image.
#pragma once

#include <cstdint>

#include "MXImageProcessing/NewIp1to1Base.h"

/// Divides an image by a reference and scales areas as bright as their reference to a target grey.
///
/// Domain     one plane of eUint8, eInt8, eUint16 or eInt16; input and reference share size and type. The
///            output may be the input or the reference. A region of width or height 0 means all of it.
/// Range      result = in * value / max(reference, minimum), truncated and limited to the range of the type.
///            Outside the region the output keeps what its block held.
/// Ownership  keeps no image beyond a call; the output is allocated on the image handed in.
/// Threads    thread-bound: one object, one thread at a time. Reference images may be shared.
/// Errors     ClException -701 an image is missing; -44 planes, sizes or region don't fit; -14 an empty
///            image; -103 types differ; -35 a minimum below 1 after truncation; -33 other types.
/// Cost       one pass, no temporary.
class ClIpAdjustBrightness : public NewIpBase::ClIp1to1Base {
 public:
  ClIpAdjustBrightness();

  using NewIpBase::ClIp1to1Base::ApplyParam;
  /// The whole input, with a minimum of 1.
  long ApplyParam(ClImage& oIn, ClImage& oBrightness, ClImage& oOut, double dValue);
  /// A region of it; the minimum stays as it was.
  long ApplyParam(ClImage& oIn, ClImage& oBrightness, ClImage& oOut, double dValue, int nX, int nY,
                  int nWidth, int nHeight);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpAdjustBrightness"; }
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;

  double m_nInAdjustmentMin;
  int m_nInPosX;
  int m_nInPosY;
  int m_nInWidth;
  int m_nInHeight;

 protected:
  void CheckInOutImageTypes() override;
  long Process() override;

 private:
  void CheckRegion();
  template <typename T>
  void Adjust(ClImage& oTarget) const;

  ClImage* m_pInImageBrightness = nullptr;
  double m_dInAdjustmentValue;
  ClImage m_oScratch;
};
