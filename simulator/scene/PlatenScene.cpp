// All that lies on one platen.
#include "scene/PlatenScene.h"

#include "scene/DirtContent.h"
#include "scene/FingerContent.h"
#include "scene/PenContent.h"
#include "scene/Random.h"
#include "scene/SheetContent.h"
#include "scene/TargetContent.h"

namespace Simulator {

ClPlatenScene::ClPlatenScene(const ClScannerDescription& oScanner) {
  if (oScanner.oTarget.bThere) m_aContent.push_back(std::make_unique<ClTargetContent>(oScanner.oTarget));
  m_nFirstFinger = m_aContent.size();
  for (const ClFingerDescription& oFinger : oScanner.aFingers)
    m_aContent.push_back(std::make_unique<ClFingerContent>(oFinger));
  for (const ClDirtDescription& oDirt : oScanner.aDirt)
    m_aContent.push_back(std::make_unique<ClDirtContent>(oDirt));
  if (!oScanner.oPen.aStrokes.empty()) {
    m_pPen = std::make_shared<const ClPenPath>(oScanner.oPen.aStrokes);
    m_aContent.push_back(std::make_unique<ClPenContent>(oScanner.oPen, m_pPen));
  }
  // A sheet covers what is drawn before it; of several sheets the first is on top.
  for (auto it = oScanner.aSheets.rbegin(); it != oScanner.aSheets.rend(); ++it)
    m_aContent.push_back(std::make_unique<ClSheetContent>(*it));
}

uint64_t ClPlatenScene::StateAt(double dSeconds) const {
  uint64_t nState = m_aContent.size();
  for (const auto& pContent : m_aContent) nState = Mix(nState, pContent->StateAt(dSeconds));
  return nState;
}

void ClPlatenScene::Draw(double dSeconds, ClPlatenMap& oMap) const {
  for (const auto& pContent : m_aContent) pContent->Draw(dSeconds, oMap);
}

void ClPlatenScene::DrawUnrolled(double dFrom, double dUntil, ClPlatenMap& oMap) const {
  for (const auto& pContent : m_aContent) pContent->DrawUnrolled(dFrom, dUntil, oMap);
}

void ClPlatenScene::AddMinutiae(double dSeconds, std::vector<ClMinutia>& aMinutiae) const {
  for (size_t i = 0; i < m_aContent.size(); ++i) {
    const size_t nFirst = aMinutiae.size();
    m_aContent[i]->AddMinutiae(dSeconds, aMinutiae);
    for (size_t k = nFirst; k < aMinutiae.size(); ++k)
      aMinutiae[k].nFinger = static_cast<unsigned>(i - m_nFirstFinger);
  }
}

void ClPlatenScene::AddRidges(double dSeconds, TpPlane<ClRidgeHere>& oRidges) const {
  for (const auto& pContent : m_aContent) pContent->AddRidges(dSeconds, oRidges);
}

void ClPlatenScene::Count(double dSeconds, ClPlatenFacts& oFacts) const {
  for (const auto& pContent : m_aContent) pContent->Count(dSeconds, oFacts);
}

}  // namespace Simulator
