// Feeds a stream to typed reads, bit by bit and string by string, in an order that the input itself chooses.
#include <memory>

#include "StreamBytes.h"

namespace {

void ReadText(ClStream& oStream) {
  char* szText = nullptr;
  const auto Read = [&] { oStream.ReadString(&szText); };
  const bool bRefused = Refused(Read);
  const std::unique_ptr<char[]> pOwner(szText);
  if (bRefused) KLV_RAISE(ClExStreamUnexpectedEnd, "refused", -201);
}

void Step(ClFuzzInput& rOrders, ClStream& oStream) {
  char aRoom[16];
  double dNumber = 0;
  unsigned int nNumber = 0;
  const unsigned int nOrder = rOrders.Byte();
  const unsigned int nSize = rOrders.Byte();
  switch (nOrder % 10) {
    case 0:
      return ReadText(oStream);
    case 1:
      oStream.ReadString(aRoom, nSize % (sizeof(aRoom) + 1));
      return;
    case 2:
      oStream.ReadBits(nNumber, nSize % 40);
      Require(nSize % 40 >= 32 || nNumber >> (nSize % 40) == 0, "no more bits than were asked for");
      return;
    case 3:
      oStream.ReadBitFlush();
      return;
    case 4:
      oStream.ReadNumericArray(aRoom, nSize % 3, nOrder / 10 % 9);
      return;
    case 5:
      oStream.ReadAutoSwap(dNumber);
      return;
    case 6:
      oStream.BitPosSet(nSize);
      return;
    case 7:
      oStream.BitSeek(static_cast<long>(nSize) - 128, static_cast<int>(nOrder / 10 % 4));
      return;
    case 8:
      oStream.SetBigEndian(nSize % 2 == 0);
      return;
    default:
      oStream.Seek(static_cast<long>(nSize) - 128, static_cast<int>(nOrder / 10 % 4));
  }
}

}  // namespace

std::vector<Bytes> Seeds() {
  const Bytes aStream = Written([](ClStream& oStream) {
    oStream.WriteString("text");
    oStream.WriteString("a second one");
    oStream.WriteBits(5, 3);
    oStream.WriteBits(1000, 29);
    oStream.BitFlush();
    oStream.WriteAutoSwap(1.5);
  });
  Bytes aSeed;
  ClFuzzInput::PutBlock(aSeed, {0, 0, 1, 16, 2, 3, 2, 29, 3, 0, 5, 0, 6, 9, 7, 100, 8, 1, 9, 128, 14, 2});
  aSeed.insert(aSeed.end(), aStream.begin(), aStream.end());
  return {aSeed};
}

void Feed(const Bytes& aInput) {
  ClFuzzInput oInput(aInput);
  const Bytes aOrders = oInput.Block();
  const Bytes aStream = oInput.Rest();
  for (const bool bFailureFlag : {false, true}) {
    ClBytesStream oStream(aStream);
    oStream.m_bFailureFlag = bFailureFlag;
    ClFuzzInput oOrders(aOrders);
    while (!oOrders.IsEmpty()) Refused([&] { Step(oOrders, oStream); });
    Require(oStream.Pos() >= 0 && oStream.Pos() <= oStream.Size(), "reading stays inside the stream");
  }
}
