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

TEST(ScanLibrary, LoadsByItsNameAndHasAllFunctionsOfBothSides) {
  const std::string sPath = SIMULATOR_LIBRARY;
  EXPECT_EQ(sPath.substr(sPath.rfind('/') + 1), "libkelvarinvtscanapi.gcc.Release.32.so");
  void* pLibrary = dlopen(sPath.c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_TRUE(pLibrary) << dlerror();
  std::istringstream oFunctions(g_cszFunctions);
  for (std::string sName; oFunctions >> sName;)
    EXPECT_TRUE(dlsym(pLibrary, ("VTScanAPI" + sName).c_str())) << sName;
  EXPECT_TRUE(dlsym(pLibrary, "VTSimLoadScene"));
  // Nothing of the inside may meet the names of a host.
  EXPECT_FALSE(dlsym(pLibrary, "_ZN9Simulator5ClBus3GetEv"));
  // It works, goes, and comes again.
  for (int i = 0; i < 2; ++i) {
    const auto fnInitialize = reinterpret_cast<long (*)(void*)>(dlsym(pLibrary, "VTScanAPIInitialize"));
    const auto fnQuery =
        reinterpret_cast<long (*)(unsigned*, unsigned*, unsigned)>(dlsym(pLibrary, "VTScanAPIQueryDevices"));
    const auto fnUninitialize = reinterpret_cast<long (*)()>(dlsym(pLibrary, "VTScanAPIUninitialize"));
    unsigned nId = 0, nCount = 1;
    EXPECT_EQ(fnInitialize(nullptr), 0);
    EXPECT_EQ(fnQuery(&nId, &nCount, 17), 0);
    EXPECT_EQ(nCount, 1u);
    EXPECT_EQ(fnUninitialize(), 0);
    EXPECT_EQ(dlclose(pLibrary), 0);
    if (i == 0) pLibrary = dlopen(sPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(pLibrary);
  }
}

TEST(LivenessLibrary, LoadsByItsNameWithItsOwnFunctionsOnly) {
  const std::string sPath = LIVENESS_LIBRARY;
  EXPECT_EQ(sPath.substr(sPath.rfind('/') + 1), "libkelvarinfakefingerdetectionvt40.gcc.Release.32.so");
  for (int i = 0; i < 2; ++i) {
    void* pLibrary = dlopen(sPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(pLibrary) << dlerror();
    for (const char* szName : {"FD_VT40Initialize", "FD_VT40GetErrorDescriptionW", "FDSimFailCall"})
      EXPECT_TRUE(dlsym(pLibrary, szName)) << szName;
    EXPECT_FALSE(dlsym(pLibrary, "_ZN9Simulator11ClDetection3GetEv"));
    const auto fnInitialize = reinterpret_cast<long (*)(void*)>(dlsym(pLibrary, "FD_VT40Initialize"));
    const auto fnUninitialize = reinterpret_cast<long (*)()>(dlsym(pLibrary, "FD_VT40Uninitialize"));
    EXPECT_EQ(fnInitialize(nullptr), 0);
    EXPECT_EQ(fnUninitialize(), 0);
    EXPECT_EQ(fnUninitialize(), -2);
    EXPECT_EQ(dlclose(pLibrary), 0);
  }
}

TEST(ScanLibrary, TheControlHeaderCompilesAsC) {
  EXPECT_EQ(VTSimHeaderWorksInC(), 1);
}

}  // namespace
