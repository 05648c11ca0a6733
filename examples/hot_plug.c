/* Says which scanners come and go, for some seconds: hot_plug [SECONDS]. */
#include <KelvarinLiveScannerVT40.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define MOST_SCANNERS 16
/* LS_VT40TriggerScanner waits for 25 milliseconds: four looks a second. */
#define WAITS_BETWEEN_LOOKS 10
#define LOOKS_PER_SECOND 4

typedef struct {
  char serials[MOST_SCANNERS][KLV_VT40_SERIAL_SIZE];
  unsigned int count;
} scanner_list;

static int look(scanner_list* list) {
  long error;
  list->count = MOST_SCANNERS;
  error = LS_VT40QueryScanners(list->serials[0], &list->count);
  /* A scanner that goes while the list is made cannot be read; the next look will miss it. */
  return error == KLV_SUCCESS;
}

static int has(const scanner_list* list, const char* serial) {
  unsigned int n;
  for (n = 0; n < list->count; ++n) {
    if (strcmp(list->serials[n], serial) == 0) return 1;
  }
  return 0;
}

static void tell(const scanner_list* from, const scanner_list* to, const char* what) {
  unsigned int n;
  for (n = 0; n < from->count; ++n) {
    if (!has(to, from->serials[n])) printf("%s %s\n", from->serials[n], what);
  }
  fflush(stdout);
}

int main(int count, char** arguments) {
  long looks = LOOKS_PER_SECOND * (count > 1 ? atol(arguments[1]) : 60);
  scanner_list before, now;
  long error = LS_VT40Initialize(NULL);
  if (error) {
    fprintf(stderr, "initialise: %s (%ld)\n", LS_VT40GetErrorDescriptionA(error), error);
    return 1;
  }
  before.count = 0;
  for (; looks > 0; --looks) {
    int n;
    if (look(&now)) {
      tell(&before, &now, "was unplugged");
      tell(&now, &before, "is connected");
      before = now;
    }
    for (n = 0; n < WAITS_BETWEEN_LOOKS; ++n) LS_VT40TriggerScanner();
  }
  LS_VT40Uninitialize();
  return 0;
}
