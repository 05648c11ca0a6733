// Recordings that tests make call by call.
#pragma once

#include <fcntl.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "TemporaryDirectory.h"
#include "format/BlockWriter.h"
#include "format/CallRecord.h"
#include "format/Functions.h"

/// Writes calls a millisecond apart, on device 1 unless they say otherwise.
class ClMadeRecording {
 public:
  explicit ClMadeRecording(uint16_t nFlags = 0)
      : m_pWriter(std::make_unique<Recording::ClBlockWriter>(
            open(Path().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), nFlags, 1700000000000000000)) {}

  std::string Path() const { return m_oFolder.Path("made.vtrec"); }
  Recording::ClBlockWriter& Writer() { return *m_pWriter; }

  using Fill = std::function<void(Recording::ClCallRecord&)>;
  void Call(uint16_t nFunction, const Fill& fnFill = nullptr, long nResult = 0, uint32_t nDevice = 1) {
    Recording::ClCallRecord oCall(nFunction);
    if (fnFill) fnFill(oCall);
    Enter(oCall, nResult, nDevice);
  }
  /// A sequence of sensor mode 6, whose frame holds one value; a value below 0: the call failed with that
  /// number.
  void Sequence(int nValue, uint32_t nBytes = 960 * 680) {
    Recording::ClCallRecord oCall(Recording::eVTScanAPILockRawSequence);
    const std::vector<uint8_t> aFrame(nBytes, static_cast<uint8_t>(nValue));
    if (nValue >= 0) oCall.AddFrames(1, Recording::eGot, aFrame.data(), aFrame.size(), 960, 680);
    Enter(oCall, nValue < 0 ? nValue : 0, 1);
  }
  void Mode(int nMode, unsigned long long nLight, long nResult = 0) {
    Call(
        Recording::eVTScanAPISetCaptureMode,
        [&](Recording::ClCallRecord& oCall) {
          oCall.AddNumber(1, Recording::eGiven, nMode);
          oCall.AddNumber(2, Recording::eGiven, 1);
          oCall.AddBytes(3, Recording::eGiven, &nLight, sizeof nLight);
          oCall.AddNumber(4, Recording::eGiven, 1);
          oCall.AddNumber(Recording::eAddedWidth, Recording::eGot, 960);
          oCall.AddNumber(Recording::eAddedHeight, Recording::eGot, 680);
          oCall.AddNumber(Recording::eAddedMode, Recording::eGot, nMode);
        },
        nResult);
  }
  void Open(uint32_t nDevice = 1) {
    Call(
        Recording::eVTScanAPICreateHandle, [](auto& oCall) { oCall.AddNumber(0, Recording::eGiven, 7); }, 0,
        nDevice);
  }
  void Capture(bool bOn) {
    Call(Recording::eVTScanAPIEnableCapture,
         [&](auto& oCall) { oCall.AddNumber(1, Recording::eGiven, bOn ? 1 : 0); });
  }
  /// The list of scanners: one of that identifier, or none.
  void List(unsigned int nId) {
    Call(
        Recording::eVTScanAPIQueryDevices,
        [&](auto& oCall) {
          oCall.AddNumber(2, Recording::eGiven, 17);
          oCall.AddNumber(1, Recording::eGiven, 8);
          oCall.AddNumber(1, Recording::eGot, nId != 0 ? 1 : 0);
          oCall.AddBytes(0, Recording::eGot, &nId, nId != 0 ? sizeof nId : 0);
        },
        0, 0);
  }

  std::vector<uint8_t> Bytes() const {
    std::ifstream oFile(Path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(oFile), {}};
  }
  void Replace(const std::vector<uint8_t>& aBytes) const {
    std::ofstream(Path(), std::ios::binary)
        .write(reinterpret_cast<const char*>(aBytes.data()), static_cast<std::streamsize>(aBytes.size()));
  }

 private:
  void Enter(Recording::ClCallRecord& oCall, long nResult, uint32_t nDevice) {
    m_nTime += 1000000;
    oCall.SetHead(1, nDevice, m_nTime - 1000, m_nTime, nResult);
    std::vector<uint8_t> aCall(oCall.Bytes(), oCall.Bytes() + oCall.Size());
    for (size_t i = 0; i < oCall.AttachmentCount(); ++i) {
      const Recording::StAttachment& o = oCall.Attachments()[i];
      const uint32_t nBlock =
          m_pWriter->WriteCompressed(Recording::eBlockData, o.pData, static_cast<size_t>(o.nBytes));
      Recording::Store(&aCall[o.nField], nBlock, 4);
    }
    m_pWriter->Write(Recording::eBlockCall, aCall.data(), aCall.size());
  }

  ClTemporaryDirectory m_oFolder;
  int64_t m_nTime = 0;
  std::unique_ptr<Recording::ClBlockWriter> m_pWriter;
};
