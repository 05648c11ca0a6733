// Feeds serial numbers and calibration blocks to the set-up of a scanner, in the order in which it is opened.
#include <cmath>
#include <map>
#include <memory>
#include <string>

#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXLiveScannerAPI/VT4SetupCalibrationData.h"
#include "MXTools/FpImage.h"
#include "ScannerBlocks.h"
#include "StreamBytes.h"

namespace {

using Setup = std::shared_ptr<ClVTSetupCalibrationDataBase>;

constexpr char cszFirstRevision[] = "VT40-AA0001";
constexpr char cszLaterRevision[] = "VT40-AB0001";

/// Of the inputs that ask for something slow, the first ones get it, and after them one in so many.
class ClRation {
 public:
  ClRation(unsigned int nFirst, unsigned int nEach) : m_nFirst(nFirst), m_nEach(nEach) {}
  bool Take() { return m_nAsked++ < m_nFirst || m_nAsked % m_nEach == 0; }

 private:
  const unsigned int m_nFirst;
  const unsigned int m_nEach;
  unsigned int m_nAsked = 0;
};

/// Asks for references to be drawn, which takes a second.
constexpr unsigned int cnDrawBrightness = 0xB1;
ClRation s_oDraws(16, 4096);
/// Making a set-up takes a hundred times as long as feeding it: those for the serial numbers of the seeds are
/// fed by many inputs each. Gains of all records before stay in a set-up, so that it is not kept for ever.
constexpr unsigned int cnInputsPerSetup = 256;
ClRation s_oOtherSerials(256, 64);

Setup SetupOf(const std::string& sSerial) {
  struct StKept {
    Setup pSetup;
    unsigned int nFed = 0;
  };
  static std::map<std::string, StKept> s_mapKept = {{cszFirstRevision, {}}, {cszLaterRevision, {}}};
  const auto Make = [&] { return Setup(ClVTSetupCalibrationDataBase::GetSetupObject(sSerial.c_str())); };
  const auto it = s_mapKept.find(sSerial);
  if (it == s_mapKept.end()) return s_oOtherSerials.Take() ? Make() : nullptr;
  StKept& rKept = it->second;
  if (rKept.nFed++ % cnInputsPerSetup == 0) rKept.pSetup = Make();
  return rKept.pSetup;
}

Bytes RecordOf(ClVT40SetupCalibrationData& rSetup) {
  TpArrayStatic<char> aRecord;
  rSetup.GetGeometricData(aRecord);
  return Bytes(aRecord.Data(), aRecord.Data() + aRecord.Entries());
}

unsigned int Size(const Bytes& aBlock) {
  return static_cast<unsigned int>(aBlock.size());
}

void SetUpTenFingers(ClVT40SetupCalibrationData& rSetup, ClFuzzInput& rInput) {
  const unsigned int nDraw = rInput.Byte();
  const Bytes aGeometry = rInput.Block();
  const Bytes aGains = rInput.Block();
  const Bytes aBrightness = rInput.Rest();
  Refused([&] { rSetup.UpdateGainData(aGains.data(), Size(aGains)); });
  const Bytes aBefore = RecordOf(rSetup);
  if (Refused([&] { rSetup.UpdateGeometricData(aGeometry.data(), Size(aGeometry)); })) {
    Require(RecordOf(rSetup) == aBefore, "refused geometry changes nothing");
    return;
  }
  // Another set-up accepts the record that is in use.
  static ClVT40SetupCalibrationData s_oSame(cszFirstRevision, false);
  const Bytes aRecord = RecordOf(rSetup);
  s_oSame.UpdateGeometricData(aRecord.data(), Size(aRecord));
  if (nDraw == cnDrawBrightness && s_oDraws.Take())
    Refused([&] { rSetup.UpdateBrightnessData(aBrightness.data(), Size(aBrightness)); });
}

void SetUpOneFinger(ClVT4SetupCalibrationData& rSetup, ClFuzzInput& rInput) {
  const Bytes aBlock = rInput.Rest();
  if (Refused([&] { rSetup.UpdateGeometricData(aBlock.data(), Size(aBlock)); })) return;
  ClImage oIn(1280, 480, 1, 19685, 19685);
  oIn = static_cast<unsigned char>(99);
  ClImage oOut;
  Refused([&] { rSetup.CalibrateFull(oIn, oOut); });
  Refused([&] { rSetup.CalibrateMini(oIn, oOut); });
}

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (const bool bLegacy : {true, false}) {
    for (const Bytes& aGeometry : GeometryBlocks()) {
      Bytes aSeed = BytesOf(bLegacy ? cszFirstRevision : cszLaterRevision);
      aSeed.insert(aSeed.end(), {0, static_cast<uint8_t>(aSeeds.empty() ? cnDrawBrightness : 0)});
      ClFuzzInput::PutBlock(aSeed, aGeometry);
      ClFuzzInput::PutBlock(aSeed, GainBlock(bLegacy));
      const Bytes aBrightness = BrightnessBlock(bLegacy);
      aSeed.insert(aSeed.end(), aBrightness.begin(), aBrightness.end());
      aSeeds.push_back(aSeed);
    }
  }
  // Records of another target, source or grid.
  using Simulator::ClGeometry;
  for (const auto pfnSpoil : std::initializer_list<void (*)(ClGeometry&)>{
           [](ClGeometry& r) { r.nTargetWidth = 100; }, [](ClGeometry& r) { r.nSourceWidth = 0; },
           [](ClGeometry& r) { r.nTargetHeight = 100; }, [](ClGeometry& r) { r.nSourceHeight = 0; },
           [](ClGeometry& r) { r.aTarget[9].dX = std::nan(""); },
           [](ClGeometry& r) { r.nSourceHeight = 1u << 20; }, [](ClGeometry& r) { r.aTarget.clear(); },
           [](ClGeometry& r) { r.aTarget.pop_back(), r.aActual.pop_back(); },
           [](ClGeometry& r) { r.aActual.pop_back(); },
           [](ClGeometry& r) { r.aActual.push_back(r.aActual[0]); }}) {
    for (const char* szSerial : {cszFirstRevision, cszLaterRevision}) {
      ClGeometry oGeometry = Simulator::MeasureGeometry(Simulator::ClOptics(3));
      pfnSpoil(oGeometry);
      Bytes aSeed = BytesOf(szSerial);
      aSeed.insert(aSeed.end(), {0, 0});
      ClFuzzInput::PutBlock(aSeed, Simulator::EncodeGeometry(oGeometry));
      aSeeds.push_back(aSeed);
    }
  }
  for (const char* szSerial : {"VT40-1B0001", "VT40-A~0001", "VT40-A"}) aSeeds.push_back(BytesOf(szSerial));
  Bytes aOneFinger = BytesOf("VT41AB0001");
  aOneFinger.insert(aOneFinger.end(), {0, 0, 0, 0, 0, 128, 2, 0, 0, 240, 0, 0, 0});
  aSeeds.push_back(aOneFinger);
  return aSeeds;
}

