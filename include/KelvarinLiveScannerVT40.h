/*
 * Programming interface of the VT40 ten-finger live-scanner.
 *
 * Plain C, self-contained. An application
 *
 *   1. calls LS_VT40Initialize,
 *   2. lists the connected scanners with LS_VT40QueryScanners and opens one with LS_VT40OpenScanner,
 *   3. selects a mode with LS_VT40SetCaptureMode and polls LS_VT40GetPreviewImage, LS_VT40GetImage or
 *      LS_VT40GetRollImage until *pbDone is not 0,
 *   4. calls LS_VT40CloseScanner and LS_VT40Uninitialize.
 *
 * Results   Unless stated otherwise a function returns 0 for success and a negative number for a failure,
 *           which LS_VT40GetErrorDescriptionA explains. A failure leaves the out-parameters as they were, but
 *           for sizes. Every function that takes a handle returns KLV_ERROR_NO_HANDLE for NULL,
 *           KLV_ERROR_INVALID_HANDLE for anything that is no open handle, and KLV_ERROR_NOT_INITIALIZED for
 *           one whose device is closed; these three are not repeated below.
 * Images    Rows of 8-bit grey values, top row first, one byte a pixel without padding (all widths are
 *           multiples of 4): 0 is black, 255 white. Ridges are dark on a white background. The caller
 *           supplies the buffer; its size follows from the size functions. Resolutions are constant: 500 dpi
 *           (full, roll) and 250 dpi (preview).
 * Threads   All functions may be called from any thread. Calls on one handle may run at the same time, but
 *           for LS_VT40CloseScanner, which must be the last one. An image call that waits for the scanner
 *           holds back a change of the capture mode and LED calls on the same handle until it returns. When
 *           the scanner gives no more images it does not use up its time then, but returns
 *           KLV_ERROR_DISCONNECTED at once.
 * Logging   KELVARIN_SDK_LOG=1 in the environment writes a line for each call to the standard output;
 *           KELVARIN_SDK_LOG_LEVEL (0 to 7) leaves out what is less important.
 */
#ifndef KELVARIN_LIVE_SCANNER_VT40_H
#define KELVARIN_LIVE_SCANNER_VT40_H

#include <wchar.h>

#if defined(__GNUC__)
#define KLV_API __attribute__((visibility("default")))
#else
#define KLV_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Numbers that an application is likely to handle; every number has a text. */
#define KLV_SUCCESS 0L
#define KLV_ERROR_NOT_INITIALIZED (-2L)
#define KLV_ERROR_NO_FINGER (-15L)        /* in *pnResult: no finished image yet */
#define KLV_ERROR_BUFFER_TOO_SMALL (-21L) /* the needed size is stored */
#define KLV_ERROR_OUT_OF_RANGE (-35L)
#define KLV_ERROR_CORRUPT_DATA (-39L)         /* at opening: the scanner's calibration data is damaged */
#define KLV_ERROR_UNEXPECTED_SIGNATURE (-40L) /* likewise */
#define KLV_ERROR_NO_HANDLE (-42L)
#define KLV_ERROR_INVALID_HANDLE (-43L)
#define KLV_ERROR_INVALID_PARAMETER (-44L)
#define KLV_ERROR_READ_ONLY (-47L)
#define KLV_ERROR_INVALID_STATE (-50L)    /* not possible in the current capture mode */
#define KLV_ERROR_DISCONNECTED (-60L)     /* the scanner is gone: close the handle */
#define KLV_ERROR_DEVICE_OPEN_FAIL (-61L) /* the scanner is in use */
#define KLV_ERROR_INTERNAL (-101L)
#define KLV_ERROR_OUT_OF_MEMORY (-102L)
#define KLV_ERROR_UNSUPPORTED (-103L)
#define KLV_ERROR_NOT_IMPLEMENTED (-106L)
#define KLV_ERROR_FILE_OPEN_FAIL (-200L) /* the scan library was not found */
#define KLV_ERROR_UNEXPECTED_END (-201L) /* at opening: the scanner's calibration data is damaged */
#define KLV_ERROR_UNKNOWN_PARAMETER (-206L)
#define KLV_ERROR_BAD_POINTER (-701L)
#define KLV_ERROR_SIZE_TOO_SMALL (-702L) /* the needed size is stored */

/* Verdicts on a finished roll, in *pnResult; KLV_SUCCESS is a clean one. */
#define KLV_VERDICT_SLIPPED (-801L)     /* the skin slid on the platen */
#define KLV_VERDICT_TOO_FAST (-802L)    /* a part of the finger was passed over */
#define KLV_VERDICT_TURNED_BACK (-803L) /* rolled back on the way */
#define KLV_VERDICT_TWISTED (-804L)     /* turned about its middle */
#define KLV_VERDICT_TOO_SMALL (-805L)   /* too little of the finger was rolled */

