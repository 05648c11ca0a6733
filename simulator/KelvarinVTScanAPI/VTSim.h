/* The control side of the simulated scanner: scenes, ground truth, what the host has set, and faults.
 *
 * Plain C; usable from a program that opens the simulated scan library with dlopen and looks the functions
 * up. All functions are thread-safe and may be called before the scan library is initialised. They return 0
 * for success and a negative number otherwise; VTSimLastError gives the reason in words.
 *
 * szSerial names a scanner of the scene; NULL is the first one. Times are seconds on the scanner's own time
 * line, which stands at 0 until its capture is first enabled. With the pacing "real" it then runs with the
 * clock; with the pacing "consumer" each delivered sequence moves it on by the time that sequence takes.
 */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define VTSIM_API __attribute__((visibility("default")))
#else
#define VTSIM_API
#endif

/* Side of the ground-truth picture in pixels; it has 19685 pels per metre (500 dots per inch). */
#define VTSIM_PICTURE_SIDE 1600

/* What the host has set on one scanner and what it has got from it. */
typedef struct VTSimState {
  unsigned int nStructSize;      /* in: sizeof(VTSimState) */
  int bPlugged;                  /* 1 while the scanner hangs on the bus */
  int bOpen;                     /* 1 while a device handle exists */
  int bCaptureEnabled;           /* last VTScanAPIEnableCapture */
  int nSensorMode;               /* 0 when no mode is set or the last change failed */
  unsigned int nPlanes;          /* planes of a sequence; 0 when none is defined */
  unsigned int nExposure;        /* VSYNC length */
  unsigned int anGain[3];        /* channel gains */
  unsigned int nIllumination;    /* last VTScanAPISetLEDEx or VTScanAPISetLED */
  unsigned long long nStatusLed; /* status LED word */
  unsigned int nStatusWrites;    /* how often the status LED word was written */
  unsigned long long nSequences; /* sequences handed out since the scene was loaded */
  unsigned int nLockedSequences; /* sequences handed out and not given back */
  int bWaiting;                  /* 1 while a VTScanAPILockRawSequence waits */
  unsigned int nBeeps;           /* beeps since the scene was loaded */
  double dTime;                  /* the scanner's time line now */
} VTSimState;

/* One call of VTScanAPIBeep. */
typedef struct VTSimBeep {
  double dTime;
  unsigned int nArg1;
  unsigned int nArg2;
} VTSimBeep;

/* One word by which the host switched lights. */
typedef struct VTSimLight {
  double dTime;
  int nKind; /* VTSIM_LIGHT_… */
  unsigned long long nWord;
  unsigned char anLed[12]; /* states of the status LEDs, 0 to 7; all 0 with the other kinds */
} VTSimLight;

#define VTSIM_LIGHT_STATUS 1   /* the status LED word */
#define VTSIM_LIGHT_PLATEN 2   /* VTScanAPISetLEDEx, VTScanAPISetLED */
#define VTSIM_LIGHT_SEQUENCE 3 /* one plane of VTScanAPISetCaptureMode */

/* What the character display shows, and how that came about since the scene was loaded or the
 * scanner was plugged. */
typedef struct VTSimDisplay {
  unsigned int nStructSize; /* in: sizeof(VTSimDisplay) */
  char aszLines[2][17];     /* 16 characters each and a terminating zero; blanks while the display is off */
  int bOn;
  int bFourWires;           /* 1 after a host has set it to data in halves */
  unsigned int nCommands;   /* carried out */
  unsigned int nCharacters; /* likewise */
  unsigned int nLost;       /* of both, because they came while the display was busy */
} VTSimDisplay;

/* One sequence that was handed out, and what it showed. */
typedef struct VTSimFrame {
  unsigned long long nNumber; /* counted from 0 since the scene was loaded */
  unsigned long long
      nSteadySince; /* number of the first of the sequences that show this very picture, without
                                      another picture between; nNumber when the one before showed another */
  double dTime;     /* the moment of the platen that it shows */
  int nSensorMode;
  unsigned int nPlanes;
  unsigned int nFingers; /* fingers that touch the glass */
  unsigned int nMoving;  /* of these, that come down, come off, slide or change their pressure */
} VTSimFrame;

/* The tip of the pen at one moment. Off the glass it is where it was lifted last, or where it will touch
 * first. Whole numbers are pixel centres. */
typedef struct VTSimPen {
  int bDown;   /* 1 while it touches the glass */
  int nStroke; /* which stroke it draws, from 0; -1 off the glass */
  double dX;   /* in the ground-truth picture */
  double dY;
  double dSensorX; /* on the full sensor, as VTSimPictureToSensor gives it */
  double dSensorY;
} VTSimPen;

