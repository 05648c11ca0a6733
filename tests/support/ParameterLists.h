// What the two lists of a processor's parameters must have in common.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "MXTools/FpImage.h"
#include "MXTools/ParameterContainer.h"
#include "MXTools/ParameterEnumInterface.h"
#include "MXTools/ParameterInterface.h"
#include "MXTools/ParameterNumericInterface.h"
#include "MXTools/ProcessorBase.h"

/// The value of a published parameter as a number; of an image its address.
inline double PublishedNumber(ClProcessorBase& oProcessor, const std::string& szName) {
  ClParameterContainer oContainer;
  oProcessor.QueryParameters(oContainer);
  ClParameter* pParameter = oContainer.Find(szName.c_str());
  if (pParameter->IsNumeric()) return pParameter->GetNumericInterface()->GetNumber();
  return static_cast<double>(pParameter->GetEnumInterface()->GetValue());
}

/// The entry of the older list: most have the published name without its type letters.
inline ClParameterInterface::ClParameter* OlderEntry(ClParameterInterface& oList, const std::string& szName) {
  const auto pEnd = std::find_if(szName.begin(), szName.end(), [](char c) { return std::isupper(c) != 0; });
  ClParameterInterface::ClParameter* pEntry = oList.GetParam(std::string(pEnd, szName.end()).c_str());
  return pEntry != nullptr ? pEntry : oList.GetParam(szName.c_str());
}

/// Both lists have szNames, separated by blanks, in their published form and each but images with "=" and its
/// default; nMissing of them are not in the older list. A value that is set by the older list shows in the
/// published one, and defaults come back.
inline void ExpectListsOfOneSetOfMembers(ClProcessorBase& oProcessor, const std::string& szNames,
                                         long nMissing = 0) {
  SCOPED_TRACE(oProcessor.Name());
  ClParameterContainer oContainer;
  ClParameterInterface oList;
  oProcessor.QueryParameters(oContainer);
  oProcessor.QueryParameters(oList);
  EXPECT_EQ(oList.Count() + nMissing, static_cast<long>(oContainer.Entries()));
  std::string szPublished;
  ClImage oImage;
  for (unsigned int n = 0; n < oContainer.Entries(); ++n) {
    const std::string szName = oContainer.At(n)->GetName();
    SCOPED_TRACE(szName);
    szPublished += (n > 0 ? " " : "") + szName;
    const std::string szDefault = oContainer.At(n)->GetDefaultValue();
    if (szDefault != "NULL") szPublished += "=" + szDefault;
    ClParameterInterface::ClParameter* pEntry = OlderEntry(oList, szName);
    if (pEntry == nullptr && nMissing > 0) continue;
    ASSERT_NE(pEntry, nullptr);
    EXPECT_STRNE(pEntry->GetDescription(), "");
    if (pEntry->Type() == ClParameterInterface::eImage) {
      pEntry->SetValue(oImage);
      const auto nAddress = static_cast<double>(static_cast<long>(reinterpret_cast<intptr_t>(&oImage)));
      EXPECT_EQ(PublishedNumber(oProcessor, szName), nAddress);
      pEntry->SetValue(static_cast<ClImage*>(nullptr));
      continue;
    }
    const double dDefault = pEntry->GetValue();
    const double dOther = dDefault == 1.0 ? 0.0 : 1.0;
    pEntry->SetValue(dOther);
    EXPECT_EQ(PublishedNumber(oProcessor, szName), dOther);
    ClParameterContainer oChanged;
    oProcessor.QueryParameters(oChanged);
    EXPECT_FALSE(oChanged.Find(szName.c_str())->IsDefault());
    oProcessor.SetParametersToDefault();
    EXPECT_TRUE(pEntry->GetValue() == dDefault || dDefault != dDefault);
  }
  EXPECT_EQ(szPublished, szNames);
}
