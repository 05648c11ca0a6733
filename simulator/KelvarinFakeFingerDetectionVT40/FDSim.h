/* The control side of the simulated liveness library: faults, what it was asked, and scores made to order.
 *
 * Plain C; usable from a program that opens the library with dlopen and looks the functions up. All functions
 * are thread-safe. They return 0 for success and a negative number otherwise; FDSimLastError gives the reason
 * in words.
 *
 * Without this side, the environment variable KELVARIN_FDSIM_FAULTS makes functions fail:
 * "FD_VT40Initialize=-101,FD_VT40GetFakeFingerDetectionScore=-60". It is read by each FD_VT40Initialize that
 * finds the library at rest.
 */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define FDSIM_API __attribute__((visibility("default")))
#else
#define FDSIM_API
#endif

/* What the library has been asked. */
typedef struct FDSimState {
  unsigned int nStructSize;  /* in: sizeof(FDSimState) */
  unsigned int nInitialized; /* initialisations that are not undone */
  unsigned int nContexts;    /* detection contexts that exist */
  unsigned int nScores;      /* scores given since FDSimReset */
  unsigned int nWidth;       /* size of the last picture that was scored */
  unsigned int nHeight;
  double dScore; /* the last score given; 0 when there was none */
} FDSimState;

/* Why the last failing call of this thread failed; "" when there was none. Valid until the thread's next
 * call. */
FDSIM_API const char* FDSimLastError(void);

/* Forgets faults, counts and the ordered score. Initialisations and contexts stay. */
FDSIM_API long FDSimReset(void);

FDSIM_API long FDSimGetState(FDSimState* pState);

/* Calls nFirst to nFirst + nRepeat - 1 of a function, counted from 1 from now on, do nothing and answer
 * nResult. nRepeat 0: all from nFirst on. FD_VT40DestroyHandle and FD_VT40Uninitialize do their work all the
 * same. */
FDSIM_API long FDSimFailCall(const char* szFunction, unsigned int nFirst, unsigned int nRepeat, long nResult);

/* From now on every picture gets this score; a negative number goes back to measuring. */
FDSIM_API long FDSimOrderScore(double dScore);

/* How often a function was called since FDSimReset. */
FDSIM_API long FDSimGetCallCount(const char* szFunction, unsigned long long* pnCount);

#ifdef __cplusplus
}
#endif