/* A stroke of the pen: the tip is down from dBegin on and off the glass from dEnd on. */
typedef struct VTSimStroke {
  double dBegin;
  double dEnd;
} VTSimStroke;

/* Why the last failing call of this thread failed; "" when there was none. Valid until the thread's next
 * call. */
VTSIM_API const char* VTSimLastError(void);

/* Loads a scene: the name of a built-in one, the path of a JSON file, or JSON text (first character '{').
 * Open handles of scanners whose serial is in the new scene stay good and show the new scene from time 0;
 * other scanners count as unplugged. Faults of the old scene are forgotten. A scene that can't be read
 * changes nothing. A loaded scene holds until the next load or VTSimReset; without one, the environment
 * variable KELVARIN_VTSIM_SCENE is read by VTScanAPIInitialize, or before it by the first call here that sets
 * something. */
VTSIM_API long VTSimLoadScene(const char* szScene);

/* Replaces what lies on a platen from the next sequence on: JSON text of an object with those keys of a
 * scanner in a scene that say what lies there: fingers, pen, dirt, target, sheets, ambient, noise. What is
 * left out is as in a scene that leaves it out. The time line goes on, on which the times of the text are;
 * fingers without times lie there at once. Faults, calibration and settings stay. Text that can't be read
 * changes nothing. */
VTSIM_API long VTSimLay(const char* szSerial, const char* szPlaten);

/* Forgets the loaded scene and all faults, unplugs what is open, and starts afresh from the environment. */
VTSIM_API long VTSimReset(void);

/* The ideal picture of what lies on the platen at the moment of the last sequence (or VTSimAdvance): black
 * ridges on white, right way round, VTSIM_PICTURE_SIDE squared pixels. pMask (may be NULL) gets 255 where
 * skin is near the glass and 0 elsewhere. *pnSize: in, the room of each buffer; out, the need. -702 when the
 * room is too small. */
VTSIM_API long VTSimGetGroundTruth(const char* szSerial, unsigned char* pPicture, unsigned char* pMask,
                                   unsigned int* pnSize);

/* The same for any moment of the scanner's time line. */
VTSIM_API long VTSimGetGroundTruthAt(const char* szSerial, double dTime, unsigned char* pPicture,
                                     unsigned char* pMask, unsigned int* pnSize);

/* The skin of fingers that rolled over the glass between two moments at most 3600 s apart, unrolled: the
 * picture that a perfect scanner would put together of rolls without slip and twist, and the mask of the skin
 * that was down. Fingers that don't roll are not in it. */
VTSIM_API long VTSimGetUnrolledTruth(const char* szSerial, double dFrom, double dUntil,
                                     unsigned char* pPicture, unsigned char* pMask, unsigned int* pnSize);

/* Where a point of the ground-truth picture falls on the full sensor (3840 x 2720), in pixels; whole numbers
 * are pixel centres on both sides. */
VTSIM_API long VTSimPictureToSensor(const char* szSerial, double dX, double dY, double* pdSensorX,
                                    double* pdSensorY);

/* A position on the full sensor, in pixels; whole numbers are pixel centres. */
typedef struct VTSimPoint {
  double dX;
  double dY;
} VTSimPoint;

/* Where the middles of the 64 dots of the calibration target fall on the full sensor, in the order of the
 * geometric calibration file: columns from left to right, each from top to bottom. Dots that are missing are
 * included. *pnCount: in, the room; out, the number: 64, or 0 when no target lies there. -702 when the room
 * is too small. */
VTSIM_API long VTSimGetTargetDots(const char* szSerial, VTSimPoint* pDots, unsigned int* pnCount);

/* How the optics blurs: a Gaussian point spread, by its standard deviations along rows and columns in pixels
 * of the full sensor, and what such a pixel covers of the platen in the middle. The area of a pixel is not in
 * the spread. */
typedef struct VTSimOptics {
  unsigned int nStructSize; /* in: sizeof(VTSimOptics) */
  double dSpreadX;
  double dSpreadY;
  double dPixelMmX;
  double dPixelMmY;
} VTSimOptics;

VTSIM_API long VTSimGetOptics(const char* szSerial, VTSimOptics* pOptics);

/* A sheet that image quality is measured with: its kind (VTSIM_SHEET_..., -1 for none), its middle on the
 * platen in mm from the left and top edge, and its turn in degrees, counter-clockwise. */
typedef struct VTSimSheet {
  int nKind;
  double dX;
  double dY;
  double dAngle;
} VTSimSheet;

