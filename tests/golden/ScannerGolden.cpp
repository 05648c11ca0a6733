// The way from a scene to the caller's pixels, capture mode by capture mode; a digest for each.
#include <atomic>
#include <ctime>
#include <string>
#include <vector>

#include "Digest.h"
#include "KelvarinLiveScannerVT40.h"
#include "KelvarinVTScanAPI/VTSim.h"

static std::atomic<long> s_nProcessorTime{0};

/// Replaces the C library's clock(): the pause that ends a signature is processor time, which differs in each
/// run.
extern "C" clock_t clock() noexcept {
  return s_nProcessorTime;
}

namespace {

using ImageCall_t = long (*)(void*, void*, double*, unsigned char*, long*);

/// Four fingers that lie still, without noise: the picture of any sequence, so that it does not matter which
/// of them an automatic decision takes.
constexpr char g_cszStill[] = R"({"scanners": [{"noise": 0, "planeOrder": "dark-first", "fingers": [
    {"print": {"seed": 3}, "x": 15, "y": 40, "angle": 8}, {"print": {"seed": 4}, "x": 34, "y": 33},
    {"print": {"seed": 5, "pattern": "right-loop"}, "x": 53, "y": 35}, {"print": {"seed": 6}, "x": 70, "y": 47}]}]})";

/// One stage: the open scanner before a scene; what fails is printed and ends up in the digest. All stages
/// share one scanner, since its opening takes longer than most of them.
class ClRun {
 public:
  static void Open() {
    ClRun oRun("open", "empty");
    oRun.Check("initialise", LS_VT40Initialize(nullptr));
    oRun.Check("open", LS_VT40OpenScanner("VT40-AB0001", &s_h));
  }
  static void Close() {
    ClRun oRun("close", "empty");
    oRun.Check("close", LS_VT40CloseScanner(&s_h));
    oRun.Check("uninitialise", LS_VT40Uninitialize());
  }
  ClRun(const char* szStage, const char* szScene) : m_szStage(szStage) {
    Check("scene", VTSimLoadScene(szScene));
  }
  ~ClRun() {
    VTSimHoldSequences(nullptr, 0);
    if (s_h) Mode(KLV_VT40_CAPTURE_MODE_OFF);
    PrintStage(m_szStage, m_oDigest);
  }
  ClRun(const ClRun&) = delete;
  ClRun& operator=(const ClRun&) = delete;

  void Mode(int nMode) { Check("mode", LS_VT40SetCaptureMode(s_h, nMode)); }
  /// A mode in which each image waits for a sequence that is let through for it.
  void HeldMode(int nMode) {
    Check("hold", VTSimHoldSequences(nullptr, 1));
    Mode(nMode);
  }
  void Check(const char* szWhat, long nError) {
    if (nError != 0) std::fprintf(stderr, "%s, %s: %ld %s\n", m_szStage, szWhat, nError, VTSimLastError());
    m_oDigest.Add(nError);
  }

  /// Fetches an image; true when it is done.
  bool Fetch(ImageCall_t pfnImage) {
    m_bDone = 0;
    m_nResult = 0;
    m_nError = pfnImage(s_h, m_aPixels.data(), &m_dScore, &m_bDone, &m_nResult);
    return m_nError != 0 || m_bDone != 0;
  }
  void AddImage(size_t nSide) {
    Check("image", m_nError);
    m_oDigest.Add(m_bDone).Add(m_nResult).Add(m_dScore).Add(m_aPixels.data(), nSide * nSide);
  }
  /// Lets held sequences through and fetches what comes of them.
  bool Step(ImageCall_t pfnImage, unsigned int nSequences = 1) {
    VTSimPassSequences(nullptr, nSequences);
    return Fetch(pfnImage);
  }
  /// Images of held sequences, one by one.
  void StepFrames(ImageCall_t pfnImage, size_t nSide, int nFrames) {
    while (nFrames-- > 0) {
      Step(pfnImage);
      AddImage(nSide);
    }
  }
  void FetchUntilDone(ImageCall_t pfnImage, size_t nSide) {
    int nFrames = 100;
    while (!Fetch(pfnImage) && --nFrames > 0) {
    }
    AddImage(nSide);
  }
  ClDigest& Digest() { return m_oDigest; }

 private:
  inline static void* s_h = nullptr;

