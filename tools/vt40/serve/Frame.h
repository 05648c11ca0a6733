// Pictures on their way to the clients.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "Picture.h"

namespace Serve {

enum EFrameKind : uint8_t { eFramePreview = 0, eFrameFull = 1, eFrameRoll = 2, eFrameSignature = 3 };
enum EFrameFormat : uint8_t { eFormatGrey = 0, eFormatJpeg = 1 };

/// A message of the WebSocket: its header, and where its pixels stand.
struct StPayload {
  static constexpr size_t cnHeader = 32;

  std::array<unsigned char, cnHeader> aHeader{};
  const unsigned char* pPixels = nullptr;
  size_t nBytes = 0;
};

/// One frame of the stream. It is written by the station's thread, and read by the network's alone once it
/// was handed over.
class ClFrame {
 public:
  EFrameKind eKind = eFramePreview;
  uint32_t nNumber = 0;
  double dTime = 0.0;  ///< milliseconds since the epoch at which the frame left the library
  ClPicture oPicture;

  /// The message in a format, at the full size (1) or half of it (2). It is made once for all clients and
  /// lives as long as the frame.
  const StPayload& Payload(EFrameFormat eFormat, unsigned int nScale);
  /// Forgets the messages, before the frame is used again.
  void Renew();

 private:
  struct StVariant {
    bool bMade = false;
    StPayload oPayload;
    std::vector<unsigned char> aBytes;  ///< where the pixels are not those of the picture
  };
  void Make(StVariant& oVariant, EFrameFormat eFormat, unsigned int nScale);

  std::array<StVariant, 4> m_aVariants;
  ClPicture m_oHalf;
};

/// Lends frames, whose blocks are used again when they come back.
///
/// Threads  thread-safe; frames may come back on any thread, and after the pool has gone.
class ClFramePool {
 public:
  ClFramePool() : m_pRoom(std::make_shared<StRoom>()) {}
  std::shared_ptr<ClFrame> Take();

 private:
  struct StRoom {
    std::mutex oMutex;
    std::vector<std::unique_ptr<ClFrame>> aFree;
  };
  std::shared_ptr<StRoom> m_pRoom;
};

/// Half the size in both directions, by the means of four pixels.
void Halve(const ClPicture& oPicture, ClPicture& oHalf);
/// JPEG of the quality that the live view takes, into a vector that is used again. Errors: ClToolError.
void EncodeJpeg(const ClPicture& oPicture, std::vector<unsigned char>& aBytes);

}  // namespace Serve