/* Bytes of a serial number with its terminating zero. */
#define KLV_VT40_SERIAL_SIZE 16

/* Capture modes, for LS_VT40SetCaptureMode. */
typedef enum KLV_VT40_CAPTURE_MODE_TAGS {
  KLV_VT40_CAPTURE_MODE_AUTO = 0,      /* preview; the scanner captures by itself when fingers lie still */
  KLV_VT40_CAPTURE_MODE_ROLL = 1,      /* rolled fingerprint, assembled while the finger turns */
  KLV_VT40_CAPTURE_MODE_AUTO_LIVE = 2, /* as AUTO, with a score of liveness */
  KLV_VT40_CAPTURE_MODE_OFF = 3,       /* no stream; LS_VT40GetImage takes one shot */
  KLV_VT40_CAPTURE_MODE_FULL = 4,      /* stream of images at full resolution, by LS_VT40GetImage */
  KLV_VT40_CAPTURE_MODE_PREVIEW = 5,   /* preview; LS_VT40GetImage captures when asked */
  KLV_VT40_CAPTURE_MODE_SIGNATURE = 6  /* the platen as a signature pad */
} KLV_VT40_CAPTURE_MODE_TAGS;

/* ---- The library ------------------------------------------------------------------------------------- */

/* Loads the scan library and starts it; every success must be paired with LS_VT40Uninitialize. Further
 * calls only count. pszReserved has no effect; pass NULL.
 * Errors: KLV_ERROR_FILE_OPEN_FAIL the scan library was not found; the scan library's own number. */
KLV_API long LS_VT40Initialize(const char* pszReserved);

/* Undoes one LS_VT40Initialize; the last call stops and unloads the scan library. Open handles are
 * not closed; to close them gives KLV_ERROR_NOT_INITIALIZED until the library is initialised again.
 * Errors: KLV_ERROR_NOT_INITIALIZED. */
KLV_API long LS_VT40Uninitialize(void);

/* The version of this library as text. *pnSize is the room on entry and the needed size, with the
 * terminating zero, on return. With pszVersion NULL and room enough only the size is reported. Needs no
 * initialisation.
 * Errors: -24 pnSize NULL; KLV_ERROR_BUFFER_TOO_SMALL. */
KLV_API long LS_VT40GetVersionA(char* pszVersion, unsigned int* pnSize);

/* Whether this library serves an application that was written for the interface version "major.minor".
 * Errors: KLV_ERROR_INVALID_PARAMETER no such text; KLV_ERROR_UNSUPPORTED a major version below 2. */
KLV_API long LS_VT40CompatibilityCheck(const char* pszVersion);

/* The text of a number; never NULL. The text is constant and not to be freed. */
KLV_API const char* LS_VT40GetErrorDescriptionA(long nError);
KLV_API const wchar_t* LS_VT40GetErrorDescriptionW(long nError);

/* Waits for 25 milliseconds. Returns 0. */
KLV_API long LS_VT40TriggerScanner(void);

/* ---- Scanners ---------------------------------------------------------------------------------------- */

/* The serial numbers of the connected scanners, in cells of KLV_VT40_SERIAL_SIZE bytes. *pnCount is the
 * number of cells on entry and the number of scanners on return. pSerials NULL asks for the number.
 * Errors: KLV_ERROR_INVALID_PARAMETER pnCount NULL; KLV_ERROR_NOT_INITIALIZED; KLV_ERROR_SIZE_TOO_SMALL too
 * few cells, or pSerials NULL while scanners are connected; -101 a serial number cannot be read. */
KLV_API long LS_VT40QueryScanners(char* pSerials, unsigned int* pnCount);

/* Opens the scanner of that serial number and stores a handle in *phScanner. Takes up to about two seconds.
 * When the scanner was found but could not be opened *phScanner is NULL.
 * Errors: KLV_ERROR_NOT_INITIALIZED; KLV_ERROR_INVALID_PARAMETER pszSerial NULL; -101 scanners cannot be
 * listed; KLV_ERROR_DISCONNECTED no such scanner; -49 a text of about a thousand characters or more;
 * KLV_ERROR_BAD_POINTER phScanner NULL; KLV_ERROR_DEVICE_OPEN_FAIL in use; KLV_ERROR_UNSUPPORTED scan
 * library or scanner too old or too new; -39, -40, -201 the scanner's calibration data is damaged; the scan
 * library's own number. */
KLV_API long LS_VT40OpenScanner(const char* pszSerial, void** phScanner);

/* Stops what runs, closes the scanner and sets *phScanner to NULL. When the scan library refuses to close
 * the device its number is returned and the handle stays, without a device; a second call then ends it.
 * Errors: KLV_ERROR_NOT_INITIALIZED; KLV_ERROR_INVALID_PARAMETER phScanner NULL. */
