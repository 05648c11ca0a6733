// What a slow client loses and what it does not, and the form of frames.
#include "serve/Flow.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "serve/Outbox.h"
#include "serve/Results.h"

namespace {

using namespace Serve;

std::shared_ptr<ClFrame> FrameOf(uint32_t nNumber) {
  auto pFrame = std::make_shared<ClFrame>();
  pFrame->nNumber = nNumber;
  pFrame->eKind = eFrameRoll;
  pFrame->dTime = 1.5;
  pFrame->oPicture = {6, 4, 9842, 9842, {}};
  for (unsigned char n = 0; n < 24; ++n)
    pFrame->oPicture.aPixels.push_back(static_cast<unsigned char>(10 * n));
  return pFrame;
}

uint32_t NextFrame(ClFlow& oFlow) {
  const StOutgoing oNext = oFlow.Next();
  return oNext.pFrame != nullptr ? oNext.pFrame->nNumber : 0;
}

TEST(Flow, SendsTheNewestFrameWhileAtMostTwoAreUnseen) {
  ClFlow oFlow;
  oFlow.Offer(FrameOf(1));
  oFlow.Offer(FrameOf(2));
  EXPECT_EQ(NextFrame(oFlow), 2u);
  EXPECT_EQ(NextFrame(oFlow), 0u);
  for (const uint32_t n : {3u, 4u}) {
    oFlow.Offer(FrameOf(n));
    EXPECT_EQ(NextFrame(oFlow), n);
  }
  oFlow.Offer(FrameOf(5));
  EXPECT_EQ(NextFrame(oFlow), 0u);
  oFlow.Offer(FrameOf(6));
  oFlow.Seen(2);
  EXPECT_EQ(NextFrame(oFlow), 6u);
  oFlow.Offer(FrameOf(7));
  EXPECT_EQ(NextFrame(oFlow), 0u);
  // Who has seen a frame has seen those before it.
  oFlow.Seen(6);
  for (const uint32_t n : {7u, 8u, 9u}) {
    oFlow.Offer(FrameOf(n));
    EXPECT_EQ(NextFrame(oFlow), n);
  }
}

TEST(Flow, LosesFactsOfFramesButNoOtherTexts) {
  ClFlow oFlow;
  const auto pFacts = std::make_shared<const std::string>("facts");
  const auto pEvent = std::make_shared<const std::string>("event");
  for (int n = 0; n < 100; ++n) oFlow.Offer(pFacts, true);
  for (int n = 0; n < 248; ++n) oFlow.Offer(pEvent);
  EXPECT_FALSE(oFlow.IsOverrun());
  oFlow.Offer(pEvent);
  EXPECT_TRUE(oFlow.IsOverrun());
  int nFacts = 0, nEvents = 0;
  for (StOutgoing o = oFlow.Next(); o.pText != nullptr; o = oFlow.Next())
    ++(o.pText == pFacts ? nFacts : nEvents);
  EXPECT_EQ(nFacts, 8);
  EXPECT_EQ(nEvents, 249);
}

TEST(Frame, HasAHeaderOfThirtyTwoBytesInEachForm) {
  const auto pFrame = FrameOf(0x01020304);
  const StPayload& oGrey = pFrame->Payload(eFormatGrey, 1);
  const std::vector<unsigned char> aHeader = {'V', 'T', 'F', '1', 0, 2,    32,   0, 6,    0,   0,
                                              0,   4,   0,   0,   0, 0x72, 0x26, 0, 0,    4,   3,
                                              2,   1,   0,   0,   0, 0,    0,    0, 0xF8, 0x3F};
  EXPECT_EQ(std::vector<unsigned char>(oGrey.aHeader.begin(), oGrey.aHeader.end()), aHeader);
  EXPECT_EQ(oGrey.pPixels, pFrame->oPicture.aPixels.data());
  EXPECT_EQ(oGrey.nBytes, 24u);
  const StPayload& oHalf = pFrame->Payload(eFormatGrey, 2);
  // Means of four: (0 + 10 + 60 + 70) / 4 and so on.
  EXPECT_EQ(std::vector<unsigned char>(oHalf.pPixels, oHalf.pPixels + oHalf.nBytes),
            (std::vector<unsigned char>{35, 55, 75, 155, 175, 195}));
  EXPECT_EQ(oHalf.aHeader[8], 3);
  EXPECT_EQ(oHalf.aHeader[16] + 256 * oHalf.aHeader[17], 4921);
  const StPayload& oJpeg = pFrame->Payload(eFormatJpeg, 1);
  EXPECT_EQ(oJpeg.aHeader[4], 1);
  EXPECT_EQ(oJpeg.pPixels[0], 0xFF);
  EXPECT_EQ(oJpeg.pPixels[1], 0xD8);
}

TEST(Frame, BlocksComeBackToThePool) {
  ClFramePool oPool;
  std::shared_ptr<ClFrame> pFrame = oPool.Take();
  const ClFrame* pFirst = pFrame.get();
  pFrame->oPicture = FrameOf(1)->oPicture;
  pFrame->Payload(eFormatJpeg, 1);
  EXPECT_NE(oPool.Take().get(), pFirst);
  pFrame.reset();
  pFrame = oPool.Take();
  EXPECT_EQ(pFrame.get(), pFirst);
  // The old message is not sent for the new picture.
  pFrame->oPicture.nWidth = 4;
  EXPECT_EQ(pFrame->Payload(eFormatJpeg, 1).aHeader[8], 4);
}

TEST(Outbox, WakesOnceAndKeepsTheNewestFrame) {
  int nWoken = 0;
  ClOutbox oBox([&] { ++nWoken; });
  std::string sDone;
  oBox.PutAction([&] { sDone += "a"; });
  oBox.PutAction([&] { sDone += "b"; });
  oBox.Put(FrameOf(1));
  oBox.Put(FrameOf(2));
  for (int n = 0; n < 70; ++n) oBox.PutFacts(std::to_string(n));
  EXPECT_EQ(nWoken, 1);
  ClOutbox::StContent oContent;
  oBox.Take(oContent);
  for (const auto& fnAction : oContent.aActions) fnAction();
  EXPECT_EQ(sDone, "ab");
  EXPECT_EQ(oContent.pFrame->nNumber, 2u);
  EXPECT_EQ(oContent.aFacts.size(), 64u);
  EXPECT_EQ(oContent.aFacts.front(), "6");
  oBox.PutFacts("next");
  EXPECT_EQ(nWoken, 2);
  oBox.Take(oContent);
  EXPECT_EQ(oContent.aFacts, std::vector<std::string>{"next"});
  EXPECT_EQ(oContent.pFrame, nullptr);
}

TEST(Results, KeepsTheNewestThirtyTwo) {
  ClResults oResults;
  for (unsigned int n = 1; n <= 33; ++n) oResults.Add({n, {{"id", n}}, {{"full", std::to_string(n)}}});
  EXPECT_EQ(oResults.List().size(), 32u);
  EXPECT_EQ(oResults.List().front()["id"], 33);
  EXPECT_EQ(oResults.Picture(2, "full"), "2");
  EXPECT_ANY_THROW(oResults.Picture(2, "roll"));
  EXPECT_ANY_THROW(oResults.Facts(1));
  oResults.Remove(2);
  EXPECT_ANY_THROW(oResults.Facts(2));
}

}  // namespace
