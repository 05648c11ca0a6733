// Holds both lists of every processor's parameters against docs/processors.md.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>

#include "AllProcessors.h"
#include "MXTools/ParameterContainer.h"
#include "MXTools/ParameterInterface.h"

namespace {

using Older = ClParameterInterface::ClParameter;
using Processors = std::vector<std::unique_ptr<ClProcessorBase>>;
using Weights = ClInterpolationBicubicQuantized<1, 5, 600, 375, 750>;

template <class... TProcessors>
Processors MakeEach() {
  Processors aProcessors;
  (aProcessors.push_back(std::make_unique<TProcessors>()), ...);
  return aProcessors;
}

Processors AllProcessors() {
  return MakeEach<ClIpAnd, ClIpBinarizeGlobal, ClIpBinarizeLocal2, ClIpConnectedComponent2,
                  ClIpConvertDataType, ClIpCut, ClIpDelta, ClIpFilterGauss, ClIpFilterMax, ClIpFilterMid,
                  ClIpFilterMin, ClIpFlip, ClIpInvert, ClIpJoinPlanes, ClIpLabeling, ClIpMoveImage,
                  ClIpMultiply, ClIpRescale, ClIpRotate, ClIpSaturate, ClIpScale, ClIpSplitPlanes,
                  ClIpSubsample, ClIpSubtract, ClIpAdjustBrightness, ClIpBayerDecomposition,
                  ClIpComputeLBPImage_4Neighborhood, ClIpLocalWhiteBalance,
                  ClIpSubsampleFilter<ClFilterLanczos2>, ClIpVT40R4Mask,
                  ClIpCalibrateGeometricBuildRefPointsVT40Donut, ClIpInterpolate2D<ClRadialBasisSquaredDist>,
                  TpIpCalibrateGeometric<Weights>, TpIpCalibrateGeometricSubsample<Weights>, ClIpAutoRoll>();
}

/// Both lists of one processor.
struct ClLists {
  explicit ClLists(ClProcessorBase& oProcessor) {
    oProcessor.QueryParameters(m_oPublished);
    oProcessor.QueryParameters(m_oOlder);
  }
  ClParameter& operator[](unsigned int n) { return *m_oPublished.At(n); }
  /// Most names of the older list are the published ones without their type letters.
  Older* OlderOf(unsigned int n) {
    const std::string szName = (*this)[n].GetName();
    const auto pBare =
        std::find_if(szName.begin(), szName.end(), [](char c) { return std::isupper(c) != 0; });
    Older* pEntry = m_oOlder.GetParam(std::string(pBare, szName.end()).c_str());
    return pEntry != nullptr ? pEntry : m_oOlder.GetParam(szName.c_str());
  }

  ClParameterContainer m_oPublished;
  ClParameterInterface m_oOlder;
};

/// "value name, value name", which both lists must give alike.
std::string ChoicesOf(ClParameter& oParameter, const Older* pEntry) {
  std::string szChoices;
  ClParameterEnumInterface& oEnum = *oParameter.GetEnumInterface();
  for (unsigned int n = 0; n < oEnum.GetValueNameCount(); ++n) {
    char szName[64];
    oEnum.GetValueName(n, szName, sizeof(szName));
    oParameter.SetValue(szName);
    szChoices += (n > 0 ? ", " : "") + std::to_string(oEnum.GetValue()) + " " + szName;
    EXPECT_TRUE(pEntry == nullptr || pEntry->szValue() == szName) << oParameter.GetName();
  }
  return szChoices;
}

/// The page's words on one parameter: name, default, limits and how the older list differs.
std::string Told(ClParameter& oParameter, const Older* pEntry) {
  std::string szTold = "`" + std::string(oParameter.GetName()) + "`";
  const bool bOutput = szTold.find("Out") != std::string::npos;
  EXPECT_EQ(oParameter.GetFlags(), !oParameter.IsPointer() ? 3 : bOutput ? 6 : 5) << szTold;
  if (!oParameter.IsPointer()) szTold += " = " + oParameter.GetDefaultValue();
  if (oParameter.GetDescription() != nullptr) szTold += " (described)";
  if (pEntry == nullptr) return szTold + " (newer only)";
  EXPECT_STRNE(pEntry->GetDescription(), "") << szTold;
  EXPECT_EQ(pEntry->Direction() == ClParameterInterface::eOut, bOutput && oParameter.IsPointer()) << szTold;
  char szLimits[64];
  std::snprintf(szLimits, sizeof(szLimits), " in [%g, %g]", pEntry->Minimum(), pEntry->Maximum());
  if (pEntry->Minimum() < pEntry->Maximum()) szTold += szLimits;
  return szTold + (szTold[1] == pEntry->GetName()[0] && std::islower(szTold[1]) != 0 ? " (as is)" : "");
}

/// The values as texts, followed by "*" where they are no defaults.
std::vector<std::string> ValuesOf(ClProcessorBase& oProcessor) {
  ClLists oLists(oProcessor);
  std::vector<std::string> aValues;
  for (unsigned int n = 0; n < oLists.m_oPublished.Entries(); ++n)
    aValues.push_back(oLists[n].GetValue() + (oLists[n].IsDefault() ? "" : "*"));
  return aValues;
}

/// Changes the value, by the older list where it has the parameter.
void Change(ClParameter& oParameter, Older* pEntry, ClImage& oImage) {
  if (pEntry != nullptr && oParameter.IsPointer()) {
    pEntry->SetValue(oImage);
  } else if (pEntry != nullptr) {
    pEntry->SetValue(pEntry->GetValue() == 1.0 ? 0.0 : 1.0);
  } else if (oParameter.IsPointer()) {
    dynamic_cast<TpParameterEnumPointer<ClImage*, ClParameter>&>(oParameter).SetTypedValue(&oImage);
  } else if (oParameter.IsEnum()) {
    oParameter.GetEnumInterface()->SetValue(1);
  } else {
    oParameter.SetValue("2");
  }
}

}  // namespace

