// The strokes of a signature, as points and as the picture drawn so far.
#pragma once

#include "MXTools/FpImage.h"

/// Domain   up to 2048 points, pen-ups included; what comes after them is dropped.
/// Units    points in sensor pixels; the preview has 800 columns for 960 of the sensor.
/// Range    drawings are 255 on 0; what would lie outside a picture is left out.
/// Threads  thread-bound: the engine guards them.
class ClSignatureStrokes {
 public:
  /// Forgets the points. A preview that already has that height keeps its strokes.
  void Start(int nPreviewHeight);
  /// Forgets points and preview; before the first start there is nothing to forget.
  void Clear();

  /// To be called for each frame, before AddPoint or EndStroke.
  void NextFrame();
  /// nWeight, from 1 on, is the number of pixels that the position is the mean of. False when there is no
  /// room.
  bool AddPoint(double dX, double dY, int nWeight);
  /// No pen in this frame: the third such frame in a row ends a stroke.
  void EndStroke();

  /// Points so far, pen-ups included.
  int Points() const { return m_nSignaturePoints; }
  const ClImage& Preview() const { return m_oSignaturePreview; }
  /// Draws the strokes at full size, 1600 columns for 960 of the sensor.
  void Draw(ClImage& oImage) const;

 private:
  static constexpr int cnMaxPoints = 2048;
  struct StPixel {
    int nX;
    int nY;
  };

  /// Where a point lies in a picture of nColumns by nRows pixels, which shows 960 columns and 340 rows of the
  /// sensor.
  StPixel Map(int nPoint, int nColumns, int nRows) const;
  static void SetPixel(ClImage& oImage, int nX, int nY);
  static void DrawLine(ClImage& oImage, const StPixel& oFrom, const StPixel& oTo);

  int m_nSignaturePoints = 0;
  // Positions times their weight, which keeps fractions of pixels; a weight of 0 is a pen-up.
  int m_aSignatureX[cnMaxPoints] = {};
  int m_aSignatureY[cnMaxPoints] = {};
  int m_aSignatureWeight[cnMaxPoints] = {};
  int m_nPenUpFrames = 0;
  ClImage m_oSignaturePreview;
};
