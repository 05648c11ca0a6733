// The way of one frame on one thread, from the raw planes to the masked image, by step and as a whole.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "KelvarinVTScanAPI/VTSim.h"
#include "MXImageProcessing/IpBinarizeGlobal.h"
#include "MXImageProcessing/IpFilterMid.h"
#include "MXImageProcessing/IpLabeling.h"
#include "MXLiveScannerAPI/FrameRoad.h"
#include "MXLiveScannerAPI/IpAutoRoll.h"
#include "MXLiveScannerAPI/PenDetector.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"

extern "C" {
long VTScanAPIInitialize(void*);
long VTScanAPIQueryDevices(unsigned int*, unsigned int*, unsigned int);
long VTScanAPICreateHandle(unsigned int, void**);
long VTScanAPIReadEPROMFile(void*, const char*, void*, unsigned int*);
long VTScanAPIEnableCapture(void*, int);
long VTScanAPISetVSYNC(void*, unsigned short);
long VTScanAPISetGain(void*, int, int, int);
long VTScanAPISetCaptureMode(void*, int, unsigned int, unsigned long long*, unsigned int);
long VTScanAPILockRawSequence(void*, void**);
long VTScanAPIReleaseRawSequence(void*, void**);
}

namespace {

void Require(bool bTrue, const char* szWhat) {
  if (bTrue) return;
  std::fprintf(stderr, "bench_Road: %s failed\n", szWhat);
  std::exit(1);
}

/// A simulated scanner with a slap on it, its calibration state, and one raw sequence of each kind.
class ClScene {
 public:
  ClScene() {
    Require(VTSimLoadScene("slap-right") == 0, "scene");
    Require(VTScanAPIInitialize(nullptr) == 0, "initialise");
    unsigned int nId = 0;
    unsigned int nCount = 1;
    Require(VTScanAPIQueryDevices(&nId, &nCount, 17) == 0 && nCount == 1, "query");
    Require(VTScanAPICreateHandle(nId, &m_hDevice) == 0, "open");
    m_aGeometry = Read("GEOCAL");
    m_aBrightness = Read("BRGHTCAL");
    m_aGain = Read("GAINSET");
    m_pSetup = MakeSetup();
    Require(VTScanAPIEnableCapture(m_hDevice, 1) == 0, "capture");
    const unsigned int nExposure = m_pSetup->GetExposure();
    const unsigned int nGain = m_pSetup->GetGainLevel(1);
    VTScanAPISetGain(m_hDevice, static_cast<int>(nGain & 0xFF), static_cast<int>(nGain >> 8 & 0xFF),
                     static_cast<int>(nGain >> 16 & 0xFF));
    m_aPreview = Grab(35, nExposure, 960 * 1360);
    m_aFull = Grab(34, nExposure * 2, 1920 * 2720);
    // The frames of a roll, from before the finger comes until it has gone.
    Require(VTSimLoadScene("roll-right:3") == 0, "roll");
    for (int n = 0; n < 40; ++n) m_aaRoll.push_back(Grab(36, nExposure * 4, 960 * 1362));
    Require(VTSimLoadScene("signature:3") == 0, "signature");
    for (int n = 0; n < 40; ++n) m_aaSignature.push_back(Grab(6, nExposure / 3, 960 * 680));
  }

  std::unique_ptr<ClVT40SetupCalibrationData> MakeSetup() {
    auto pSetup = std::make_unique<ClVT40SetupCalibrationData>("VT40-AB0001", false);
    pSetup->UpdateGainData(m_aGain.data(), static_cast<unsigned int>(m_aGain.size()));
    pSetup->Setup(m_aGeometry.data(), static_cast<unsigned int>(m_aGeometry.size()), m_aBrightness.data(),
                  static_cast<unsigned int>(m_aBrightness.size()), nullptr, 0);
    return pSetup;
  }

  ClVT40SetupCalibrationData& Setup() { return *m_pSetup; }
  const std::vector<unsigned char>& Preview() const { return m_aPreview; }
  const std::vector<unsigned char>& Full() const { return m_aFull; }
  const std::vector<std::vector<unsigned char>>& Roll() const { return m_aaRoll; }
  const std::vector<std::vector<unsigned char>>& Signature() const { return m_aaSignature; }