#define VTSIM_SHEET_SINE 0
#define VTSIM_SHEET_BARS 1
#define VTSIM_SHEET_EDGES 2
#define VTSIM_SHEET_GRID 3
#define VTSIM_SHEET_STEPS 4
#define VTSIM_SHEET_BRIGHT 5
#define VTSIM_SHEET_DARK 6

/* Something that is printed on a sheet, in mm from the sheet's middle, x to the right and y down. Lights are
 * shares of that of a ridge in full contact; the paper has 0.9, that of the dark sheet 0.1. */
typedef struct VTSimSheetField {
  int nKind;   /* VTSIM_FIELD_... */
  int bAlongX; /* whether a wave runs to the right, or down */
  double dX;   /* the middle */
  double dY;
  double dWidth; /* or the diameter of a disc */
  double dHeight;
  double dTurn; /* degrees about the middle, counter-clockwise */
  double
      dFrequency; /* cycles per mm; 0 without a wave. Bars begin at the edge of the field with a bright one */
  double dLow;    /* the darkest light, of waves and discs */
  double dHigh;   /* the brightest light, or that of an even area */
} VTSimSheetField;

#define VTSIM_FIELD_GREY 0
#define VTSIM_FIELD_DISC 1
#define VTSIM_FIELD_SINE 2
#define VTSIM_FIELD_BARS 3

/* The sheet that lies there at a moment of the scanner's time line, and what is printed on it. *pnCount: in,
 * the room; out, the number. -702 when the room is too small. */
VTSIM_API long VTSimGetSheetAt(const char* szSerial, double dTime, VTSimSheet* pSheet,
                               VTSimSheetField* pFields, unsigned int* pnCount);

/* The pen at a moment of the scanner's time line. In a scene without a pen bDown is 0 and nStroke -1 always.
 * */
VTSIM_API long VTSimGetPenAt(const char* szSerial, double dTime, VTSimPen* pPen);

/* The strokes of the scene's pen, in their order. *pnCount: in, the room; out, the number. -702 when the room
 * is too small. */
VTSIM_API long VTSimGetPenStrokes(const char* szSerial, VTSimStroke* pStrokes, unsigned int* pnCount);

/* A point of a generated print that a judge of fingerprints should find. Whole numbers are pixel centres of
 * the ground-truth picture. The direction is in degrees from 0 to 360, counter-clockwise from the right: into
 * the ridge that ends; between the branches of a bifurcation; to where the loop of a core opens; along an arm
 * of a delta. */
typedef struct VTSimMinutia {
  unsigned int nFinger; /* of the scene, from 0 */
  int nKind;            /* VTSIM_MINUTIA_... */
  int bDown;            /* 1 where the skin touches the glass at that moment, 0 beyond its edge */
  double dX;
  double dY;
  double dDirection;
} VTSimMinutia;

#define VTSIM_MINUTIA_ENDING 1
#define VTSIM_MINUTIA_BIFURCATION 2
#define VTSIM_MINUTIA_CORE 3
#define VTSIM_MINUTIA_DELTA 4

/* The minutiae, cores and deltas of the fingers that are down at a moment of the time line, where that skin
 * lies. They are those of the ridges as they have grown: dryness, pores, creases and cuts interrupt ridges
 * and are not listed. Fingers whose prints come from files have none. *pnCount: in, the room; out, the
 * number. -702 when the room is too small. The first call for a finger measures it, which takes as long as
 * making the print. */
VTSIM_API long VTSimGetMinutiaeAt(const char* szSerial, double dTime, VTSimMinutia* pMinutiae,
                                  unsigned int* pnCount);

/* Side of the map of ridges; each of its squares has VTSIM_PICTURE_SIDE / VTSIM_RIDGE_SIDE pixels a side. */
#define VTSIM_RIDGE_SIDE 200

/* The ridges round the middle of a square. */
typedef struct VTSimRidge {
  double dDirection; /* degrees from 0 to 180, counter-clockwise from the right */
  double dPeriod;    /* pixels from ridge to ridge; 0 where no ridges touch the glass */
} VTSimRidge;

/* Direction and period of the ridges at a moment, row after row from the upper left. *pnCount: in, the room;
 * out, the number, VTSIM_RIDGE_SIDE squared. -702 when the room is too small. */
VTSIM_API long VTSimGetRidgesAt(const char* szSerial, double dTime, VTSimRidge* pRidges,
                                unsigned int* pnCount);

VTSIM_API long VTSimGetState(const char* szSerial, VTSimState* pState);

/* Copies the latest beeps, oldest first (the scanner remembers 256). *pnCount: in, the room; out, the number.
 */
