// The rules by which a slow client loses frames.
#include "Flow.h"

#include <utility>

namespace Serve {

void ClFlow::Offer(Text pText, bool bMayBeLost) {
  if (!bMayBeLost || m_aTexts.size() < cnMostFacts) m_aTexts.push_back(std::move(pText));
}

void ClFlow::Seen(uint32_t nFrame) {
  while (!m_aUnseen.empty() && m_aUnseen.front() <= nFrame) m_aUnseen.pop_front();
}

void ClFlow::SetForm(EFrameFormat eFormat, unsigned int nScale) {
  m_eFormat = eFormat;
  m_nScale = nScale;
}

StOutgoing ClFlow::Next() {
  StOutgoing oNext;
  if (!m_aTexts.empty()) {
    oNext.pText = std::move(m_aTexts.front());
    m_aTexts.pop_front();
  } else if (m_pFrame != nullptr && m_aUnseen.size() <= cnMostUnseen) {
    m_aUnseen.push_back(m_pFrame->nNumber);
    oNext.pFrame = std::move(m_pFrame);
    oNext.pPayload = &oNext.pFrame->Payload(m_eFormat, m_nScale);
  }
  return oNext;
}

}  // namespace Serve
