// A simulated scanner under the exported functions, for tests that see the library as an application does.
#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "KelvarinLiveScannerVT40.h"
#include "SimulatedScanner.h"

/// What the image calls deliver.
struct StDelivered {
  long nError = 1;
  double dScore = -1.0;
  unsigned char bDone = 2;
  long nResult = 1;
  std::vector<unsigned char> aPixels;
};

/// The library on a scene, initialised, with no scanner open.
class Api : public testing::Test {
 protected:
  static constexpr char cszSerial[] = "VT40-AB0001";

  void SetUp() override {
    LoadScene(R"({"scanners": [{"serial": "VT40-AB0001"}]})");
    ASSERT_EQ(LS_VT40Initialize(nullptr), 0);
  }

  void TearDown() override {
    VTSimHoldSequences(nullptr, 0);
    if (m_h != nullptr) LS_VT40CloseScanner(&m_h);
    while (LS_VT40Uninitialize() == 0) {
    }
    VTSimReset();
  }

  long Open(const char* szSerial = cszSerial) { return LS_VT40OpenScanner(szSerial, &m_h); }

  /// Puts the scanner before a scene whose sequences are let through one by one: no frame is lost, at any
  /// speed of the machine.
  void StartHeld(const std::string& sScene, int nMode) {
    if (m_h != nullptr) {
      // Frames are on their way while the scanner turns away.
      ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
      ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_OFF), 0);
    }
    LoadScene(sScene);
    if (m_h == nullptr) {
      ASSERT_EQ(Open(), 0);
    }
    ASSERT_EQ(VTSimHoldSequences(nullptr, 1), 0);
    ASSERT_EQ(LS_VT40SetCaptureMode(m_h, nMode), 0);
  }
  /// The scanner changes its mode or closes while frames are on their way; then it must work again.
  void LeaveFor(bool bClose) {
    ASSERT_EQ(VTSimHoldSequences(nullptr, 0), 0);
    if (bClose) {
      ASSERT_EQ(LS_VT40CloseScanner(&m_h), 0);
      ASSERT_EQ(Open(), 0);
    } else {
      ASSERT_EQ(LS_VT40SetCaptureMode(m_h, KLV_VT40_CAPTURE_MODE_PREVIEW), 0);
      EXPECT_EQ(Preview().nError, 0);
    }
  }

  StDelivered Image(size_t nPixels = 1600 * 1600) { return Fetch(LS_VT40GetImage, m_h, nPixels); }
  StDelivered Preview(size_t nPixels = 800 * 800) { return Fetch(LS_VT40GetPreviewImage, m_h, nPixels); }

  /// The capture mode, or the number with which it is refused.
  long Mode() {
    int nMode = 0;
    const long nError = LS_VT40GetCaptureMode(m_h, &nMode);
    return nError != 0 ? nError : nMode;
  }

  using Beeps_t = std::vector<std::pair<unsigned int, unsigned int>>;
  static Beeps_t Beeps() {
    VTSimBeep aBeeps[8];
    unsigned int nCount = 8;
    EXPECT_EQ(VTSimGetBeeps(nullptr, aBeeps, &nCount), 0);
    Beeps_t aArguments;
    for (unsigned int n = 0; n < nCount; ++n) aArguments.emplace_back(aBeeps[n].nArg1, aBeeps[n].nArg2);
    return aArguments;
  }

  static unsigned long long Calls(const char* szFunction) {
    unsigned long long nCount = 0;
    EXPECT_EQ(VTSimGetCallCount(szFunction, &nCount), 0) << VTSimLastError();
    return nCount;
  }

  using ImageCall = long (*)(void*, void*, double*, unsigned char*, long*);
  static StDelivered Fetch(ImageCall pfnImage, void* h, size_t nPixels) {
    StDelivered oDelivered;
    // Bytes after the image that must not be touched.
    oDelivered.aPixels.assign(nPixels + 64, 0xA5);
    oDelivered.nError =
        pfnImage(h, oDelivered.aPixels.data(), &oDelivered.dScore, &oDelivered.bDone, &oDelivered.nResult);
    for (size_t n = nPixels; n < oDelivered.aPixels.size(); ++n) EXPECT_EQ(oDelivered.aPixels[n], 0xA5);
    oDelivered.aPixels.resize(nPixels);
    return oDelivered;
  }

  void* m_h = nullptr;
};

inline double SecondsSince(std::chrono::steady_clock::time_point tStart) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - tStart).count();
}

/// Pixels darker than nGrey.
inline int DarkerThan(const std::vector<unsigned char>& aPixels, int nGrey) {
  return static_cast<int>(
      std::count_if(aPixels.begin(), aPixels.end(), [nGrey](int n) { return n < nGrey; }));
}

/// The same with the scanner open.
class OpenScanner : public Api {
 protected:
  void SetUp() override {
    Api::SetUp();
    ASSERT_EQ(Open(), 0);
  }
};
