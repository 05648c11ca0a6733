/* Lets somebody sign on the platen and writes the signature as signature.pgm when the pen rests. */
#include <KelvarinLiveScannerVT40.h>
#include <stdio.h>
#include <stdlib.h>

static int fail(const char* what, long error) {
  fprintf(stderr, "%s: %s (%ld)\n", what, LS_VT40GetErrorDescriptionA(error), error);
  return 1;
}

static int sign(void* scanner, unsigned char* preview, unsigned char* picture, unsigned int width,
                unsigned int height) {
  double score;
  unsigned char done = 0;
  long result, error;
  FILE* file;
  puts("sign on the platen");
  while (!done) {
    /* A program with a window shows each preview: the strokes so far, black on white. */
    error = LS_VT40GetPreviewImage(scanner, preview, &score, &done, &result);
    if (error) return fail("preview", error);
  }
  error = LS_VT40GetImage(scanner, picture, &score, &done, &result);
  if (error) return fail("signature", error);
  file = fopen("signature.pgm", "wb");
  if (!file) return fail("signature.pgm", KLV_ERROR_FILE_OPEN_FAIL);
  fprintf(file, "P5\n%u %u\n255\n", width, height);
  fwrite(picture, 1, (size_t)width * height, file);
  if (fclose(file) != 0) return fail("signature.pgm", KLV_ERROR_FILE_OPEN_FAIL);
  printf("signature.pgm, %u x %u pixels\n", width, height);
  return 0;
}

static int run(void* scanner) {
  unsigned int width, height;
  unsigned char *preview, *picture;
  int status = 1;
  /* Seconds of processor time without the pen; who measures the pause by the clock sets 0 instead. */
  long error = LS_VT40SetPropertyDoubleA(scanner, "dSignatureDetectTime", 2.0);
  if (!error) error = LS_VT40SetCaptureMode(scanner, KLV_VT40_CAPTURE_MODE_SIGNATURE);
  if (!error) error = LS_VT40GetSignaturePreviewImageSize(scanner, &width, &height);
  if (error) return fail("mode", error);
  preview = malloc((size_t)width * height);
  LS_VT40GetSignatureImageSize(scanner, &width, &height);
  picture = malloc((size_t)width * height);
  if (preview && picture) status = sign(scanner, preview, picture, width, height);
  free(preview);
  free(picture);
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
