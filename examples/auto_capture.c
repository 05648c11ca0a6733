/* Waits until fingers lie still, writes the picture as fingers.pgm, and waits until they are lifted. */
#include <KelvarinLiveScannerVT40.h>
#include <stdio.h>
#include <stdlib.h>

static int fail(const char* what, long error) {
  fprintf(stderr, "%s: %s (%ld)\n", what, LS_VT40GetErrorDescriptionA(error), error);
  return 1;
}

static int write_picture(const char* name, const unsigned char* pixels, unsigned int width,
                         unsigned int height) {
  FILE* file = fopen(name, "wb");
  size_t written;
  if (!file) return fail(name, KLV_ERROR_FILE_OPEN_FAIL);
  fprintf(file, "P5\n%u %u\n255\n", width, height);
  written = fwrite(pixels, 1, (size_t)width * height, file);
  if (fclose(file) != 0 || written != (size_t)width * height) return fail(name, KLV_ERROR_FILE_OPEN_FAIL);
  printf("%s, %u x %u pixels\n", name, width, height);
  return 0;
}

/* The scanner decides by itself: a preview that is "done" has a picture that waits to be fetched. It stays
 * "done" until the fingers are lifted. */
static int capture(void* scanner, unsigned char* preview, unsigned char* picture) {
  unsigned int width, height;
  double score;
  unsigned char done = 0;
  long result, error;
  while (!done) {
    error = LS_VT40GetPreviewImage(scanner, preview, &score, &done, &result);
    if (error) return fail("preview", error);
  }
  error = LS_VT40GetImage(scanner, picture, &score, &done, &result);
  if (error) return fail("picture", error);
  if (!done) return fail("the fingers were lifted too early", result);
  LS_VT40GetImageSize(scanner, &width, &height);
  if (write_picture("fingers.pgm", picture, width, height)) return 1;
  puts("lift the fingers");
  while (done) {
    error = LS_VT40GetPreviewImage(scanner, preview, &score, &done, &result);
    if (error) return fail("preview", error);
  }
  return 0;
}

static int run(void* scanner) {
  unsigned int width, height;
  unsigned char *preview, *picture;
  int status = 1;
  long error = LS_VT40SetCaptureMode(scanner, KLV_VT40_CAPTURE_MODE_AUTO);
  if (error) return fail("mode", error);
  LS_VT40GetPreviewImageSize(scanner, &width, &height);
  preview = malloc((size_t)width * height);
  LS_VT40GetImageSize(scanner, &width, &height);
  picture = malloc((size_t)width * height);
  puts("lay the fingers down and hold still");
  if (preview && picture) status = capture(scanner, preview, picture);
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
