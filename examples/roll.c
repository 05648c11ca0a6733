/* Rolls a finger, says how the roll was, and writes the print as roll.pgm. Ends with 2 for a roll that is
 * to be repeated. */
#include <KelvarinLiveScannerVT40.h>
#include <stdio.h>
#include <stdlib.h>

static int fail(const char* what, long error) {
  fprintf(stderr, "%s: %s (%ld)\n", what, LS_VT40GetErrorDescriptionA(error), error);
  return 1;
}

static const char* advice(long verdict) {
  switch (verdict) {
    case KLV_SUCCESS:
      return "clean";
    case KLV_VERDICT_SLIPPED:
      return "the skin slid: press less, or dry the finger";
    case KLV_VERDICT_TOO_FAST:
      return "too fast: roll more slowly";
    case KLV_VERDICT_TURNED_BACK:
      return "turned back: roll in one direction";
    case KLV_VERDICT_TWISTED:
      return "twisted: keep the finger's direction";
    case KLV_VERDICT_TOO_SMALL:
      return "too little: roll from nail to nail";
    default:
      return LS_VT40GetErrorDescriptionA(verdict);
  }
}

static int roll(void* scanner, unsigned char* print, unsigned int width, unsigned int height) {
  double score;
  unsigned char done = 0;
  long verdict = KLV_SUCCESS, error;
  FILE* file;
  puts("roll the finger from one side to the other, then lift it");
  /* Each call returns the print as it has grown so far; it is done when the finger was lifted. */
  while (!done) {
    error = LS_VT40GetRollImage(scanner, print, &score, &done, &verdict);
    if (error) return fail("roll", error);
  }
  printf("%s (%ld)\n", advice(verdict), verdict);
  file = fopen("roll.pgm", "wb");
  if (!file) return fail("roll.pgm", KLV_ERROR_FILE_OPEN_FAIL);
  fprintf(file, "P5\n%u %u\n255\n", width, height);
  fwrite(print, 1, (size_t)width * height, file);
  if (fclose(file) != 0) return fail("roll.pgm", KLV_ERROR_FILE_OPEN_FAIL);
  return verdict == KLV_SUCCESS ? 0 : 2;
}

static int run(void* scanner) {
  unsigned int width, height;
  unsigned char* print;
  int status = 1;
  long error = LS_VT40SetPropertyLongA(scanner, "nRolledPostProcess", 1);
  if (!error) error = LS_VT40SetCaptureMode(scanner, KLV_VT40_CAPTURE_MODE_ROLL);
  if (!error) error = LS_VT40GetRollImageSize(scanner, &width, &height);
  if (error) return fail("mode", error);
  print = malloc((size_t)width * height);
  if (print) status = roll(scanner, print, width, height);
  free(print);
  return status;
}

int main(void) {
  char serials[8][KLV_VT40_SERIAL_SIZE];
  unsigned int count = 8;
  void* scanner = NULL;
  int status = 1;
  long error = LS_VT40Initialize(NULL);
  if (error) return fail("initialise", error);
  error = LS_VT40QueryScanners(serials[0], &count);
  if (error || count == 0) {
    fail("no scanner", error);
  } else if ((error = LS_VT40OpenScanner(serials[0], &scanner)) != 0) {
    fail(serials[0], error);
  } else {
    status = run(scanner);
    LS_VT40CloseScanner(&scanner);
  }
  LS_VT40Uninitialize();
  return status;
}
