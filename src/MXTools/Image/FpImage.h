// The one image type of the system.
#pragma once

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>

class ClBitmap;
class ClStream;

/// A rectangular image of interleaved planes of one element type, with the metadata that processors read.
///
/// Domain     width, height, planes and resolution are not negative; 1 to 4 planes where there are pixels.
/// Units      resolution in pels per metre: 19685 is 500 dpi, 9842 is 250 dpi.
/// Range      rows lie top row first; a row is padded to a multiple of 4 bytes when the image is aligned.
/// Ownership  holds its block of pixels, or shares it after Attach; the block lives until its last holder
///            goes. A block attached by pointer stays the caller's. Copies are deep and explicit.
/// Threads    thread-bound. The holder's count is atomic, so that two images that share a block may be in two
///            threads; the pixels are not guarded.
/// Errors     ClException -101 for hostile sizes and wrong types, ClExBadAlloc -102.
class ClImage : private boost::noncopyable {
 public:
  /// Low five bits: size of an element in bytes. Bit 6: floating. Bit 7: signed.
  enum EDataType : unsigned char {
    eTypeNone = 0x00,
    eUint8 = 0x01,
    eUint16 = 0x02,
    eUint32 = 0x04,
    eInt8 = 0x81,
    eInt16 = 0x82,
    eInt32 = 0x84,
    eFloat32 = 0xC4,
    eDouble64 = 0xC8
  };
  /// Stands for the type of the first input, where an output type may be left open.
  static constexpr unsigned char cnTypeDefault = 255;
  static constexpr unsigned char cnTypeSizeMask = 31;
  static constexpr unsigned char cnTypeFloatBit = 0x40;
  static constexpr unsigned char cnTypeSignedBit = 0x80;

  enum EContent : int {
    eUnknown = 0,
    eGrayscale = 1,
    eRGB = 2,
    eRGBA = 3,
    eHSV = 4,
    eXYZ = 5,
    eCIELab = 6,
    eCIELUV = 7
  };

  ClImage();
  /// An eUint8 image with aligned rows; its pixels are not cleared.
  ClImage(int nWidth, int nHeight, int nPlanes, int nPelsX, int nPelsY);
  virtual ~ClImage() = default;

  /// All three release the block and leave the image empty.
  void Initialize();
  void Delete() { Initialize(); }
  void Detach() { Initialize(); }

  /// Makes an image of the given shape with content, black and white by planes and type. Pixels are not
  /// cleared: a block of the same byte size that only this image holds is kept as it is.
  /// Errors: -101 "Image area must be positive"; ClExBadAlloc, the image is then empty.
  void NewWithType(unsigned char nType, int nWidth, int nHeight, int nPlanes, int nPelsX, int nPelsY,
                   bool bAligned);
  /// The model's shape, content and tag with another element type, aligned. Errors: -44 on the image itself.
  void NewWithType(const ClImage& oModel, unsigned char nType);
  /// The model's shape and metadata, aligned, without its pixels. With this image as the model it does
  /// nothing.
  void New(const ClImage& oModel);

  /// Shares the other image's block and takes all its fields.
  void Attach(const ClImage& oOther);
  /// Takes the model's metadata over a block that the caller keeps alive.
  void Attach(void* pData, const ClImage& oModel);
  /// The given shape over a block that the caller keeps alive.
  void AttachIntern(void* pData, unsigned char nType, int nWidth, int nHeight, int nPlanes, int nPelsX,
                    int nPelsY, bool bAligned);
  /// Shares the pixels of a plain BMP of 8, 24 or 32 bits, in the BMP's own row order. False, and empty, for
  /// a compressed one. Errors: -12 for another depth.
  bool Attach(const ClBitmap& oBitmap);
  ClImage& operator=(const ClBitmap& oBitmap);

  /// A deep copy with aligned rows.
  ClImage& operator=(const ClImage& oOther);
  /// Fills every element; 0 clears the whole block of any type, padding too. Any other value needs a one-byte
  /// type (unsigned char) or eInt32 (int). Errors: -101 "Image Type is not the assigned type".
  ClImage& operator=(const unsigned char& nValue);
  ClImage& operator=(const int& nValue);
  /// Fills the padding at the end of each row with the low byte of nValue.
  void FillAligment(int nValue);
  /// Copies one plane, nPlane below Planes(), into a one-plane image.
  void GetPlane(int nPlane, ClImage& oOut) const;
  /// Exchanges every field; no pixel moves.
  void Swap(ClImage& oOther);
  /// Swap, for a result that was made in a scratch image: this image keeps the other one's block for the next
  /// run, but not one attached by pointer, which the caller may have freed by then. On the image itself it
  /// does nothing.
  void HandOver(ClImage& oOther);