KLV_API long LS_VT40CloseScanner(void** phScanner);

/* How dirty the platen is, 0 clean to 100, as automatic capture has measured it. *pnReserved becomes 0.
 * The call succeeds even when the scanner is no longer connected.
 * Errors: KLV_ERROR_BAD_POINTER. */
KLV_API long LS_VT40GetScannerCondition(void* h, unsigned int* pnCondition, unsigned int* pnReserved);

/* The serial number, into a buffer of KLV_VT40_SERIAL_SIZE bytes.
 * Errors: KLV_ERROR_BAD_POINTER. */
KLV_API long LS_VT40GetSerialNumber(void* h, char* pszSerial);

/* Versions of scanner and scan library as text. *pnSize is the room on entry and the needed size on return.
 * Errors: KLV_ERROR_BAD_POINTER; KLV_ERROR_SIZE_TOO_SMALL. */
KLV_API long LS_VT40GetVersionString(void* h, char* pszVersion, unsigned int* pnSize);

/* Sounds the buzzer; the meaning of the two values is the scanner's: 300, 100 is the signal of a capture. */
KLV_API long LS_VT40Beep(void* h, unsigned int nArg1, unsigned int nArg2);

/* Sets status LED nIndex, 0 to 11, to state nState, 0 to 7; 0 is off.
 * Errors: KLV_ERROR_OUT_OF_RANGE nIndex; KLV_ERROR_INVALID_PARAMETER nState. */
KLV_API long LS_VT40SetLED(void* h, unsigned char nIndex, unsigned char nState);

/* Shows a text on the character display: characters 0 to 15 on the first line, 16 to 31 on the second; more
 * are not shown. nType must be 0.
 * Errors: KLV_ERROR_UNSUPPORTED nType; KLV_ERROR_INVALID_PARAMETER pData NULL with a size;
 * KLV_ERROR_DISCONNECTED. */
KLV_API long LS_VT40SetDisplayData(void* h, unsigned int nType, char* pData, unsigned int nSize);

/* ---- Sizes and resolutions --------------------------------------------------------------------------- */

/* Width and height, in pixels, of the images of the three image calls and of the two of the signature mode.
 * Errors: KLV_ERROR_BAD_POINTER. */
KLV_API long LS_VT40GetImageSize(void* h, unsigned int* pnWidth, unsigned int* pnHeight);
KLV_API long LS_VT40GetPreviewImageSize(void* h, unsigned int* pnWidth, unsigned int* pnHeight);
KLV_API long LS_VT40GetRollImageSize(void* h, unsigned int* pnWidth, unsigned int* pnHeight);
KLV_API long LS_VT40GetSignatureImageSize(void* h, unsigned int* pnWidth, unsigned int* pnHeight);
KLV_API long LS_VT40GetSignaturePreviewImageSize(void* h, unsigned int* pnWidth, unsigned int* pnHeight);

/* Resolution in dots per inch, truncated: 19685 pels per metre, which is 500 dpi, reads as 499.
 * Errors: KLV_ERROR_BAD_POINTER. */
KLV_API long LS_VT40GetImageDPI(void* h, unsigned int* pnDpiX, unsigned int* pnDpiY);
KLV_API long LS_VT40GetPreviewImageDPI(void* h, unsigned int* pnDpiX, unsigned int* pnDpiY);
KLV_API long LS_VT40GetRollImageDPI(void* h, unsigned int* pnDpiX, unsigned int* pnDpiY);

/* ---- Capture ----------------------------------------------------------------------------------------- */

/* Selects a capture mode, one of KLV_VT40_CAPTURE_MODE_TAGS. A scanner that was just opened is in mode OFF;
 * the mode that is set already is left alone. A number that is no mode changes nothing; after any other
 * failure the mode is OFF.
 * Errors: KLV_ERROR_UNSUPPORTED no such mode, or AUTO_LIVE without the liveness library; the scan library's
 * own number. */
KLV_API long LS_VT40SetCaptureMode(void* h, int nMode);

/* The capture mode, when it is AUTO, AUTO_LIVE or OFF.
 * Errors: KLV_ERROR_BAD_POINTER; -101 in every other mode. */
KLV_API long LS_VT40GetCaptureMode(void* h, int* pnMode);

