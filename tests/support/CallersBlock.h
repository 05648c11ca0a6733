// Runs of processors on a block that a caller lends them for one run.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "MXTools/FpImage.h"

/// A processor that is kept, and how it is run on an image of 20 by 16 bytes that is its output and, where it
/// can be, its input.
struct ClKeptProcessor {
  std::string m_szName;
  std::function<long(ClImage&)> m_fnRun;
};

/// Runs it on a block attached by pointer, takes the block back and runs it on images that own their blocks:
/// none of these runs may write into it.
inline void ExpectTheCallersBlockIsLetGo(const ClKeptProcessor& oProcessor) {
  SCOPED_TRACE(oProcessor.m_szName);
  const auto Run = [&](ClImage& oImage) {
    oImage = static_cast<unsigned char>(50);
    EXPECT_EQ(oProcessor.m_fnRun(oImage), 0);
  };
  std::vector<unsigned char> aBlock(20 * 16);
  ClImage oLent, oOwn(20, 16, 1, 19685, 19685), oOther(20, 16, 1, 19685, 19685);
  oLent.AttachIntern(aBlock.data(), ClImage::eUint8, 20, 16, 1, 19685, 19685, true);
  Run(oLent);
  oLent.Detach();
  std::fill(aBlock.begin(), aBlock.end(), static_cast<unsigned char>(0xA5));
  Run(oOwn);
  Run(oOther);
  EXPECT_EQ(aBlock, std::vector<unsigned char>(20 * 16, 0xA5))
      << "the block was written after it was taken back";
}