/// The geometric record stands after the serial number, a byte and its size.
Bytes Repaired(const Bytes& aInput) {
  const auto itSerialEnd = std::find(aInput.begin(), aInput.end(), uint8_t{0});
  if (aInput.end() - itSerialEnd < 4) return aInput;
  const auto itRecord = itSerialEnd + 4;
  const auto nSize = std::min<std::ptrdiff_t>(itRecord[-2] | itRecord[-1] << 8, aInput.end() - itRecord);
  const Bytes aRecord = WithRightChecksum(Bytes(itRecord, itRecord + nSize));
  Bytes aRight = aInput;
  std::copy(aRecord.begin(), aRecord.end(), aRight.begin() + (itRecord - aInput.begin()));
  return aRight;
}

void Feed(const Bytes& aInput) {
  ClFuzzInput oInput(aInput);
  const std::string sSerial = oInput.Text();
  Setup pSetup;
  if (Refused([&] { pSetup = SetupOf(sSerial); })) return;
  if (auto* pTen = dynamic_cast<ClVT40SetupCalibrationData*>(pSetup.get())) {
    SetUpTenFingers(*pTen, oInput);
  } else if (auto* pOne = dynamic_cast<ClVT4SetupCalibrationData*>(pSetup.get())) {
    SetUpOneFinger(*pOne, oInput);
  }
}