VTSIM_API long VTSimGetBeeps(const char* szSerial, VTSimBeep* pBeeps, unsigned int* pnCount);

/* Copies the latest words that switched lights, oldest first (the scanner remembers 256). Words that write
 * the display alone are left out. *pnCount: in, the room; out, the number. */
VTSIM_API long VTSimGetLights(const char* szSerial, VTSimLight* pLights, unsigned int* pnCount);

/* The display is a two-line one with the HD44780 command set. It hangs on byte 5 of the status LED register
 * (bits 7 to 4 data, 3 enable, 1 characters). Real time counts: a command keeps it busy for 37 us, clearing
 * and returning for
 * 1.52 ms, a character for 41 us, the first command of all for 4.1 ms. */
VTSIM_API long VTSimGetDisplay(const char* szSerial, VTSimDisplay* pDisplay);

/* Copies the records of the sequences from number nFirst on, oldest first (the scanner remembers 4096).
 * *pnCount: in, the room; out, the number copied. Less room than there are records is no failure. */
VTSIM_API long VTSimGetFrames(const char* szSerial, unsigned long long nFirst, VTSimFrame* pFrames,
                              unsigned int* pnCount);

/* Waits until nCount sequences were handed out since the scene was loaded. -50 when they weren't within
 * nMilliseconds. Together with VTSimHoldSequences and VTSimPassSequences a test goes frame by frame. */
VTSIM_API long VTSimWaitForSequences(const char* szSerial, unsigned long long nCount,
                                     unsigned int nMilliseconds);

/* Moves the scanner's time line on. */
VTSIM_API long VTSimAdvance(const char* szSerial, double dSeconds);

/* Takes a scanner off the bus or puts it back, now or at a time of its time line (a bus time: it is looked at
 * in every call on the scanner). A handle that was open when the scanner went stays dead after it is back. */
VTSIM_API long VTSimUnplug(const char* szSerial);
VTSIM_API long VTSimPlug(const char* szSerial);
VTSIM_API long VTSimUnplugAt(const char* szSerial, double dTime);
VTSIM_API long VTSimPlugAt(const char* szSerial, double dTime);

/* Replaces a file of the scanner's EEPROM by nSize bytes; pData NULL takes the file away. Restore brings the
 * scanner's own file back. */
VTSIM_API long VTSimSetEpromFile(const char* szSerial, const char* szName, const void* pData,
                                 unsigned int nSize);
VTSIM_API long VTSimRestoreEpromFile(const char* szSerial, const char* szName);

/* Version texts, any: of one device (VTScanAPIGetVersion) and of the library (properties "version",
 * "Version"). */
VTSIM_API long VTSimSetDeviceVersion(const char* szSerial, const char* szVersion);
VTSIM_API long VTSimSetLibraryVersion(const char* szVersion);

/* Holds back all further sequences (bHold not 0) or lets them flow again. While they are held,
 * VTSimPassSequences lets nCount of them through. */
VTSIM_API long VTSimHoldSequences(const char* szSerial, int bHold);
VTSIM_API long VTSimPassSequences(const char* szSerial, unsigned int nCount);

/* The next sequence comes nMilliseconds later than it would. */
VTSIM_API long VTSimDelaySequence(const char* szSerial, unsigned int nMilliseconds);

/* Calls nFirst to nFirst + nRepeat - 1 of a scan-library function, counted from 1 from now on, do nothing and
 * answer nResult. nRepeat 0: all from nFirst on. Functions that give something back (VTScanAPIDestroyHandle,
 * VTScanAPIReleaseRawSequence, VTScanAPIUninitialize) do so all the same, since a host couldn't do it again.
 */
VTSIM_API long VTSimFailCall(const char* szFunction, unsigned int nFirst, unsigned int nRepeat, long nResult);

/* From now on each call fails with the given probability and answers nResult; szFunction NULL means any
 * function that takes a device handle. The choice follows from seed, function and the number of the call
 * alone. */
VTSIM_API long VTSimFailRandomly(const char* szFunction, unsigned long long nSeed, double dProbability,
                                 long nResult);

/* Forgets call faults, random faults and planned plugging; held sequences flow. Swapped EEPROM files stay. */
VTSIM_API long VTSimClearFaults(void);

/* What was injected, one line each, since the scene was loaded. *pnSize: in, the room; out, the need with the
 * terminating zero. -702 when the room is too small. */
VTSIM_API long VTSimGetFaultLog(char* pszLog, unsigned int* pnSize);

/* How often a scan-library function was called since the scene was loaded. */
VTSIM_API long VTSimGetCallCount(const char* szFunction, unsigned long long* pnCount);

#ifdef __cplusplus
}
#endif
