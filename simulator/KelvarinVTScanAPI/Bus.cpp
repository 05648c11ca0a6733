// All scanners of the process: the scene, who has opened what, and how often the library was initialised.
#include "KelvarinVTScanAPI/Bus.h"

#include <cstdlib>
#include <utility>

#include "scene/SceneReader.h"
#include "scene/SimError.h"

namespace Simulator {

ClBus& ClBus::Get() {
  struct ClOwner {
    ~ClOwner() {
      // The threads of a host that ends without a word are still in there.
      if (pBus->m_nInitialized == 0) delete pBus;
    }
    ClBus* pBus = new ClBus;
  };
  static ClOwner s_oOwner;
  return *s_oOwner.pBus;
}

void ClBus::CheckInitialized() const {
  if (m_nInitialized == 0) throw ClSimError(eNotInitialized, "the library is not initialised");
}

void ClBus::Initialize() {
  std::lock_guard<std::mutex> oLoading(m_oLoading);
  RefreshScene();
  std::lock_guard<std::mutex> oLock(m_oMutex);
  ++m_nInitialized;
}

void ClBus::Prepare() {
  std::lock_guard<std::mutex> oLoading(m_oLoading);
  RefreshScene();
}

void ClBus::Uninitialize() {
  std::lock_guard<std::mutex> oLoading(m_oLoading);
  {
    std::lock_guard<std::mutex> oLock(m_oMutex);
    CheckInitialized();
    if (--m_nInitialized > 0) return;
  }
  CloseAll();
  m_bStale = true;
}

void ClBus::CloseAll() {
  std::vector<ClDevice> aOpen;
  {
    std::lock_guard<std::mutex> oLock(m_oMutex);
    for (auto& oEntry : m_mapDevices)
      if (oEntry.second.pScanner) aOpen.push_back(std::exchange(oEntry.second, ClDevice()));
  }
  for (const ClDevice& oDevice : aOpen) oDevice.pScanner->Close(oDevice.nSession);
}

std::vector<unsigned> ClBus::Query(unsigned nProduct) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  CheckInitialized();
  std::vector<unsigned> aIds;
  for (const ClEntry& oEntry : m_aScanners)
    if (oEntry.pScanner->Product() == nProduct && oEntry.pScanner->Plugged()) aIds.push_back(oEntry.nId);
  return aIds;
}

ClBus::ScannerPointer ClBus::ById(unsigned nId) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  CheckInitialized();
  for (const ClEntry& oEntry : m_aScanners) {
    if (oEntry.nId != nId) continue;
    if (!oEntry.pScanner->Plugged())
      throw ClSimError(eDisconnected, "scanner " + oEntry.pScanner->Serial() + " is not connected");
    return oEntry.pScanner;
  }
  throw ClSimError(eBadValue, "no device has the identifier " + std::to_string(nId));
}

void* ClBus::Open(unsigned nId) {
  const ScannerPointer pScanner = ById(nId);
  const ClScanner::Session nSession = pScanner->Open();
  try {
    std::lock_guard<std::mutex> oLock(m_oMutex);
    void* hDevice = m_oHandles.Next();
    m_mapDevices[hDevice] = {pScanner, nSession};
    return hDevice;
  } catch (...) {
    pScanner->Close(nSession);
    throw;
  }
}

void ClBus::Close(void* hDevice) {
  ClDevice oDevice;
  {
    std::lock_guard<std::mutex> oLock(m_oMutex);
    CheckInitialized();
    const auto it = m_mapDevices.find(hDevice);
    if (it == m_mapDevices.end()) throw ClSimError(eBadHandle, "the handle is no open device");
    oDevice = it->second;
    m_mapDevices.erase(it);
  }
  if (oDevice.pScanner) oDevice.pScanner->Close(oDevice.nSession);
}

ClBus::ClDevice ClBus::Device(void* hDevice) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  CheckInitialized();
  const auto it = m_mapDevices.find(hDevice);
  if (it == m_mapDevices.end() || !it->second.pScanner)
    throw ClSimError(eBadHandle, "the handle is no open device");
  return it->second;
}

unsigned ClBus::IndexOf(const ClScanner& oScanner) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  for (size_t i = 0; i < m_aScanners.size(); ++i)
    if (m_aScanners[i].pScanner.get() == &oScanner) return static_cast<unsigned>(i);
  throw ClSimError(eDisconnected, "scanner " + oScanner.Serial() + " is not in the scene any more");
}

std::string ClBus::LibraryVersion() {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  return m_sLibraryVersion;
}

