// Puts a rolled fingerprint together from the frames of a finger that turns on the platen.
#pragma once

#include <cstdint>
#include <vector>

#include "MXImageProcessing/BitPlane.h"
#include "MXImageProcessing/IpMoveImage.h"
#include "MXImageProcessing/IpRotate.h"
#include "MXImageProcessing/NewIp1to1Base.h"
#include "MXImageProcessing/RunSets.h"
#include "MXLiveScannerAPI/RollFrame.h"
#include "MXLiveScannerAPI/RollMeans.h"
#include "MXTools/Vector.h"

/// It finds out by itself when a roll begins or ends: a finger in the frame begins one, an empty frame ends
/// it. Each frame adds the strip that newly came into contact to the merged image, and the movement is
/// judged.
///
/// Domain     masked frames, eUint8, one plane: fingers dark on 255. The size may change only after
///            ResetProcessor.
/// Range      the output is the merged image so far; after a roll it is the finished one until the next roll
///            begins.
/// Ownership  keeps no frame beyond a call.
/// Threads    thread-bound.
/// Errors     the verdict on the roll is returned and is no failure: -801 the ridges slipped, -802 too fast,
///            -803 turned back, -804 twisted, -805 too small. Raised: -14 a size of 0, -701 no output, -44
///            another size in mid-stream, -101 several planes or an extent of 1.
/// Cost       thresholds, windows and regions as bits; two mean filters over what the finger covers and two
///            over the strip. Nothing is allocated from the second roll on.
class ClIpAutoRoll : public NewIpBase::ClIp1to1Base {
 public:
  enum EProcessorState : int { eStateIdle = 0, eStateRolling = 1, eStateFinished = 2 };

  /// What one frame shows of the finger: centre of mass in pixels, axis in radians, 0 to pi.
  struct stMomentMeasures {
    double dX = 0.0;
    double dY = 0.0;
    double dAngle = 0.0;
  };

  ClIpAutoRoll();

  int GetProcessorState() const { return m_nProcessorState; }
  /// 0 or the verdict on the roll that is running or finished.
  long GetReturnCode() const { return m_nReturnCode; }
  /// When set, finished rolls are centred and turned upright.
  void SetAutoRotate(bool bAutoRotate) { m_bAutoRotate = bAutoRotate; }
  /// Drops the roll; the next finger begins on a white image.
  void ResetProcessor();

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpAutoRoll"; }
  void SetParametersToDefault() override;

 protected:
  long Process() override;
  void CheckInOutImageTypes() override;

 private:
  /// Sums over the pixels of the largest object of an image.
  struct StRegion {
    int64_t nCount = 0;
    double dX = 0.0;
    double dY = 0.0;
    double dXX = 0.0;
    double dYY = 0.0;
    double dXY = 0.0;
  };
  /// Towards higher x, towards lower x, not yet known.
  enum EDirection : int { eDirectionForward = 0, eDirectionBack = 1, eDirectionUnknown = 2 };

  bool ShowsFinger();
  void BeginRoll();
  void ContinueRoll();
  void MeasureFrame();
  void FinishRoll();
  stMomentMeasures ComputeCenterOfMassAndCentroidAngle();
  StRegion LargestRegion(const ClBitPlane& oCovered);
  void DetermineRollDirectionAndAngle();
  void AddFrame();
  void CheckSlippage();
  void FindStrip();
  void Blend();
  void CheckRollAreaSize();
  void CheckForRotation();
  void AutoRotateAndCropMergedImage();

  bool m_bAutoRotate = true;
  long m_nReturnCode = 0;
  int m_nDirection = eDirectionUnknown;
  unsigned int m_nImageCount = 0;
  int m_nProcessorState = eStateIdle;
  ClImage m_oMerged;
  ClImage m_oRotated;
  std::vector<stMomentMeasures> m_aMoments;
  int m_nMaxArea = 0;
  /// Ridges have slipped when the root of the mean squared difference of two frames exceeds this.
  double m_dSlipThreshold = 85.0;
  int m_nMaxSlipRun = 0;
  int m_nSlipRun = 0;
  ClVector m_oCenter;

  ClRollFrame m_aFrames[2];
  ClRollFrame* m_pFrame = &m_aFrames[0];
  ClRollFrame* m_pLastFrame = &m_aFrames[1];

  // Scratch, named by what it holds.
  std::vector<uint64_t> m_aBits;
  ClBitPlane m_oBlobs;
  ClRunSets m_oSets;
  std::vector<int64_t> m_aSetSizes;
  ClBitPlane m_oMergedDark;
  ClBitPlane m_oLost;
  ClBitPlane m_oUnchanged;
  ClBitPlane m_oStrip;
  ClImage m_oWeights;
  ClImage m_oSoft;
  ClImage m_oCentred;

  ClRollMeans m_oMeans;
  ClIpMoveImage m_oMove;
  ClIpRotate m_oRotate;
};

/// Sorts by angle, the greatest first.
bool sortMomentMeasures(const ClIpAutoRoll::stMomentMeasures& a, const ClIpAutoRoll::stMomentMeasures& b);