 private:
  std::vector<char> Read(const char* szName) {
    std::vector<char> aData(8192);
    unsigned int nSize = static_cast<unsigned int>(aData.size());
    Require(VTScanAPIReadEPROMFile(m_hDevice, szName, aData.data(), &nSize) == 0, szName);
    aData.resize(nSize);
    return aData;
  }

  std::vector<unsigned char> Grab(int nMode, unsigned int nExposure, size_t nPlane) {
    unsigned long long aMasks[] = {0, 1};
    VTScanAPISetVSYNC(m_hDevice, static_cast<unsigned short>(nExposure));
    Require(VTScanAPISetCaptureMode(m_hDevice, nMode, 2, aMasks, 2) == 0, "mode");
    void* pSequence = nullptr;
    Require(VTScanAPILockRawSequence(m_hDevice, &pSequence) == 0, "sequence");
    const unsigned char* pPlanes = static_cast<const unsigned char*>(pSequence);
    std::vector<unsigned char> aPlanes(pPlanes, pPlanes + 2 * nPlane);
    VTScanAPIReleaseRawSequence(m_hDevice, &pSequence);
    return aPlanes;
  }

  void* m_hDevice = nullptr;
  std::vector<char> m_aGeometry;
  std::vector<char> m_aBrightness;
  std::vector<char> m_aGain;
  std::unique_ptr<ClVT40SetupCalibrationData> m_pSetup;
  std::vector<unsigned char> m_aPreview;
  std::vector<unsigned char> m_aFull;
  std::vector<std::vector<unsigned char>> m_aaRoll;
  std::vector<std::vector<unsigned char>> m_aaSignature;
};

ClScene& Scene() {
  static ClScene& oScene = *new ClScene;
  return oScene;
}

/// The road of one kind of frame as the engine has it, with its pictures.
struct ClRoad {
  explicit ClRoad(ClFrameRoad::EKind eFrames)
      : eKind(eFrames), oRoad(Scene().Setup(), eFrames, true, eFrames == ClFrameRoad::eFull ? 1 : 0) {}

  const std::vector<unsigned char>& Planes() const {
    if (eKind == ClFrameRoad::eRoll) return Scene().Roll()[nFrame];
    return eKind == ClFrameRoad::eFull ? Scene().Full() : Scene().Preview();
  }
  void Difference() { ClFrameRoad::Difference(Planes().data(), oRoad.Raw()); }
  void Balance() { oRoad.Balance(); }
  void Warp() { oRoad.Warp(); }
  void Flip() { oRoad.Flip(); }
  void Brightness() { oRoad.Brightness(oRectified); }
  void Mask() { oRoad.Mask(oRectified, oMasked); }
  /// All steps before the mask, as one.
  void Rectify() {
    Difference();
    oRoad.Rectify(oRectified);
  }
  void Whole() {
    Rectify();
    Mask();
  }
  /// Leaves what each step takes in.
  void StepByStep() {
    Difference();
    Balance();
    Warp();
    Flip();
    Brightness();
    Mask();
  }

  const ClFrameRoad::EKind eKind;
  size_t nFrame = 0;
  ClFrameRoad oRoad;
  ClImage oRectified, oMasked;
};

void Step(benchmark::State& oState, ClFrameRoad::EKind eKind, void (ClRoad::*pfnStep)()) {
  ClRoad oRoad(eKind);
  oRoad.StepByStep();
  for (auto _ : oState) (oRoad.*pfnStep)();
}

/// The road of roll frames, and how they are put together.
struct ClRollRoad : ClRoad {
  ClRollRoad() : ClRoad(ClFrameRoad::eRoll) {}

  void Roll() { oRoll.ApplyParam(oMasked, oPrint); }
  void Mean() { oMean.ApplyParam(oMasked, oSoft, 15); }
  void Binarize() { oBinarize.ApplyParam(oMasked, oSoft, 128.0); }
  void Label() { oLabeling.ApplyParam(oBinary, oLabels); }
  void WholeRoll() {
    Whole();
    Roll();
    nFrame = (nFrame + 1) % Scene().Roll().size();
  }
  /// Stands in the middle of a roll.
  void Prepare() {
    for (int n = 0; n < 20; ++n) WholeRoll();
    Mean();
    oBinarize.ApplyParam(oSoft, oBinary, 255.0);
  }

