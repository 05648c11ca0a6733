// The tables of sensor sizes and what the base answers for implementations that do not.
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"
#include "Raised.h"

namespace {

/// A scanner of any product.
class ClProduct : public ClMXVTScanAPIWrapper {
 public:
  explicit ClProduct(int nProduct) : ClMXVTScanAPIWrapper(nullptr, nullptr) {
    m_ePid = static_cast<ClMXVTScanAPI::EScannerProductID_t>(nProduct);
    ConfigureResolutionMap();
  }
  const ScannerTypes::Resolution* Find(int nMode) const {
    const auto oFound = ResolutionMap().find(static_cast<EScanMode_t>(nMode));
    return oFound == ResolutionMap().end() ? nullptr : oFound->second;
  }
};

TEST(MXVTScanAPIHandleBase, EachProductHasTheModesOfItsSensor) {
  for (int nProduct : {17, 23}) {
    ClProduct oScanner(nProduct);
    EXPECT_EQ(oScanner.ResolutionMap().size(), 14u);
    ASSERT_NE(oScanner.Find(8), nullptr);
    EXPECT_EQ(oScanner.Find(8)->nHeight, 1362u) << "the roll window has two rows more than half";
    EXPECT_EQ(oScanner.Find(7)->nWidth, 3840u);
    EXPECT_EQ(oScanner.Find(38)->nHeight, 340u);
    EXPECT_EQ(oScanner.Find(16), nullptr);
    oScanner.ConfigureResolutionMap();
    EXPECT_EQ(oScanner.ResolutionMap().size(), 14u);
  }
  const ClProduct oSingle(16);
  EXPECT_EQ(oSingle.ResolutionMap().size(), 13u);
  EXPECT_EQ(oSingle.Find(7), nullptr);
  EXPECT_EQ(oSingle.Find(37)->nWidth, 320u);
  EXPECT_TRUE(ClProduct(99).ResolutionMap().empty());
}

TEST(MXVTScanAPIHandleBase, WhatAnImplementationDoesNotTellIsRefusedOrLeft) {
  ClProduct oScanner(17);
  unsigned short nSize = 4711;
  EXPECT_TRUE(oScanner.ClMXVTScanAPIHandleBase::GetEPROMSize(&nSize));
  EXPECT_EQ(nSize, 4711);
  EXPECT_FALSE(oScanner.IsUSBPowered());
  EXPECT_THAT(Raised([&] { oScanner.ClMXVTScanAPIHandleBase::GetAPIVersion(nullptr, nullptr); }),
              testing::Pair(-103, testing::EndsWith("\nNo API version available.")));
  ClMXVTScanAPI::EScannerProductID_t ePid;
  oScanner.GetPid(&ePid);
  EXPECT_EQ(ePid, 17);
  EXPECT_THROW(oScanner.GetPid(nullptr), ClException);
}

}  // namespace
