// The element types that a processor takes.
#pragma once

#include "MXTools/FpImage.h"
#include "MXTools/TpArrayDynamic.h"

namespace NewIpBase {

/// Second base of processors that have a list of the element types that they take.
///
/// Threads  thread-bound.
class ClImageDataTypeCheck {
 public:
  virtual ~ClImageDataTypeCheck() = default;

  bool CheckIfTypeAllowed(ClImage::EDataType eType) const;

 protected:
  static const ClImage::EDataType m_caAllTypes[8];
  static const ClImage::EDataType m_caIntegerTypes[6];
  static const ClImage::EDataType m_caFloatTypes[2];

  /// Raises when the images set do not fit the processor.
  virtual void CheckInOutImageTypes() = 0;

  void EnableDataType(ClImage::EDataType eType);
  void EnableDataType(const ClImage::EDataType* pTypes, unsigned int nCount);
  template <unsigned int N>
  void EnableDataType(const ClImage::EDataType (&aTypes)[N]) {
    EnableDataType(aTypes, N);
  }
  /// Errors: -33 with the type's name.
  void CheckTypeAllowed(const ClImage* pImage) const;

 private:
  TpArrayDynamic<ClImage::EDataType, 8> m_aAllowedTypes;
};

}  // namespace NewIpBase
