// The size that the parameters ask for, and the passes of each mode.
#include "MXImageProcessing/IpRescale.h"

#include <cstring>
#include <string>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/MultiPlane.h"
#include "MXImageProcessing/RescaleRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"

namespace {

constexpr int cnModes = 5;
constexpr ClParameterRows::StChoice g_aModes[cnModes] = {
    {ClIpRescale::ModeWholeNumbered, "ModeWholeNumbered"},
    {ClIpRescale::ModeNearestNeighbour, "ModeNearestNeighbour"},
    {ClIpRescale::ModeBiLinear, "ModeBiLinear"},
    {ClIpRescale::ModeBiCubic, "ModeBiCubic"},
    {ClIpRescale::ModeBiLinearFantMar, "ModeBiLinearFantMar"}};
constexpr size_t cnModePrefix = 4;

bool IsKnown(ClIpRescale::eProcessingMode eMode) {
  return eMode >= 0 && eMode < cnModes;
}

bool FitsInt(int64_t nValue) {
  return nValue <= INT32_MAX;
}

/// The size at the new resolution that covers the whole old size.
double SizeAt(int nNewPels, int nSize, int nPels) {
  return std::trunc(static_cast<double>(nNewPels) * nSize / nPels + 0.9999);
}

/// Blocks of columns stay in the cache while their rows are written.
template <typename T>
void Transpose(const ClImage& oIn, ClImage& oOut) {
  constexpr int cnBlock = 32;
  const size_t nInBytes = oIn.RowBytes();
  for (int nLeft = 0; nLeft < oIn.Width(); nLeft += cnBlock) {
    const int nRight = std::min(nLeft + cnBlock, oIn.Width());
    for (int nTop = 0; nTop < oIn.Height(); nTop += cnBlock) {
      const int nBottom = std::min(nTop + cnBlock, oIn.Height());
      for (int x = nLeft; x < nRight; ++x) {
        const T* pIn = oIn.Row<T>(nTop) + x;
        T* pOut = oOut.Row<T>(x);
        for (int y = nTop; y < nBottom; ++y, pIn += nInBytes) pOut[y] = *pIn;
      }
    }
  }
}

template <typename T>
void TransposeNew(const ClImage& oIn, ClImage& oOut) {
  oOut.NewWithType(oIn.DataType(), oIn.Height(), oIn.Width(), 1, oIn.PelsY(), oIn.PelsX(), oIn.AlignedRows());
  Transpose<T>(oIn, oOut);
}

void CopyRows(const ClImage& oIn, ClImage& oOut) {
  for (int y = 0; y < oIn.Height(); ++y)
    std::memcpy(oOut.Row<unsigned char>(y), oIn.Row<unsigned char>(y), static_cast<size_t>(oIn.Width()));
}

}  // namespace

/// Old and new extent of an axis.
struct ClIpRescale::ClAxis {
  bool HasPels() const { return m_nPels >= 1 && m_nNewPels >= 1; }
  bool Shrinks() const { return m_nNewSize < m_nSize; }
  /// Input samples for each output sample, 12 fractional bits.
  int64_t Step() const {
    return HasPels() ? (int64_t{m_nPels} << 12) / m_nNewPels : (int64_t{m_nSize} << 12) / m_nNewSize;
  }
  /// The nearest whole factor; negative for one that shrinks.
  int Factor() const {
    const int nOld = HasPels() ? m_nPels : m_nSize, nNew = HasPels() ? m_nNewPels : m_nNewSize;
    const int nSmall = std::min(nOld, nNew), nLarge = std::max(nOld, nNew);
    const int nFactor = nLarge / nSmall + (nLarge % nSmall > nSmall / 2 ? 1 : 0);
    return nNew < nOld ? -nFactor : nFactor;
  }

  int m_nSize;
  int m_nNewSize;
  int m_nPels;
  int m_nNewPels;
};

ClIpRescale::ClAxis ClIpRescale::AxisX(const ClImage& oIn) const {
  return {oIn.Width(), m_nEffectiveWidth, oIn.PelsX(), m_nEffectivePelsX};
}

ClIpRescale::ClAxis ClIpRescale::AxisY(const ClImage& oIn) const {
  return {oIn.Height(), m_nEffectiveHeight, oIn.PelsY(), m_nEffectivePelsY};
}