void ClBus::SetLibraryVersion(const std::string& sVersion) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  m_sLibraryVersion = sVersion;
}

void ClBus::LoadEnvironment() {
  const char* szScene = std::getenv("KELVARIN_VTSIM_SCENE");
  Install(FindScene(szScene && *szScene ? szScene : "empty"));
  m_bLoaded = m_bFromEnvironment = true;
  m_bStale = false;
}

void ClBus::RefreshScene() {
  if (!m_bLoaded || (m_bFromEnvironment && m_bStale)) LoadEnvironment();
}

void ClBus::NeedScene() {
  if (!m_bLoaded) LoadEnvironment();
}

void ClBus::LoadScene(const std::string& sScene) {
  std::lock_guard<std::mutex> oLoading(m_oLoading);
  Install(FindScene(sScene));
  m_bLoaded = true;
  m_bFromEnvironment = false;
}

/// Scanners that are also in the new scene keep their handles. Whatever can fail comes before the first
/// change.
void ClBus::Install(const ClSceneDescription& oScene) {
  const auto fnNote = [this](const std::string& sLine) { m_oFaults.Note(sLine); };
  std::vector<ClEntry> aOld, aNew;
  {
    std::lock_guard<std::mutex> oLock(m_oMutex);
    aOld = m_aScanners;
  }
  std::vector<std::pair<ScannerPointer, const ClScannerDescription*>> aKept;
  for (const ClScannerDescription& oDescription : oScene.aScanners) {
    ClEntry oEntry{0, nullptr};
    for (const ClEntry& o : aOld)
      if (o.pScanner->Serial() == oDescription.sSerial && o.pScanner->Product() == oDescription.nProduct &&
          o.pScanner->LegacyEprom() == oDescription.bLegacyEprom)
        oEntry = o;
    if (oEntry.pScanner) {
      ClPlatenScene oTrial(oDescription);  // prints that can't be read show here
      aKept.emplace_back(oEntry.pScanner, &oDescription);
    } else {
      oEntry = {m_nNextId++, std::make_shared<ClScanner>(oDescription, oScene, fnNote)};
    }
    aNew.push_back(oEntry);
  }
  {
    std::lock_guard<std::mutex> oLock(m_oMutex);
    m_aScanners = aNew;
    m_sLibraryVersion = oScene.sLibraryVersion;
  }
  m_oFaults.Reset();
  for (const ClFaultDescription& oFault : oScene.aFaults) {
    if (oFault.eKind == ClFaultDescription::eCall)
      m_oFaults.FailCall(oFault.sName, oFault.nFirst, oFault.nRepeat, oFault.nResult);
    else if (oFault.eKind == ClFaultDescription::eRandom)
      m_oFaults.FailRandomly(oFault.sName, oScene.nFaultSeed, oFault.dProbability, oFault.nResult);
  }
  for (const auto& oPair : aKept) oPair.first->SetScene(*oPair.second, oScene);
  for (const ClEntry& oEntry : aOld) {
    bool bKept = false;
    for (const auto& oPair : aKept) bKept = bKept || oPair.first == oEntry.pScanner;
    if (!bKept) oEntry.pScanner->SetPlugged(false);
  }
}

void ClBus::Reset() {
  std::lock_guard<std::mutex> oLoading(m_oLoading);
  std::vector<ClEntry> aOld;
  bool bInitialized;
  {
    std::lock_guard<std::mutex> oLock(m_oMutex);
    aOld.swap(m_aScanners);
    bInitialized = m_nInitialized > 0;
  }
  for (const ClEntry& oEntry : aOld) oEntry.pScanner->SetPlugged(false);
  m_oFaults.Reset();
  m_bLoaded = false;
  if (bInitialized) LoadEnvironment();
}

ClBus::ScannerPointer ClBus::BySerial(const char* szSerial) {
  std::lock_guard<std::mutex> oLoading(m_oLoading);
  NeedScene();
  std::lock_guard<std::mutex> oLock(m_oMutex);
  for (const ClEntry& oEntry : m_aScanners)
    if (!szSerial || oEntry.pScanner->Serial() == szSerial) return oEntry.pScanner;
  throw ClSimError(
      eBadValue, szSerial ? std::string("the scene has no scanner ") + szSerial : "the scene has no scanner");
}

void ClBus::ClearFaults() {
  m_oFaults.ClearRules();
  std::vector<ClEntry> aScanners;
  {
    std::lock_guard<std::mutex> oLock(m_oMutex);
    aScanners = m_aScanners;
  }
  for (const ClEntry& oEntry : aScanners) oEntry.pScanner->ClearFaults();
}

}  // namespace Simulator
