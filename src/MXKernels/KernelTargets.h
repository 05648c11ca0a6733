// Which instruction sets the kernel sources are compiled for, and the kernels made of their functions.
#pragma once

#include "MXKernels/Kernel.h"

// Four levels are enough: a processor with SSSE3 but without SSE4 runs the reference.
#define HWY_DISABLED_TARGETS HWY_SSSE3

// True while a kernel source is compiled for a real vector target. The emulated and the scalar
// target get no code: the reference serves there.
#define MXKERNELS_VECTOR_TARGET (HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR)

// The functions NAME of the reference and of all targets, in the order of ELevel.
#define MXKERNELS_LEVELS(NAME) \
  { &Reference::NAME, HWY_CHOOSE_SSE4(NAME), HWY_CHOOSE_AVX2(NAME), HWY_CHOOSE_AVX3(NAME) }

// Defines the kernel NAME, which its header declares with one row function.
#define MXKERNELS_KERNEL(NAME) constexpr decltype(NAME) NAME MXKERNELS_LEVELS(NAME)