long ClIpRescale::ApplyParam(ClImage& oIn, ClImage& oOut, eProcessingMode eMode) {
  const bool bSize = m_nNewWidth != 0 && m_nNewHeight != 0, bPels = m_nNewPelsX != 0 && m_nNewPelsY != 0;
  if (!bSize && !bPels) return -101;
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  m_eMode = eMode;
  return Apply();
}

long ClIpRescale::ApplyParamSize(ClImage& oIn, ClImage& oOut, int nWidth, int nHeight,
                                 eProcessingMode eMode) {
  if (eMode == ModeWholeNumbered) return -101;
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  m_nNewWidth = nWidth;
  m_nNewHeight = nHeight;
  m_nNewPelsX = m_nNewPelsY = 0;
  m_eMode = eMode;
  return Apply();
}

long ClIpRescale::ApplyParamPels(ClImage& oIn, ClImage& oOut, int nPelsX, int nPelsY, eProcessingMode eMode) {
  if (oIn.PelsX() == 0 || oIn.PelsY() == 0) return -13;
  m_pInImage = &oIn;
  m_pOutImage = &oOut;
  m_nNewWidth = m_nNewHeight = 0;
  m_nNewPelsX = nPelsX;
  m_nNewPelsY = nPelsY;
  m_eMode = eMode;
  return Apply();
}

ClProcessorBase* ClIpRescale::Create() const {
  return MakeProcessor<ClIpRescale>();
}

bool ClIpRescale::CanApply() {
  return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage->Data() != nullptr;
}

void ClIpRescale::SetParametersToDefault() {
  m_nNewWidth = m_nNewHeight = m_nNewPelsX = m_nNewPelsY = 0;
  m_eMode = ModeBiLinear;
  m_dConvParameter1 = -0.75;
}

void ClIpRescale::DeclareParameters(ClParameterRows& oRows) {
  oRows.InOutImages(&m_pInImage, &m_pOutImage);
  oRows.Number("NewWidth", "NewWidth", "In: New Width", &m_nNewWidth);
  oRows.Number("NewHeight", "NewHeight", "In: New Height", &m_nNewHeight);
  oRows.Number("NewPelsX", "NewPelsX", "In: New Pels X", &m_nNewPelsX);
  oRows.Number("NewPelsY", "NewPelsY", "In: New Pels Y", &m_nNewPelsY);
  oRows.Choice("eMode", "Mode", "In: Processing Mode", &m_eMode, g_aModes);
  oRows.Number("dConvParameter1", "ConvParameter1", "In: Convolution Parameter", &m_dConvParameter1);
}

void ClIpRescale::ParameterString(char* szText, unsigned int nSize) const {
  const char* szMode = IsKnown(m_eMode) ? g_aModes[m_eMode].szName + cnModePrefix : "InvalidMode";
  if (m_nNewWidth != 0) {
    FormatParameterString(szText, nSize, "W%d H%d %s", m_nNewWidth, m_nNewHeight, szMode);
  } else {
    FormatParameterString(szText, nSize, "X%d Y%d %s", m_nNewPelsX, m_nNewPelsY, szMode);
  }
}

long ClIpRescale::Initialize() {
  if (m_pInImage == nullptr || m_pOutImage == nullptr) return -10;
  const ClImage& oIn = *m_pInImage;
  // Process refuses an empty input.
  if (oIn.Width() < 1 || oIn.Height() < 1) return 0;
  m_nEffectiveWidth = m_nNewWidth;
  m_nEffectiveHeight = m_nNewHeight;
  m_nEffectivePelsX = m_nNewPelsX;
  m_nEffectivePelsY = m_nNewPelsY;
  if (m_nNewPelsX >= 1 && m_nNewPelsY >= 1) {
    if (oIn.PelsX() < 1 || oIn.PelsY() < 1) return -13;
    const double dWidth = SizeAt(m_nNewPelsX, oIn.Width(), oIn.PelsX());
    const double dHeight = SizeAt(m_nNewPelsY, oIn.Height(), oIn.PelsY());
    if (dWidth < 1 || dHeight < 1 || dWidth > INT32_MAX || dHeight > INT32_MAX) return -35;
    const bool bSame = m_nNewPelsX == oIn.PelsX() && m_nNewPelsY == oIn.PelsY();
    m_nEffectiveWidth = bSame ? oIn.Width() : static_cast<int>(dWidth);
    m_nEffectiveHeight = bSame ? oIn.Height() : static_cast<int>(dHeight);
    return 0;
  }
  if (m_nNewWidth < 1 || m_nNewHeight < 1) return -35;
  const bool bSame = oIn.HasSize(m_nNewWidth, m_nNewHeight);
  const int64_t nPelsX = bSame ? oIn.PelsX() : int64_t{m_nNewWidth} * oIn.PelsX() / oIn.Width();
  const int64_t nPelsY = bSame ? oIn.PelsY() : int64_t{m_nNewHeight} * oIn.PelsY() / oIn.Height();
  if (!FitsInt(nPelsX) || !FitsInt(nPelsY)) return -35;
  m_nEffectivePelsX = static_cast<int>(nPelsX);
  m_nEffectivePelsY = static_cast<int>(nPelsY);
  return 0;
}

