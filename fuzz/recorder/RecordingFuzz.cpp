// Feeds recordings: what is read is within its file, and a player answers from it or refuses.
#include <fcntl.h>

#include "MemoryFile.h"
#include "format/BlockWriter.h"
#include "format/CallRecord.h"
#include "format/Functions.h"
#include "play/Player.h"

using namespace Recording;

namespace {

void WriteCall(ClBlockWriter& oWriter, ClCallRecord& oCall, uint32_t nDevice, int64_t nResult = 0) {
  oCall.SetHead(1, nDevice, 1000, 2000, nResult);
  std::vector<uint8_t> aCall(oCall.Bytes(), oCall.Bytes() + oCall.Size());
  for (size_t i = 0; i < oCall.AttachmentCount(); ++i) {
    const StAttachment& o = oCall.Attachments()[i];
    Store(&aCall[o.nField], oWriter.WriteCompressed(eBlockData, o.pData, static_cast<size_t>(o.nBytes)), 4);
  }
  oWriter.Write(eBlockCall, aCall.data(), aCall.size());
}

/// Settings, with the frames that come in each.
void WriteStream(ClBlockWriter& oWriter) {
  ClCallRecord oOpen(eVTScanAPICreateHandle);
  oOpen.AddNumber(0, eGiven, 7);
  WriteCall(oWriter, oOpen, 1);
  ClCallRecord oMode(eVTScanAPISetCaptureMode);
  oMode.AddNumber(1, eGiven, 4);
  oMode.AddNumber(2, eGiven, 2);
  oMode.AddBytes(3, eGiven, "0123456789abcdef", 16);
  ClCallRecord oResolution(eVTScanAPISetResolution);
  oResolution.AddNumber(1, eGiven, 5);
  ClCallRecord oLights(eVTScanAPISetCaptureSequenceEx);
  oLights.AddNumber(1, eGiven, 1);
  oLights.AddBytes(2, eGiven, "0123", 4);
  ClCallRecord oCapture(eVTScanAPIEnableCapture);
  oCapture.AddNumber(1, eGiven, 1);
  for (ClCallRecord* pCall : {&oMode, &oCapture, &oResolution, &oLights}) {
    WriteCall(oWriter, *pCall, 1);
    ClCallRecord oSequence(eVTScanAPILockRawSequence);
    const Bytes aFrame(100, 5);
    oSequence.AddFrames(1, eGot, aFrame.data(), aFrame.size(), 10, 10);
    oSequence.AddNumber(eAddedMode, eGot, 4);
    oSequence.AddNumber(eAddedWidth, eGot, 10);
    oSequence.AddNumber(eAddedHeight, eGot, 10);
    WriteCall(oWriter, oSequence, 1);
  }
  for (ClCallRecord* pCall : {&oMode, &oCapture, &oResolution, &oLights}) WriteCall(oWriter, *pCall, 1, -60);
  ClCallRecord oNone(eVTScanAPIGetImageSequence);
  oNone.AddNumber(eAddedWidth, eGot, 0);
  WriteCall(oWriter, oNone, 1);
  ClCallRecord oNumber(eVTScanAPIGetPropertyDoubleA);
  oNumber.AddText(1, eGiven, "dValue");
  oNumber.AddReal(2, eGot, 1.5);
  WriteCall(oWriter, oNumber, 1);
  const Bytes aEnd(32, 0);
  oWriter.Write(eBlockEnd, aEnd.data(), aEnd.size());
}

void WriteSeed(ClBlockWriter& oWriter) {
  oWriter.Write(eBlockFacts, "wordSize=64\n", 12);
  ClCallRecord oOpen(eVTScanAPICreateHandle);
  oOpen.AddNumber(0, eGiven, 7);
  WriteCall(oWriter, oOpen, 1);
  ClCallRecord oText(eVTScanAPIGetPropertyW);
  oText.AddText(1, eGiven, L"version");
  oText.AddNumber(3, eGiven, 40);
  oText.AddText(2, eGot, "1.20");
  oText.AddNumber(3, eGot, 5);
  WriteCall(oWriter, oText, 1);
  ClCallRecord oSequence(eVTScanAPILockRawSequence);
  const Bytes aFrame(500, 3);
  oSequence.AddFrames(1, eGot, aFrame.data(), aFrame.size(), 25, 20);
  WriteCall(oWriter, oSequence, 1);
  const Bytes aLoss(24, 1), aEnd(32, 0);
  oWriter.Write(eBlockLoss, aLoss.data(), aLoss.size());
  oWriter.Write(eBlockEnd, aEnd.data(), aEnd.size());
}

void Play(const std::string& sFile) {
  ClPlayer oPlayer({sFile, 0.0, false});
  for (const StCall& oCall : oPlayer.Recording().Calls()) {
    void* hDevice = nullptr;
    RefusedWith<ClPlayError>([&] {
      if (oCall.nFunction == eVTScanAPICreateHandle && oPlayer.Open(oCall, &hDevice) == 0)
        oPlayer.Close(hDevice);
    });
    RefusedWith<ClPlayError>([&] {
      const StCall& oAnswer = oPlayer.Answer(nullptr, oCall, true);
      for (const StField& oField : oAnswer.aFields) oPlayer.Content(oField);
    });
  }
}

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (const auto pfnWrite : {WriteSeed, WriteStream}) {
    const ClMemoryFile oFile;
    const int nFile = open(oFile.Path().c_str(), O_WRONLY | O_CLOEXEC);
    Require(nFile >= 0, "the seed can be written");
    {
      ClBlockWriter oWriter(nFile, eFileSimulated, 1);
      pfnWrite(oWriter);
    }
    aSeeds.push_back(oFile.Content());
  }
  return aSeeds;
}

/// Checksums of header and blocks as far as the blocks' sizes lead.
Bytes Repaired(const Bytes& aInput) {
  Bytes aFile = aInput;
  if (aFile.size() < cnFileHeader) return aFile;
  Store(&aFile[28], Checksum(aFile.data(), 28), 4);
  for (size_t nOffset = cnFileHeader; aFile.size() - nOffset >= cnBlockHeader;) {
    uint8_t* pBlock = &aFile[nOffset];
    const uint64_t nStored = Load(pBlock + 8, 4);
    nOffset += cnBlockHeader;
    if (nStored > aFile.size() - nOffset) break;
    Store(pBlock + 20, Checksum(aFile.data() + nOffset, nStored), 4);
    Store(pBlock + 24, Checksum(pBlock, 24), 4);
    nOffset += nStored;
  }
  return aFile;
}

void Feed(const Bytes& aInput) {
  const ClMemoryFile oFile(aInput);
  RefusedWith<ClRecordingError>([&] {
    const ClRecording oRecording(oFile.Path());
    Require(!oRecording.IsWhole() || oRecording.Damage().empty() || oRecording.BlockCount() > 0,
            "what is whole has an end");
    for (uint32_t n = 0; n < oRecording.BlockCount(); ++n) {
      RefusedWith<ClRecordingError>(
          [&] { Require(oRecording.Data(n).size() <= cnLargestContent, "no content is larger than told"); });
    }
    Play(oFile.Path());
  });
}