/* The three image calls copy an image to pImage and report how far the capture is:
 *
 *   pdScore   score of liveness, 0 to 100, in mode AUTO_LIVE, else 0
 *   pbDone    1 when the image is finished, else 0
 *   pnResult  0 when finished, else KLV_ERROR_NO_FINGER; for a finished roll its verdict, 0 or -801 to -805
 *
 * LS_VT40GetImage, the full-resolution image: one shot in mode OFF (never "finished"), the next image of
 * the stream in mode FULL (likewise; waits up to 10 seconds), a capture on request in mode PREVIEW. That one
 * is compared with the handle's last automatic capture, if there was one: it is finished only when it shows
 * most of what lay there then.
 * LS_VT40GetPreviewImage, the next preview that was not delivered yet; waits up to 15 seconds.
 * LS_VT40GetRollImage, the roll as assembled so far; waits up to 5 seconds.
 *
 * Mode SIGNATURE: LS_VT40GetPreviewImage shows the strokes so far, black on white, and is finished once when
 * the pen has rested for "dSignatureDetectTime" after it was seen at more than 50 positions; a pen that comes
 * back after the pause starts the next signature. LS_VT40GetImage draws the strokes at full size, always
 * "finished". Both have the sizes of the signature's two size calls.
 *
 * Errors: KLV_ERROR_BAD_POINTER any pointer NULL; KLV_ERROR_INVALID_STATE not in this mode;
 * KLV_ERROR_DISCONNECTED no image came in time, or the scanner was disconnected; KLV_ERROR_UNSUPPORTED, of
 * LS_VT40GetImage in mode OFF, the scan library is too old; the scan library's own number. */
KLV_API long LS_VT40GetImage(void* h, void* pImage, double* pdScore, unsigned char* pbDone, long* pnResult);
KLV_API long LS_VT40GetPreviewImage(void* h, void* pImage, double* pdScore, unsigned char* pbDone,
                                    long* pnResult);
KLV_API long LS_VT40GetRollImage(void* h, void* pImage, double* pdScore, unsigned char* pbDone,
                                 long* pnResult);

/* ---- Properties -------------------------------------------------------------------------------------- */

/* Named settings of a handle. Names are not case-sensitive.
 *
 *   "Version"               text, read only     version of this library
 *   "nAutoCaptureBeep"      long                not 0: beep on each completed capture
 *   "nRolledPostProcess"    long                not 0: rotate and centre a finished roll; from the next
 *                                             mode change on
 *   "dSignatureFilterSigma" double              width of the signature's softening, 0.5 to 100
 *   "dSignatureDetectTime"  double              idle seconds that end a signature, as processor time of the
 *                                             process; 0 never
 *   "nSignatureSensorMode"  long                0 full, else half height of the signature area; not in mode
 *                                             SIGNATURE
 *   "nResetImage"           long, write only    any value starts the current roll or signature afresh
 *   "STATUS_LED"            long, write only    up to 0xFFFE: index * 256 + state; above: bits 16 to
 *                                             27 select the LEDs that take the state in bits 0 to 2
 *
 * Text forms: decimal, or hexadecimal after "0x". For LS_VT40GetPropertyA *pnSize is the room on entry and
 * the needed size on return.
 * Errors: KLV_ERROR_INVALID_PARAMETER pszName NULL, another kind of property, or no number;
 * KLV_ERROR_UNKNOWN_PARAMETER; KLV_ERROR_READ_ONLY; KLV_ERROR_OUT_OF_RANGE; -24 pnSize NULL;
 * KLV_ERROR_BUFFER_TOO_SMALL; -20 pszValue NULL; KLV_ERROR_BAD_POINTER the same where "Version" is read and
 * *pnSize suffices; -23 pnValue or pdValue NULL; KLV_ERROR_INVALID_STATE not in the current mode; -101 a name
 * of more than 255 characters. After a failure of LS_VT40GetPropertyA the text is empty. */
KLV_API long LS_VT40GetPropertyA(void* h, const char* pszName, char* pszValue, unsigned int* pnSize);
KLV_API long LS_VT40SetPropertyA(void* h, const char* pszName, const char* pszValue);
KLV_API long LS_VT40GetPropertyLongA(void* h, const char* pszName, long* pnValue);
KLV_API long LS_VT40SetPropertyLongA(void* h, const char* pszName, long nValue);
KLV_API long LS_VT40GetPropertyDoubleA(void* h, const char* pszName, double* pdValue);
KLV_API long LS_VT40SetPropertyDoubleA(void* h, const char* pszName, double dValue);

/* Not implemented: each returns KLV_ERROR_NOT_IMPLEMENTED and looks at no argument. */
KLV_API long LS_VT40GetPropertyW(void* h, const wchar_t* pszName, wchar_t* pszValue, unsigned int* pnSize);
KLV_API long LS_VT40SetPropertyW(void* h, const wchar_t* pszName, const wchar_t* pszValue);
KLV_API long LS_VT40GetPropertyLongW(void* h, const wchar_t* pszName, long* pnValue);
KLV_API long LS_VT40SetPropertyLongW(void* h, const wchar_t* pszName, long nValue);
KLV_API long LS_VT40GetPropertyDoubleW(void* h, const wchar_t* pszName, double* pdValue);
KLV_API long LS_VT40SetPropertyDoubleW(void* h, const wchar_t* pszName, double dValue);

#ifdef __cplusplus
}
#endif

#endif