  const char* m_szStage;
  std::vector<unsigned char> m_aPixels = std::vector<unsigned char>(1600 * 1600);
  long m_nError = 0, m_nResult = 0;
  double m_dScore = -1.0;
  unsigned char m_bDone = 0;
  ClDigest m_oDigest;
};

void Truth(const char* szScene) {
  ClRun oRun(szScene, szScene);
  unsigned int nSize = VTSIM_PICTURE_SIDE * VTSIM_PICTURE_SIDE;
  std::vector<unsigned char> aPicture(nSize), aMask(nSize);
  for (const double dTime : {0.0, 0.55, 1.3}) {
    oRun.Check("truth", VTSimGetGroundTruthAt(nullptr, dTime, aPicture.data(), aMask.data(), &nSize));
    oRun.Digest().Add(aPicture.data(), nSize).Add(aMask.data(), nSize);
  }
}

void Streams() {
  {
    ClRun oRun("one-shot", "slap-right");
    oRun.Mode(KLV_VT40_CAPTURE_MODE_OFF);
    oRun.Fetch(LS_VT40GetImage);
    oRun.AddImage(1600);
  }
  {
    // A sheet comes to the sensor by another way than what is laid as a picture.
    ClRun oRun("sheet", R"({"scanners": [{"noise": 0, "sheets": [{"kind": "bars", "angle": 1}]}]})");
    oRun.Mode(KLV_VT40_CAPTURE_MODE_OFF);
    oRun.Fetch(LS_VT40GetImage);
    oRun.AddImage(1600);
  }
  {
    ClRun oRun("preview", "settling-slap");
    oRun.HeldMode(KLV_VT40_CAPTURE_MODE_PREVIEW);
    oRun.StepFrames(LS_VT40GetPreviewImage, 800, 12);
  }
  {
    ClRun oRun("capture-on-request", g_cszStill);
    oRun.Mode(KLV_VT40_CAPTURE_MODE_PREVIEW);
    oRun.Fetch(LS_VT40GetPreviewImage);
    oRun.AddImage(800);
    oRun.FetchUntilDone(LS_VT40GetImage, 1600);
  }
  ClRun oRun("full", "slap-left");
  oRun.HeldMode(KLV_VT40_CAPTURE_MODE_FULL);
  oRun.StepFrames(LS_VT40GetImage, 1600, 3);
}

void Automatic(const char* szStage, int nMode) {
  ClRun oRun(szStage, g_cszStill);
  oRun.Mode(nMode);
  oRun.FetchUntilDone(LS_VT40GetPreviewImage, 800);
  oRun.FetchUntilDone(LS_VT40GetImage, 1600);
}

/// What the worker decides may come with the picture or with the next one: the last picture counts.
void Roll(const char* szScene) {
  ClRun oRun(szScene, szScene);
  oRun.HeldMode(KLV_VT40_CAPTURE_MODE_ROLL);
  for (int nFrames = 200; nFrames > 0 && !oRun.Step(LS_VT40GetRollImage); --nFrames) {
  }
  oRun.AddImage(800);
}

/// A preview comes after each third frame, and may already show a part of what the next one does.
void Signature(const char* szScene, int nPreviews) {
  ClRun oRun(szScene, szScene);
  oRun.HeldMode(KLV_VT40_CAPTURE_MODE_SIGNATURE);
  VTSimPassSequences(nullptr, 1);
  do s_nProcessorTime += 3 * 16667;
  while (!oRun.Step(LS_VT40GetPreviewImage, 3) && --nPreviews > 0);
  oRun.AddImage(0);
  oRun.Fetch(LS_VT40GetImage);
  oRun.AddImage(1600);
}

}  // namespace

int main() {
  setenv("KELVARIN_SDK_SIMULATE", "1", 1);
  ClRun::Open();
  for (const char* szScene :
       {"slap-right:2", "dirty-slap", "roll-left", "fake-finger", "target", "signature:2"})
    Truth(szScene);
  Streams();
  Automatic("automatic", KLV_VT40_CAPTURE_MODE_AUTO);
  Automatic("automatic-live", KLV_VT40_CAPTURE_MODE_AUTO_LIVE);
  for (const char* szScene : {"roll-right", "roll-twisted"}) Roll(szScene);
  Signature("signature", 150);
  Signature("swipe-right", 40);
  ClRun::Close();
}
