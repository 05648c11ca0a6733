// The calibration files that a scanner carries in its EEPROM.
#include "sensor/EpromFiles.h"

#include <algorithm>
#include <boost/crc.hpp>
#include <cmath>
#include <cstring>

#include "scene/Platen.h"
#include "scene/Random.h"
#include "sensor/Light.h"
#include "sensor/SensorMode.h"

namespace Simulator {
namespace {

void PutBig32(ByteBlock& aOut, uint32_t nValue) {
  for (int nShift = 24; nShift >= 0; nShift -= 8) aOut.push_back(static_cast<uint8_t>(nValue >> nShift));
}

void PutLittle(ByteBlock& aOut, uint64_t nValue, int nBytes) {
  for (int i = 0; i < nBytes; ++i) aOut.push_back(static_cast<uint8_t>(nValue >> (8 * i)));
}

void PutTag(ByteBlock& aOut, const char (&szTag)[4]) {
  for (const char c : szTag) aOut.push_back(static_cast<uint8_t>(c));
}

void PutPoints(ByteBlock& aOut, const std::vector<ClPoint>& aPoints) {
  PutBig32(aOut, static_cast<uint32_t>(aPoints.size()));
  for (const ClPoint& oPoint : aPoints) {
    for (const double d : {oPoint.dX, oPoint.dY}) {
      const float f = static_cast<float>(d);
      uint32_t nBits;
      static_assert(sizeof nBits == sizeof f, "floats have 32 bits");
      std::memcpy(&nBits, &f, sizeof nBits);
      PutBig32(aOut, nBits);
    }
  }
}

/// Positions of the dots in the picture before it is mirrored, column after column.
std::vector<ClPoint> DotPlaces() {
  const double dPitch = 10.0 / cdPixelMm;
  const double dFirst = 0.5 * (cnPictureSide - 1) - 0.5 * (cnGridSide - 1) * dPitch;
  std::vector<ClPoint> aPlaces;
  for (int c = 0; c < cnGridSide; ++c)
    for (int r = 0; r < cnGridSide; ++r) aPlaces.push_back({dFirst + c * dPitch, dFirst + r * dPitch});
  return aPlaces;
}

double Mirrored(double dX) {
  return cnPictureSide - 1 - dX;
}

uint8_t ToByte(double d) {
  return static_cast<uint8_t>(std::clamp(d + 0.5, 0.0, 255.0));
}

}  // namespace

ByteBlock EncodeGeometry(const ClGeometry& oGeometry) {
  ByteBlock aOut;
  PutTag(aOut, "CAL");
  PutTag(aOut, "GEO");
  PutTag(aOut, "006");
  for (const uint32_t n :
       {oGeometry.nSourceWidth, oGeometry.nSourceHeight, oGeometry.nSourcePelsX, oGeometry.nSourcePelsY,
        oGeometry.nTargetWidth, oGeometry.nTargetHeight, oGeometry.nTargetPelsX, oGeometry.nTargetPelsY})
    PutBig32(aOut, n);
  PutBig32(aOut, 1);  // one plane of sensor points
  aOut.push_back(oGeometry.nBackground);
  PutPoints(aOut, oGeometry.aTarget);
  PutPoints(aOut, oGeometry.aActual);
  boost::crc_optimal<32, 0x04C11DB7, 0xFFFFFFFF, 0xFFFFFFFF, false, false> oCrc;
  oCrc.process_bytes(aOut.data(), aOut.size());
  PutBig32(aOut, static_cast<uint32_t>(oCrc.checksum()));
  return aOut;
}

ByteBlock EncodeBrightness(const BrightnessTable& oTable, bool bLegacy) {
  ByteBlock aOut;
  if (bLegacy) {
    aOut.resize(128, 0);
    for (const unsigned nKey : caIlluminationKeys) {
      const size_t nEnd = aOut.size() + 192;
      const auto it = oTable.find(nKey);
      if (it != oTable.end())
        for (const auto& aPlane : it->second) aOut.insert(aOut.end(), aPlane.begin(), aPlane.end());
      aOut.resize(nEnd, 0);
    }
    return aOut;
  }
  PutTag(aOut, "CBD");
  PutLittle(aOut, 1, 2);
  PutLittle(aOut, oTable.empty() ? 0 : oTable.begin()->second[0].size(), 2);
  for (const auto& oEntry : oTable) {
    PutLittle(aOut, oEntry.first, 8);
    for (const auto& aPlane : oEntry.second) aOut.insert(aOut.end(), aPlane.begin(), aPlane.end());
  }
  return aOut;
}

ByteBlock EncodeGains(const GainTable& oTable, bool bLegacy) {
  ByteBlock aOut;
  const auto Put = [&aOut](const ClGainEntry& oEntry) {
    for (size_t i = 0; i < 3; ++i) {
      aOut.push_back(oEntry.anGain[i]);
      aOut.push_back(oEntry.anWhitePatch[i]);
    }
  };
  if (bLegacy) {
    for (const unsigned nKey : caIlluminationKeys) {
      const auto it = oTable.find(nKey);
      Put(it == oTable.end() ? ClGainEntry{} : it->second);
    }
    return aOut;
  }
  PutTag(aOut, "CGD");
  PutLittle(aOut, 1, 2);
  for (const auto& oEntry : oTable) {
    PutLittle(aOut, oEntry.first, 8);
    Put(oEntry.second);
  }
  return aOut;
}

ClGeometry MeasureGeometry(const ClOptics& oOptics) {
  ClGeometry oGeometry{cnSensorWidth,
                       cnSensorHeight,
                       41417,
                       30236,
                       cnPictureSide,
                       cnPictureSide,
                       19685,
                       19685,
                       0,
                       DotPlaces(),
                       {}};
  for (const ClPoint& oPlace : oGeometry.aTarget)
    oGeometry.aActual.push_back(oOptics.PictureToSensor(Mirrored(oPlace.dX), oPlace.dY));
  return oGeometry;
}

BrightnessTable MeasureBrightness(const ClOptics& oOptics) {
  // Key 1 is the light that pictures are taken with; the others are single colours and differ in strength.
  // The channels differ a little; weighted 30 : 59 : 11 they give the level that a ridge gives.
  constexpr double adStrength[] = {0.5, 1.0, 0.8, 0.6, 0.7};
  constexpr double adChannel[] = {0.97, 1.015, 1.0};
  const double dLuminance = 0.30 * adChannel[0] + 0.59 * adChannel[1] + 0.11 * adChannel[2];
  BrightnessTable oTable;
  for (size_t k = 0; k < caIlluminationKeys.size(); ++k) {
    for (size_t c = 0; c < 3; ++c) {
      std::vector<uint8_t>& aPlane = oTable[caIlluminationKeys[k]][c];
      for (const ClPoint& oPlace : DotPlaces())
        aPlane.push_back(ToByte(cdRidgeLevel * adStrength[k] * adChannel[c] / dLuminance *
                                oOptics.Illumination(Mirrored(oPlace.dX), oPlace.dY)));
    }
  }
  return oTable;
}

GainTable MeasureGains(uint64_t nSeed, unsigned nRevision) {
  ClRandom oRandom(Mix(nSeed, 0x4761696E));
  GainTable oTable;
  const auto Spread = [&oRandom](int nMid) {
    return static_cast<uint8_t>(2 * ((nMid + static_cast<int>(oRandom.Range(-6.0, 6.0))) / 2));
  };
  const uint8_t nWhite = ToByte(cdRidgeLevel);
  for (const unsigned nKey : caIlluminationKeys)
    oTable[nKey] = {{Spread(0x60), Spread(0x60), Spread(0x60)}, {nWhite, nWhite, nWhite}};
  // The first series was built with fixed gains, which hosts know without reading the file.
  if (nRevision == 0)
    oTable[1].anGain = {0x40, 0x48, 0x40};
  else
    oTable[1].anGain = {Spread(0x58), Spread(0x60), Spread(0x58)};
  return oTable;
}

}  // namespace Simulator