long ClIpRescale::Process() {
  if (m_pInImage->Width() < 1 || m_pInImage->Height() < 1) return -35;
  if (m_pInImage->HasSize(m_nEffectiveWidth, m_nEffectiveHeight)) {
    *m_pOutImage = *m_pInImage;
    return 0;
  }
  if (m_pInImage->Data() == nullptr) return -101;
  if (!IsKnown(m_eMode)) return 0;
  if (m_pInImage->ElementSize() != 1) KLV_RAISE(ClException, "Image Type is not the assigned type", -101);
  m_bFastCubic = m_eMode == ModeBiCubic && m_dConvParameter1 > 0;
  if (m_bFastCubic) m_dConvParameter1 = -m_dConvParameter1;
  if (m_pInImage != m_pOutImage) return ProcessPlanes(*m_pOutImage);
  const long nResult = ProcessPlanes(m_oInPlace);
  if (nResult == 0) m_oInPlace.HandOver(*m_pOutImage);
  return nResult;
}

long ClIpRescale::ProcessPlanes(ClImage& oOut) {
  ClImage* pIn = m_pInImage;
  ClImage* pOut = &oOut;
  const auto Run = [&] {
    pIn->IsSigned() ? ProcessPlane<int8_t>(*pIn, *pOut) : ProcessPlane<uint8_t>(*pIn, *pOut);
    return 0L;
  };
  return pIn->Planes() > 1 ? ::ProcessMultiPlane(pIn, pOut, IsTimerEnabled(), Run) : Run();
}

void ClIpRescale::AllocateOutImage(const ClImage& oIn, ClImage& oOut) const {
  oOut.NewWithType(oIn.IsSigned() ? ClImage::eInt8 : ClImage::eUint8, m_nEffectiveWidth, m_nEffectiveHeight,
                   1, m_nEffectivePelsX, m_nEffectivePelsY, true);
}

template <typename T>
void ClIpRescale::ProcessPlane(const ClImage& oIn, ClImage& oOut) {
  AllocateOutImage(oIn, oOut);
  switch (m_eMode) {
    case ModeWholeNumbered:
      return ProcessWholeNumbered<T>(oIn, oOut);
    case ModeNearestNeighbour:
      return RescalePlane::Nearest<T>(oIn, AxisX(oIn).Step(), AxisY(oIn).Step(), oOut);
    case ModeBiLinear:
      return ProcessModeBiLinear<T>(oIn, oOut);
    case ModeBiCubic:
      return m_bFastCubic ? RescalePlane::CubicFast<T>(oIn, m_dConvParameter1, m_oTables, oOut)
                          : RescalePlane::CubicExact<T>(oIn, m_dConvParameter1, m_oTables, oOut);
    case ModeBiLinearFantMar:
      return ProcessFantMar<T>(oIn, oOut);
  }
}

/// Brings every row to the new width.
template <typename T, typename TRow>
void ClIpRescale::ResampleX(const ClImage& oIn, ClImage& oOut, TRow&& fnRow) const {
  oOut.NewWithType(oIn.DataType(), m_nEffectiveWidth, oIn.Height(), 1, m_nEffectivePelsX, oIn.PelsY(),
                   oIn.AlignedRows());
  for (int y = 0; y < oIn.Height(); ++y) fnRow(oIn.Row<T>(y), oIn.Width(), oOut.Row<T>(y), oOut.Width());
}

