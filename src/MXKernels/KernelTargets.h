// Which instruction sets the kernel sources are compiled for, and the table that picks one of them.
#pragma once

// Four levels are enough: a processor with SSSE3 but without SSE4 runs the reference.
#define HWY_DISABLED_TARGETS HWY_SSSE3

// True while a kernel source is compiled for a real vector target. The emulated and the scalar
// target get no code: the reference serves there.
#define MXKERNELS_VECTOR_TARGET (HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR)

// Defines the table of NAME's variants, indexed by ELevel. An entry of a target that this build
// leaves out is null; such a level is never in force.
#define MXKERNELS_TABLE(NAME)                                           \
  static decltype(&Reference::NAME) const g_apfn##NAME[eLevelCount] = { \
      &Reference::NAME, HWY_CHOOSE_SSE4(NAME), HWY_CHOOSE_AVX2(NAME), HWY_CHOOSE_AVX3(NAME)}

// The variant of NAME for the level in force.
#define MXKERNELS_CALL(NAME) g_apfn##NAME[Detail::LevelIndex()]
