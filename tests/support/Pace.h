// How fast the code of this build runs.
#pragma once

/// How many times longer than in a release build on the bare machine things may take.
#if defined(KLV_EMULATED)
constexpr int cnSlowness = 120;
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__OPTIMIZE__)
constexpr int cnSlowness = 8;
#else
constexpr int cnSlowness = 1;
#endif
