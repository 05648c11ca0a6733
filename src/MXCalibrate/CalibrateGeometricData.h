// Where the points of a regular grid were seen on a sensor.
#pragma once

#include <cstdint>

#include "MXCalibrate/CalibrateDataBase.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/Vector.h"

class ClMemStream;

/// Pairs of points: ideal positions in the corrected image, and where the sensor shows them, plane by plane.
///
/// A stored record, version "006", all numbers big-endian: the tags "CAL", "GEO", "006" with a zero byte
/// each; source width, height, pels x and y, target width, height, pels x and y and the number of planes in
/// 32 bits each; the background byte; the target points; the actual points of each plane; the CRC of all
/// that. Points are a 32-bit count and pairs of 32-bit floats. Older versions lack fields and store the
/// actual points first.
///
/// Domain   0 to 3 planes; 0 means no data. Entry i of every array of points belongs to entry i of m_aTarget.
/// Units    sizes and points in pixels, resolutions in pels per metre.
/// Errors   ClExKelvarin -40 for foreign tags; ClException -39 "Calibration Data currupt" for a wrong CRC and
///          for more than 3 planes; ClExStreamUnexpectedEnd -201 for counts beyond the end; ClExBadAlloc
///          -102.
class ClCalibrateGeometricData : public ClCalibrateDataBase {
 public:
  using Points = TpArrayDynamic<ClVector, 10u>;
  static constexpr unsigned int cnMaxPlanes = 3;

  ClCalibrateGeometricData();
  ClCalibrateGeometricData& operator=(const ClCalibrateGeometricData& oOther);

  bool IsValid() const override { return m_nPlanes != 0; }
  void Clear() override;
  /// 16 bytes of MD5 over fields and points; tags and versions do not count.
  virtual void GenerateHash(unsigned char* pDigest) const;

  /// True when tags, fields, counts and, to better than ClVector::m_cdEpsilon, all points in use agree.
  bool operator==(const ClCalibrateGeometricData& oOther) const;

  /// One line of the debug log for each pair of points.
  void Log() const;
  void TraceOut() const { Log(); }

  uint32_t m_nSourceWidth = 0;
  uint32_t m_nSourceHeight = 0;
  uint32_t m_nSourcePelsX = 0;
  uint32_t m_nSourcePelsY = 0;
  uint32_t m_nTargetWidth = 0;
  uint32_t m_nTargetHeight = 0;
  uint32_t m_nTargetPelsX = 0;
  uint32_t m_nTargetPelsY = 0;
  uint32_t m_nPlanes = 0;
  /// Grey value of target pixels without a source.
  uint8_t m_nBackground = 0;
  Points m_aTarget;
  Points m_aActual[cnMaxPlanes];

 protected:
  void ReadStream(ClStream& oStream) override;
  void WriteStream(ClStream& oStream) const override;

 private:
  class ClEcho;

  int ReadTags(ClEcho& oEcho);
  static void ReadArray(ClEcho& oEcho, Points& aPoints);
  static void WriteArray(ClStream& oStream, const Points& aPoints);
  static void WriteCRC(ClMemStream& oRecord, unsigned int nStart, unsigned int nEnd);
  static void CheckCRC(ClMemStream& oRecord, unsigned int nStart, unsigned int nEnd);
  void CheckPlanes() const;
};
