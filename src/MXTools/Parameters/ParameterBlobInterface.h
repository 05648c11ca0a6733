// A parameter seen as a block of bytes.
#pragma once

class ClParameterBlobInterface {
 public:
  ClParameterBlobInterface() = default;
  ClParameterBlobInterface(const ClParameterBlobInterface&) = delete;
  ClParameterBlobInterface& operator=(const ClParameterBlobInterface&) = delete;
  virtual ~ClParameterBlobInterface() = default;

  virtual unsigned int GetBlobSize() const = 0;
  virtual void ClearBlob() = 0;
  /// rnSize goes in as the room and comes out as the size needed; false: the room is too small, nothing is
  /// written.
  virtual bool GetBlob(unsigned char* pData, unsigned int& rnSize) = 0;
  virtual void SetBlob(const unsigned char* pData, unsigned int nSize) = 0;
};
