/* Opens the first scanner, waits for a preview and writes it as preview.pgm. */
#include <KelvarinLiveScannerVT40.h>
#include <stdio.h>
#include <stdlib.h>

static int fail(const char* what, long error) {
  fprintf(stderr, "%s: %s (%ld)\n", what, LS_VT40GetErrorDescriptionA(error), error);
  return 1;
}

static int write_preview(void* scanner) {
  unsigned int width, height;
  double score;
  unsigned char done;
  long result, error;
  unsigned char* pixels;
  FILE* file;

  error = LS_VT40GetPreviewImageSize(scanner, &width, &height);
  if (error) return fail("size", error);
  error = LS_VT40SetCaptureMode(scanner, KLV_VT40_CAPTURE_MODE_PREVIEW);
  if (error) return fail("mode", error);
  pixels = malloc((size_t)width * height);
  if (!pixels) return fail("memory", KLV_ERROR_OUT_OF_MEMORY);
  error = LS_VT40GetPreviewImage(scanner, pixels, &score, &done, &result);
  if (error) {
    free(pixels);
    return fail("preview", error);
  }
  file = fopen("preview.pgm", "wb");
  if (file) {
    fprintf(file, "P5\n%u %u\n255\n", width, height);
    fwrite(pixels, 1, (size_t)width * height, file);
    fclose(file);
    printf("preview.pgm, %u x %u pixels\n", width, height);
  }
  free(pixels);
  return file ? 0 : fail("preview.pgm", KLV_ERROR_FILE_OPEN_FAIL);
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
    status = write_preview(scanner);
    LS_VT40CloseScanner(&scanner);
  }
  LS_VT40Uninitialize();
  return status;
}
