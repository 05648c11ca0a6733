// The shared library as a host meets it: loaded by name, with all functions and no others.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

extern "C" int VTSimHeaderWorksInC(void);

namespace {

constexpr char g_cszFunctions[] =
    "Initialize Uninitialize QueryDevices GetDeviceSerial GetVersion GetHandleSerial CreateHandle "
    "DestroyHandle GetDeviceIndex GetPlugStatus SetCaptureSequence SetStatusLED SetResolution "
    "GetResolution SetVSYNC SetGlobalGain SetGain GetImage ListEPROMFile ReadEPROMFile SetPropertyA "
    "SetPropertyW GetPropertyA GetPropertyW GetErrorDescriptionA GetErrorDescriptionW EnableCapture "
    "GetImageSequence Beep SetLED SetLEDEx ApplyInternalCommand SetCaptureSequenceEx GetImageEx "
    "LockRawSequence ReleaseRawSequence SetCaptureMode GetPropertyLongA SetPropertyLongA "
    "SetPropertyDoubleA GetPropertyDoubleA";

/// Loads a library, runs the check on it and lets it go, twice: it works, goes, and comes again.
template <typename F>
void LoadTwice(const std::string& sPath, const char* szName, F&& fnCheck) {
  EXPECT_EQ(sPath.substr(sPath.rfind('/') + 1), szName);
  for (int i = 0; i < 2; ++i) {
    void* pLibrary = dlopen(sPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(pLibrary) << dlerror();
    fnCheck(pLibrary);
    EXPECT_EQ(dlclose(pLibrary), 0);
  }
}

template <typename F>
F* Function(void* pLibrary, const char* szName) {
  return reinterpret_cast<F*>(dlsym(pLibrary, szName));
}

TEST(ScanLibrary, LoadsByItsNameAndHasAllFunctionsOfBothSides) {
  LoadTwice(SIMULATOR_LIBRARY, "libkelvarinvtscanapi.gcc.Release.32.so", [](void* pLibrary) {
    std::istringstream oFunctions(g_cszFunctions);
    for (std::string sName; oFunctions >> sName;)
      EXPECT_TRUE(dlsym(pLibrary, ("VTScanAPI" + sName).c_str())) << sName;
    EXPECT_TRUE(dlsym(pLibrary, "VTSimLoadScene"));
    // No internal name may collide with the names of a host.
    EXPECT_FALSE(dlsym(pLibrary, "_ZN9Simulator5ClBus3GetEv"));
    unsigned nId = 0, nCount = 1;
    EXPECT_EQ(Function<long(void*)>(pLibrary, "VTScanAPIInitialize")(nullptr), 0);
    EXPECT_EQ(
        Function<long(unsigned*, unsigned*, unsigned)>(pLibrary, "VTScanAPIQueryDevices")(&nId, &nCount, 17),
        0);
    EXPECT_EQ(nCount, 1u);
    EXPECT_EQ(Function<long()>(pLibrary, "VTScanAPIUninitialize")(), 0);
  });
}

TEST(LivenessLibrary, LoadsByItsNameWithItsOwnFunctionsOnly) {
  LoadTwice(LIVENESS_LIBRARY, "libkelvarinfakefingerdetectionvt40.gcc.Release.32.so", [](void* pLibrary) {
    for (const char* szName : {"FD_VT40GetErrorDescriptionW", "FDSimFailCall"})
      EXPECT_TRUE(dlsym(pLibrary, szName)) << szName;
    EXPECT_FALSE(dlsym(pLibrary, "_ZN9Simulator11ClDetection3GetEv"));
    EXPECT_EQ(Function<long(void*)>(pLibrary, "FD_VT40Initialize")(nullptr), 0);
    EXPECT_EQ(Function<long()>(pLibrary, "FD_VT40Uninitialize")(), 0);
    EXPECT_EQ(Function<long()>(pLibrary, "FD_VT40Uninitialize")(), -2);
  });
}

TEST(ScanLibrary, TheControlHeaderCompilesAsC) {
  EXPECT_EQ(VTSimHeaderWorksInC(), 1);
}

}  // namespace
