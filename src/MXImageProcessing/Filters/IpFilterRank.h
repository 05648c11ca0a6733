// What the minimum and the maximum filter have in common.
#pragma once

#include "MXImageProcessing/IpFilterBase.h"
#include "MXTools/FpImage.h"

/// The output at a pixel is the extreme of the samples of the window round it, clipped to the image. TRank
/// picks the extreme, for rows of samples.
///
/// Domain  all eight element types, odd widths, modes X, Y and XY.
/// Errors  ClException -44 an even width, -701 no output; ClExKelvarin -10 no input, -35 unknown type or
///         mode. Returned: -33 the directed modes; -10 input and output are one object.
/// Cost    along the rows some log2(width) passes, along the columns three, whatever the width.
template <typename TRank>
class TpIpFilterRank : public ClIpFilterBase {
 protected:
  bool ListsModes() const override { return false; }
  long DoProcess() override;

 private:
  template <typename T>
  long ProcessT();
  template <typename T>
  long ProcessT_X();
  template <typename T>
  long ProcessT_Y();
  template <typename T>
  long ProcessT_XY();

  long HalfWidth(int nExtent) const;

  ClImage m_oLine;
  ClImage m_oRows;
};
