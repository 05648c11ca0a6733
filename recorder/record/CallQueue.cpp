// The ring: entries lie whole in it, since they are copied in and compressed out of it in one piece.
#include "record/CallQueue.h"

#include <sys/mman.h>

#include <new>

namespace Recording {
namespace {

/// Memory whose pages are there already: a page that has to be fetched first costs a frame's copy twice its
/// time.
uint8_t* TakeRing(size_t nBytes) {
  void* p = mmap(nullptr, nBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
  if (p == MAP_FAILED) throw std::bad_alloc();
  return static_cast<uint8_t*>(p);
}

}  // namespace

ClCallQueue::ClCallQueue(size_t nBytes)
    : m_nRing((nBytes + 4095) / 4096 * 4096), m_pRing(TakeRing(m_nRing)) {}

ClCallQueue::~ClCallQueue() {
  munmap(m_pRing, m_nRing);
}

/// Makes the rest of the ring an entry of its own when nRoom does not fit before its end. False when there is
/// no room.
bool ClCallQueue::Skip(size_t nRoom) {
  const size_t nRest = m_nRing - static_cast<size_t>(m_nHead % m_nRing);
  const size_t nNeed = nRoom > nRest ? nRest + nRoom : nRoom;
  if (nNeed > m_nRing - static_cast<size_t>(m_nHead - m_nTail)) return false;
  if (nRoom > nRest) {
    *At(m_nHead) = {nRest - cnHeader, true, true};
    m_nHead += nRest;
  }
  return true;
}

ClCallQueue::StEntry* ClCallQueue::Reserve(size_t nBytes, bool bWait) {
  // Half of the ring: more might wait for an empty ring and then not fit into what is left before its end.
  if (nBytes > m_nRing / 2 - 64) return nullptr;
  const size_t nRoom = Room(nBytes);
  std::unique_lock<std::mutex> oLock(m_oMutex);
  while (!Skip(nRoom)) {
    if (!bWait || m_bEnd) return nullptr;
    m_oEmptied.wait(oLock);
  }
  StEntry* pEntry = At(m_nHead);
  *pEntry = {nBytes, false, false};
  m_nHead += nRoom;
  return pEntry;
}

void ClCallQueue::Commit(StEntry* pEntry) {
  {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    pEntry->bReady = true;
  }
  m_oFilled.notify_one();
}

ClCallQueue::StEntry* ClCallQueue::Front() {
  std::unique_lock<std::mutex> oLock(m_oMutex);
  for (;;) {
    while (m_nTail == m_nHead && !m_bEnd) m_oFilled.wait(oLock);
    if (m_nTail == m_nHead) return nullptr;
    StEntry* pEntry = At(m_nTail);
    while (!pEntry->bReady) m_oFilled.wait(oLock);
    if (!pEntry->bSkipped) return pEntry;
    m_nTail += cnHeader + pEntry->nBytes;
  }
}

void ClCallQueue::Pop(StEntry* pEntry) {
  {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_nTail += Room(pEntry->nBytes);
  }
  m_oEmptied.notify_all();
}

void ClCallQueue::Drain() {
  std::unique_lock<std::mutex> oLock(m_oMutex);
  m_oEmptied.wait(oLock, [this] { return m_nTail == m_nHead; });
}

void ClCallQueue::End() {
  {
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_bEnd = true;
  }
  m_oFilled.notify_all();
  m_oEmptied.notify_all();
}

}  // namespace Recording