  bool IsValid() const;
  /// Errors: -101 with the rule that is broken.
  void CheckValid() const;

  unsigned char DataType() const { return m_nType; }
  EContent Content() const { return m_eContent; }
  int Width() const { return m_nWidth; }
  int Height() const { return m_nHeight; }
  int Planes() const { return m_nPlanes; }
  int PelsX() const { return m_nPelsX; }
  int PelsY() const { return m_nPelsY; }
  bool AlignedRows() const { return m_bAlignedRows; }
  double Black() const { return m_dBlack; }
  double White() const { return m_dWhite; }
  unsigned int Tag() const { return m_nTag; }
  bool HasSize(int nWidth, int nHeight) const { return m_nWidth == nWidth && m_nHeight == nHeight; }
  bool IsSigned() const { return (m_nType & cnTypeSignedBit) != 0; }
  bool IsFloating() const { return (m_nType & cnTypeFloatBit) != 0; }
  int ElementSize() const { return m_nType & cnTypeSizeMask; }
  /// Samples of a row that are pixels: width * planes.
  int SamplesPerRow() const { return m_nWidth * m_nPlanes; }
  /// Bytes from one row to the next.
  size_t RowBytes() const;
  /// Elements from one row to the next, padding included; 0 for an element size of 0.
  int ElementsPerRow() const;
  size_t DataBytes() const { return RowBytes() * static_cast<size_t>(m_nHeight); }

  void SetDataType(unsigned char nType) { m_nType = nType; }
  void SetContent(EContent eContent) { m_eContent = eContent; }
  void SetPels(int nPelsX, int nPelsY) {
    m_nPelsX = nPelsX;
    m_nPelsY = nPelsY;
  }
  void SetBlackWhite(double dBlack, double dWhite) {
    m_dBlack = dBlack;
    m_dWhite = dWhite;
  }
  void SetTag(unsigned int nTag) { m_nTag = nTag; }
  void ContentFromPlanes(int nPlanes);
  void BlackWhiteFromType(unsigned char nType);

  unsigned char* Data() { return m_pData.get(); }
  const unsigned char* Data() const { return m_pData.get(); }
  /// Row nY of [0, Height()) as elements of T, which must be the image's element type.
  template <typename T>
  T* Row(int nY) {
    return reinterpret_cast<T*>(m_pData.get() + static_cast<size_t>(nY) * RowBytes());
  }
  template <typename T>
  const T* Row(int nY) const {
    return reinterpret_cast<const T*>(m_pData.get() + static_cast<size_t>(nY) * RowBytes());
  }
  /// The system's own container. Errors: -101 with what is wrong, -201 when the stream ends and its
  /// failure flag is on; the image is then not fit for use.
  void Load(ClStream& oStream);
  void Load(const char* szPath);
  void Store(ClStream& oStream) const;
  void Store(const char* szPath) const;

 private:
  friend class ClBitmap;

  /// Frees nothing: the block is the caller's.
  struct void_deleter {
    void operator()(unsigned char*) const {}
  };

  /// A block that is shared with something other than an image is never reused for new pixels.
  static constexpr size_t cnNeverReused = SIZE_MAX;

  void TakeFields(const ClImage& oOther);
  void SetFields(unsigned char nType, int nWidth, int nHeight, int nPlanes, int nPelsX, int nPelsY,
                 bool bAligned);
  const char* BrokenRule() const;

  unsigned char m_nType;
  EContent m_eContent;
  int m_nWidth;
  int m_nHeight;
  int m_nPelsX;
  int m_nPelsY;
  boost::shared_ptr<unsigned char> m_pData;
  size_t m_nBlockBytes = 0;
  bool m_bAlignedRows;
  int m_nPlanes;
  double m_dBlack;
  double m_dWhite;
  unsigned int m_nTag = 0;
};