  ClImage oPrint, oSoft, oBinary, oLabels;
  ClIpAutoRoll oRoll;
  ClIpFilterMid oMean;
  ClIpBinarizeGlobal oBinarize;
  ClIpLabeling oLabeling;
};

void RollStep(benchmark::State& oState, void (ClRollRoad::*pfnStep)()) {
  ClRollRoad oRoad;
  oRoad.Prepare();
  for (auto _ : oState) (oRoad.*pfnStep)();
}

/// A lit frame of the signature pad, from the raw plane to the position of the pen.
void SignatureFrame(benchmark::State& oState) {
  ClImage oRaw, oAdjusted;
  oRaw.NewWithType(ClImage::eUint8, 960, 680, 1, 0, 0, true);
  ClPenDetector oDetector(oRaw.Width(), oRaw.Height(), false);
  size_t nFrame = 0;
  for (auto _ : oState) {
    const std::vector<unsigned char>& aPlanes = Scene().Signature()[nFrame++ % Scene().Signature().size()];
    const bool bLitFirst = (aPlanes[0] & 0x0F) != 0;
    const unsigned char* pLit = aPlanes.data() + (bLitFirst ? 0 : oRaw.DataBytes());
    std::copy_n(pLit, oRaw.DataBytes(), oRaw.Data());
    Scene().Setup().AdjustBrightnessSignature(oRaw, oAdjusted, 192);
    benchmark::DoNotOptimize(oDetector.Detect(oAdjusted));
  }
}

void CalibrationSetup(benchmark::State& oState) {
  for (auto _ : oState) benchmark::DoNotOptimize(Scene().MakeSetup());
}

constexpr auto cnUnit = benchmark::kMillisecond;
BENCHMARK_CAPTURE(Step, PreviewDifference, ClFrameRoad::ePreview, &ClRoad::Difference)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, PreviewBalance, ClFrameRoad::ePreview, &ClRoad::Balance)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, PreviewWarp, ClFrameRoad::ePreview, &ClRoad::Warp)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, PreviewFlip, ClFrameRoad::ePreview, &ClRoad::Flip)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, PreviewBrightness, ClFrameRoad::ePreview, &ClRoad::Brightness)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, PreviewRectify, ClFrameRoad::ePreview, &ClRoad::Rectify)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, PreviewMask, ClFrameRoad::ePreview, &ClRoad::Mask)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, PreviewFrame, ClFrameRoad::ePreview, &ClRoad::Whole)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, FullDifference, ClFrameRoad::eFull, &ClRoad::Difference)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, FullBalance, ClFrameRoad::eFull, &ClRoad::Balance)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, FullWarp, ClFrameRoad::eFull, &ClRoad::Warp)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, FullFlip, ClFrameRoad::eFull, &ClRoad::Flip)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, FullBrightness, ClFrameRoad::eFull, &ClRoad::Brightness)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, FullRectify, ClFrameRoad::eFull, &ClRoad::Rectify)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, FullMask, ClFrameRoad::eFull, &ClRoad::Mask)->Unit(cnUnit);
BENCHMARK_CAPTURE(Step, FullFrame, ClFrameRoad::eFull, &ClRoad::Whole)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollDifference, &ClRollRoad::Difference)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollBalance, &ClRollRoad::Balance)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollWarp, &ClRollRoad::Warp)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollFlip, &ClRollRoad::Flip)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollBrightness, &ClRollRoad::Brightness)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollRectify, &ClRollRoad::Rectify)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollMask, &ClRollRoad::Mask)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollAutoRoll, &ClRollRoad::Roll)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollOneMean, &ClRollRoad::Mean)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollOneBinarize, &ClRollRoad::Binarize)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollOneLabeling, &ClRollRoad::Label)->Unit(cnUnit);
BENCHMARK_CAPTURE(RollStep, RollFrame, &ClRollRoad::WholeRoll)->Unit(cnUnit);
BENCHMARK(SignatureFrame)->Unit(cnUnit);
BENCHMARK(CalibrationSetup)->Unit(cnUnit)->UseRealTime()->MeasureProcessCPUTime();

}  // namespace

BENCHMARK_MAIN();
