// A table of a fixed size: a computer has a handful of scanners.
#include "record/OpenDevices.h"

namespace Recording {

using Guard = std::lock_guard<std::mutex>;

ClOpenDevices::StDevice* ClOpenDevices::Find(const void* hDevice) {
  for (StDevice& oDevice : m_aDevices)
    if (oDevice.hDevice == hDevice) return &oDevice;
  return nullptr;
}

uint32_t ClOpenDevices::Open(const void* hDevice) {
  const Guard oGuard(m_oMutex);
  ++m_nOpened;
  StDevice* pFree = Find(nullptr);
  if (pFree == nullptr || hDevice == nullptr) return 0;
  *pFree = {hDevice, m_nOpened, {}};
  return m_nOpened;
}

void ClOpenDevices::Close(const void* hDevice) {
  const Guard oGuard(m_oMutex);
  StDevice* pDevice = hDevice != nullptr ? Find(hDevice) : nullptr;
  if (pDevice != nullptr) *pDevice = {};
}

uint32_t ClOpenDevices::NumberOf(const void* hDevice) {
  const Guard oGuard(m_oMutex);
  const StDevice* pDevice = hDevice != nullptr ? Find(hDevice) : nullptr;
  return pDevice != nullptr ? pDevice->nNumber : 0;
}

StShape ClOpenDevices::ShapeOf(const void* hDevice) {
  const Guard oGuard(m_oMutex);
  const StDevice* pDevice = hDevice != nullptr ? Find(hDevice) : nullptr;
  return pDevice != nullptr ? pDevice->oShape : StShape();
}

void ClOpenDevices::SetShape(const void* hDevice, const StShape& oShape) {
  const Guard oGuard(m_oMutex);
  StDevice* pDevice = hDevice != nullptr ? Find(hDevice) : nullptr;
  if (pDevice != nullptr) pDevice->oShape = oShape;
}

}  // namespace Recording