/// Brings every column to the new height, as rows of the turned image.
template <typename T, typename TRow>
void ClIpRescale::ResampleY(const ClImage& oIn, ClImage& oOut, TRow&& fnRow) {
  TransposeNew<T>(oIn, m_oTurned);
  m_oTurnedResampled.NewWithType(oIn.DataType(), m_nEffectiveHeight, oIn.Width(), 1, m_nEffectivePelsY,
                                 oIn.PelsX(), true);
  for (int x = 0; x < oIn.Width(); ++x)
    fnRow(m_oTurned.Row<T>(x), oIn.Height(), m_oTurnedResampled.Row<T>(x), m_nEffectiveHeight);
  TransposeNew<T>(m_oTurnedResampled, oOut);
}

template <typename T>
void ClIpRescale::ProcessWholeNumbered(const ClImage& oIn, ClImage& oOut) {
  const auto RowBy = [](int nFactor) {
    return [nFactor](const T* pIn, int nIn, T* pOut, int nOut) {
      nFactor > 0 ? RescaleRows::Repeat(pIn, nIn, nFactor, pOut, nOut)
                  : RescaleRows::MeanOfRuns(pIn, nIn, -nFactor, pOut, nOut);
    };
  };
  ResampleX<T>(oIn, m_oResampled, RowBy(AxisX(oIn).Factor()));
  ResampleY<T>(m_oResampled, oOut, RowBy(AxisY(oIn).Factor()));
}

template <typename T>
void ClIpRescale::ProcessModeBiLinear(const ClImage& oIn, ClImage& oOut) {
  const ClAxis oX = AxisX(oIn), oY = AxisY(oIn);
  const auto RowBy = [](int64_t nStep) {
    return [nStep](const T* pIn, int nIn, T* pOut, int nOut) {
      RescaleRows::Integrate(pIn, nIn, nStep, pOut, nOut);
    };
  };
  if (!oX.Shrinks() && !oY.Shrinks()) return RescalePlane::Bilinear<T>(oIn, m_oTables, oOut);
  if (!oX.Shrinks()) {
    ResampleY<T>(oIn, m_oResampled, RowBy(oY.Step()));
    return RescalePlane::Bilinear<T>(m_oResampled, m_oTables, oOut);
  }
  ResampleX<T>(oIn, m_oResampled, RowBy(oX.Step()));
  if (oY.Shrinks()) return ResampleY<T>(m_oResampled, oOut, RowBy(oY.Step()));
  RescalePlane::Bilinear<T>(m_oResampled, m_oTables, oOut);
}

template <typename T>
void ClIpRescale::ProcessFantMar(const ClImage& oIn, ClImage& oOut) {
  const auto Timed = [this](const char* szStep, auto&& fnStep) {
    TimerStart(szStep);
    fnStep();
    TimerStop(szStep);
  };
  const auto BilinearResample = [](const ClImage& oFrom, ClImage& oTo) {
    for (int y = 0; y < oFrom.Height(); ++y)
      RescaleRows::Fant(oFrom.Row<T>(y), oFrom.Width(), oTo.Row<T>(y), oTo.Width());
  };
  const auto New = [&oIn](ClImage& oPlain, int nWidth, int nHeight) {
    oPlain.NewWithType(oIn.DataType(), nWidth, nHeight, 1, 0, 0, false);
  };
  // Two images take turns. Their rows have no padding, so that a turned image fits the same block.
  ClImage &oA = m_oTurned, &oB = m_oTurnedResampled;
  Timed("Convert", [&] { New(oA, oIn.Width(), oIn.Height()), CopyRows(oIn, oA); });
  New(oB, m_nEffectiveWidth, oIn.Height());
  Timed("BilinearResample", [&] { BilinearResample(oA, oB); });
  Timed("FlipXY", [&] { TransposeNew<T>(oB, oA); });
  New(oB, m_nEffectiveHeight, m_nEffectiveWidth);
  Timed("BilinearResample", [&] { BilinearResample(oA, oB); });
  Timed("FlipXY", [&] { TransposeNew<T>(oB, oA); });
  Timed("Convert", [&] { CopyRows(oA, oOut); });
}
