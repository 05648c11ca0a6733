// What waits to be sent to one client.
#pragma once

#include <deque>
#include <memory>
#include <string>

#include "Frame.h"

namespace Serve {

using Text = std::shared_ptr<const std::string>;

/// What is sent next: a text, a frame, or nothing.
struct StOutgoing {
  Text pText;
  std::shared_ptr<ClFrame> pFrame;      ///< keeps the payload
  const StPayload* pPayload = nullptr;  ///< of the frame, in the client's format
};

/// Decides what a client gets. Only the newest frame waits, until the client has seen all but two of those
/// that were sent; facts of frames are lost by a client that does not keep up, other texts are not.
///
/// Threads  thread-bound.
class ClFlow {
 public:
  void Offer(std::shared_ptr<ClFrame> pFrame) { m_pFrame = std::move(pFrame); }
  void Offer(Text pText, bool bMayBeLost = false);
  /// The client has drawn a frame, and those before it.
  void Seen(uint32_t nFrame);
  /// The form of the frames from now on.
  void SetForm(EFrameFormat eFormat, unsigned int nScale);
  /// Takes what is to be sent next. Errors: those of the frame's format.
  StOutgoing Next();
  /// Whether so much waits that the client is not worth keeping.
  bool IsOverrun() const { return m_aTexts.size() > cnMostTexts; }

 private:
  static constexpr size_t cnMostTexts = 256;
  static constexpr size_t cnMostFacts = 8;
  static constexpr size_t cnMostUnseen = 2;

  EFrameFormat m_eFormat = eFormatGrey;
  unsigned int m_nScale = 1;
  std::deque<Text> m_aTexts;
  std::shared_ptr<ClFrame> m_pFrame;
  std::deque<uint32_t> m_aUnseen;  ///< numbers, oldest first
};

}  // namespace Serve
