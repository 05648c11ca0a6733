// A host that loads and unloads the library, as one with plug-ins does.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

/// Mappings of this process of files whose paths hold the word.
int Mappings(const std::string& sWord) {
  std::ifstream oMaps("/proc/self/maps");
  int nMappings = 0;
  for (std::string sLine; std::getline(oMaps, sLine);) nMappings += sLine.find(sWord) != std::string::npos;
  return nMappings;
}

template <typename TFunction>
TFunction* Find(void* pLibrary, const char* szName) {
  return reinterpret_cast<TFunction*>(dlsym(pLibrary, szName));
}

TEST(Unload, LeavesNothingOfTheLibraryOrOfTheScanLibraryMapped) {
  setenv("KELVARIN_SDK_SIMULATE", "1", 1);
  setenv("KELVARIN_VTSIM_SCENE", "empty", 1);
  for (int n = 0; n < KLV_ROUNDS; ++n) {
    void* pLibrary = dlopen(KLV_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(pLibrary, nullptr) << dlerror();
    ASSERT_EQ(Find<long(const char*)>(pLibrary, "LS_VT40Initialize")(nullptr), 0);
    if (n < 3) {
      // The engine's threads and the maps that it makes.
      void* h = nullptr;
      ASSERT_EQ(Find<long(const char*, void**)>(pLibrary, "LS_VT40OpenScanner")("VT40-AB0001", &h), 0);
      ASSERT_EQ(Find<long(void*, int)>(pLibrary, "LS_VT40SetCaptureMode")(h, 0), 0);
      ASSERT_EQ(Find<long(void**)>(pLibrary, "LS_VT40CloseScanner")(&h), 0);
    }
    ASSERT_EQ(Find<long()>(pLibrary, "LS_VT40Uninitialize")(), 0);
    ASSERT_GT(Mappings("libKelvarinLiveScannerVT40"), 0);
    ASSERT_EQ(dlclose(pLibrary), 0);
    ASSERT_EQ(Mappings("libKelvarinLiveScannerVT40"), 0) << "round " << n;
    ASSERT_EQ(Mappings("kelvarinvtscanapi"), 0) << "round " << n;
  }
}

/// Takes a preview and ends the process with the scanner open.
[[noreturn]] void EndInTheMiddle() {
  setenv("KELVARIN_SDK_SIMULATE", "1", 1);
  setenv("KELVARIN_VTSIM_SCENE", "finger", 1);
  void* pLibrary = dlopen(KLV_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  if (pLibrary == nullptr || Find<long(const char*)>(pLibrary, "LS_VT40Initialize")(nullptr) != 0) exit(1);
  void* h = nullptr;
  if (Find<long(const char*, void**)>(pLibrary, "LS_VT40OpenScanner")("VT40-AB0001", &h) != 0) exit(2);
  if (Find<long(void*, int)>(pLibrary, "LS_VT40SetCaptureMode")(h, 5) != 0) exit(3);
  std::vector<unsigned char> aImage(800 * 800);
  double dScore = 0.0;
  unsigned char bDone = 0;
  long nResult = 0;
  exit(Find<long(void*, void*, double*, unsigned char*, long*)>(pLibrary, "LS_VT40GetPreviewImage")(
           h, aImage.data(), &dScore, &bDone, &nResult) == 0
           ? 0
           : 4);
}

TEST(Unload, AProcessMayEndWithTheScannerOpen) {
  for (int n = 0; n < 20; ++n) {
    const pid_t nChild = fork();
    ASSERT_GE(nChild, 0);
    if (nChild == 0) EndInTheMiddle();
    int nStatus = 0;
    ASSERT_EQ(waitpid(nChild, &nStatus, 0), nChild);
    ASSERT_TRUE(WIFEXITED(nStatus)) << "signal " << WTERMSIG(nStatus) << ", run " << n;
    ASSERT_EQ(WEXITSTATUS(nStatus), 0) << "run " << n;
  }
}

}  // namespace
