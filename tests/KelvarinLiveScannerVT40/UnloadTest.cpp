// A host that loads and unloads the library, as one with plug-ins does.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

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

}  // namespace
