// The hand-over between two threads.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <boost/thread/thread.hpp>

#include "MXLiveScannerTools/TpTripleBuffer.h"
#include "Raised.h"

namespace {

class TripleBuffer : public testing::Test {
 protected:
  TripleBuffer() { m_oBuffer.SetBuffer(&m_aItems[0], &m_aItems[1], &m_aItems[2]); }

  void Write(int nValue) {
    *m_oBuffer.GetWrite() = nValue;
    m_oBuffer.ReleaseWrite();
  }
  int Read() {
    const int nValue = *m_oBuffer.GetRead();
    m_oBuffer.ReleaseRead();
    return nValue;
  }
  int m_aItems[3] = {100, 101, 102};
  ClTpTripleBuffer<int> m_oBuffer;
};

TEST_F(TripleBuffer, TheReaderGetsTheNewestItem) {
  EXPECT_EQ(Read(), 101) << "nothing was written yet";
  Write(1);
  Write(2);
  EXPECT_TRUE(m_oBuffer.HasNewData());
  EXPECT_EQ(Read(), 2);
  EXPECT_FALSE(m_oBuffer.HasNewData());
  EXPECT_EQ(Read(), 2) << "the same content as last time";
}

TEST_F(TripleBuffer, TheWriterNeverGetsTheItemThatIsRead) {
  m_oBuffer.ReleaseRead();
  Write(1);
  int nWritten = 1;
  for (int nRound = 0; nRound < 5; ++nRound) {
    const int* pRead = m_oBuffer.GetRead();
    EXPECT_EQ(*pRead, nWritten);
    for (int n = 0; n <= nRound; ++n) {
      int* pWrite = m_oBuffer.GetWrite();
      EXPECT_NE(pWrite, pRead);
      *pWrite = ++nWritten;
      m_oBuffer.ReleaseWrite();
    }
    m_oBuffer.ReleaseRead();
  }
  EXPECT_EQ(Read(), nWritten);
}

TEST_F(TripleBuffer, ASideTakenTwiceIsRefusedAndTheItemsStay) {
  m_oBuffer.GetRead();
  EXPECT_EQ(NumberOf([&] { m_oBuffer.GetRead(); }), -50);
  EXPECT_EQ(NumberOf([&] { m_oBuffer.SetBuffer(nullptr, nullptr, nullptr); }), -50);
  m_oBuffer.ReleaseRead();
  m_oBuffer.ReleaseRead();
  m_oBuffer.GetWrite();
  EXPECT_EQ(NumberOf([&] { m_oBuffer.GetWrite(); }), -50);
  m_oBuffer.CancelWrite();
  EXPECT_FALSE(m_oBuffer.HasNewData()) << "a write that was given up is not published";
  Write(4);
  m_oBuffer.SetBuffer(&m_aItems[0], &m_aItems[1], &m_aItems[2]);
  EXPECT_FALSE(m_oBuffer.HasNewData()) << "new items hold nothing new";
}

TEST_F(TripleBuffer, AScopedWriteThatFailsIsGivenBack) {
  try {
    TpWriteLock<int> oWrite(m_oBuffer);
    throw 1;
  } catch (int) {
  }
  {
    TpWriteLock<int> oWrite(m_oBuffer);
    oWrite.Item() = 9;
    oWrite.Publish();
  }
  TpReadLock<int> oRead(m_oBuffer);
  EXPECT_EQ(oRead.Item(), 9);
}

TEST_F(TripleBuffer, AWaitEndsWithAnItemAnInterruptOrItsTime) {
  EXPECT_FALSE(m_oBuffer.WaitNewData(boost::posix_time::milliseconds(20)));
  Write(1);
  EXPECT_TRUE(m_oBuffer.WaitNewData(0));
  Read();
  std::atomic<bool> bEnded{false};
  boost::thread oWaiter([&] {
    EXPECT_TRUE(m_oBuffer.WaitNewData(60));
    bEnded = true;
  });
  while (!bEnded) m_oBuffer.InterruptWait();
  oWaiter.join();
  Write(2);
  m_oBuffer.InterruptWait();
  EXPECT_FALSE(m_oBuffer.HasNewData()) << "what was written is forgotten";
}

TEST_F(TripleBuffer, NoItemIsTornOrDeliveredTwice) {
  using Item = std::array<int, 66>;
  Item aItems[3] = {};
  ClTpTripleBuffer<Item> oBuffer;
  oBuffer.SetBuffer(&aItems[0], &aItems[1], &aItems[2]);
  constexpr int cnItems = 20000;
  boost::thread oWriter([&] {
    for (int n = 1; n <= cnItems; ++n) {
      TpWriteLock<Item> oWrite(oBuffer);
      oWrite.Item().fill(n);
      oWrite.Publish();
    }
  });
  int nPrevious = 0;
  while (nPrevious < cnItems) {
    ASSERT_TRUE(oBuffer.WaitNewData(60));
    if (!oBuffer.HasNewData()) continue;
    TpReadLock<Item> oRead(oBuffer);
    EXPECT_GT(oRead.Item().front(), nPrevious);
    EXPECT_EQ(oRead.Item().front(), oRead.Item().back());
    nPrevious = oRead.Item().front();
  }
  oWriter.join();
}

}  // namespace
