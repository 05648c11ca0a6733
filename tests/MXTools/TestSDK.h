// A small SDK on which its frame is tested.
#pragma once

#include <stdexcept>

#include "MXTools/SDKBase.h"

/// Counts its beginnings and ends, and fails to begin when asked to.
class ClTestSDK : public TpSDKBase<ClTestSDK, ClLoggingChain> {
 public:
  static constexpr char m_szVersion[] = "7.8";
  static inline const char* m_szLongVersion = "SDK: Test Version: 7.8 free text";
  static inline int s_nInitialized = 0, s_nUninitialized = 0, s_nFailure = 0;

  void OnInitialize() override {
    ++s_nInitialized;
    if (s_nFailure == 1) KLV_RAISE_NUMBER(-60);
    if (s_nFailure == 2) throw std::runtime_error("no exception of the SDK");
  }
  void OnUninitialize() override { ++s_nUninitialized; }
};
