// The flow of every processor that corrects an image by calibration data.
#pragma once

#include "MXTools/ProcessorBase.h"

class ClCalibrateGeometricData;
class ClImage;

/// Prepares itself from the data once, then corrects image after image: set the three pointers, Apply.
///
/// Ownership  none of the three.
/// Threads    thread-bound: the pointers are read during Apply.
class ClIpCalibrateBase : public ClProcessorBase {
 public:
  /// Restores the state before the first Apply, so that the next one prepares anew.
  virtual void Reset() = 0;
  /// Prepares from m_pData, unless that is done.
  virtual void Initiate() = 0;
  /// Corrects m_pInImage into m_pOutImage; without an input nothing is done.
  virtual void Calibrate() = 0;

  const ClCalibrateGeometricData* m_pData = nullptr;
  const ClImage* m_pInImage = nullptr;
  ClImage* m_pOutImage = nullptr;

 protected:
  long Process() override;

  /// Writes an image as a BMP file, whose name has the build, the tag and the time. szDirectory ends in a
  /// slash.
  static void StoreDebug(const ClImage* pImage, const char* szTag, const char* szDirectory);
};