TEST(ParameterLists, AreThoseOfThePage) {
  std::ostringstream oText;
  oText << std::ifstream(KLV_PROCESSORS_PAGE).rdbuf();
  const std::string szPage = oText.str();
  size_t nRows = 0;
  for (size_t n = 0; (n = szPage.find("\n| `", n)) != std::string::npos; ++n) ++nRows;
  EXPECT_EQ(AllProcessors().size(), nRows);
  for (const auto& pProcessor : AllProcessors()) {
    ClLists oLists(*pProcessor);
    std::string szTold, szOrder, szOlder;
    for (unsigned int n = 0; n < oLists.m_oPublished.Entries(); ++n) {
      const Older* pEntry = oLists.OlderOf(n);
      szTold += (n > 0 ? ", " : "") + Told(oLists[n], pEntry);
      if (pEntry != nullptr) szOrder += std::string(" ") + pEntry->GetName();
      if (!oLists[n].IsEnum()) continue;
      const std::string szChoices = ChoicesOf(oLists[n], pEntry);
      if (szChoices == "0 False, 1 True") continue;
      EXPECT_NE(szPage.find(std::string("\n- `") + oLists[n].GetName() + "`: " + szChoices + "\n"),
                std::string::npos)
          << szChoices;
    }
    for (long n = 0; n < oLists.m_oOlder.Count(); ++n)
      szOlder += std::string(" ") + oLists.m_oOlder.GetParam(n)->GetName();
    if (szOlder != szOrder) szTold += "; in the older list" + szOlder;
    const std::string szRow =
        szPage.substr(szPage.find(std::string("\n| `") + pProcessor->Name() + "` | ") + 1);
    EXPECT_THAT(szRow.substr(0, szRow.find('\n')),
                testing::HasSubstr(" | " + (szTold.empty() ? "none" : szTold) + " | "));
  }
}

TEST(ParameterLists, BindEachParameterToAMemberOfItsOwnAndCopyItUnlessItIsAnImage) {
  // Images, and the sizes of pictures that are drawn from nothing, stay when defaults are restored.
  const std::string szKept = " nInTargetWidth nInTargetHeight";
  for (const auto& pProcessor : AllProcessors()) {
    const std::vector<std::string> aDefaults = ValuesOf(*pProcessor);
    for (unsigned int n = 0; n < aDefaults.size(); ++n) {
      const std::unique_ptr<ClProcessorBase> oNew(pProcessor->Create());
      ASSERT_STREQ(oNew->Name(), pProcessor->Name());
      ClLists oLists(*oNew);
      SCOPED_TRACE(std::string(oNew->Name()) + " " + oLists[n].GetName());
      ClImage oImage;
      Change(oLists[n], oLists.OlderOf(n), oImage);
      const std::vector<std::string> aChanged = ValuesOf(*oNew);
      for (unsigned int k = 0; k < aDefaults.size(); ++k)
        EXPECT_EQ(aChanged.at(k) == aDefaults[k], k != n) << k;
      const bool bKept =
          oLists[n].IsPointer() || szKept.find(std::string(" ") + oLists[n].GetName()) < szKept.size();
      EXPECT_EQ(aChanged[n].back() == '*', !bKept);
      const std::unique_ptr<ClProcessorBase> oCopy(pProcessor->Create());
      oNew->CopyParametersTo(*oCopy);
      EXPECT_EQ(ValuesOf(*oCopy), oLists[n].IsPointer() ? aDefaults : aChanged);
      oNew->SetParametersToDefault();
      EXPECT_EQ(ValuesOf(*oNew) == aDefaults, !bKept);
    }
  }
}
