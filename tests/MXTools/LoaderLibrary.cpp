// A library for the loader's test: one source, built several times with another value or with functions left
// out.

extern "C" {
int KlvTestRequired() {
  return KLV_TEST_VALUE;
}
#ifndef KLV_TEST_WITHOUT_SECOND
int KlvTestSecond() {
  return KLV_TEST_VALUE + 1;
}
#endif
#ifndef KLV_TEST_WITHOUT_OPTIONAL
int KlvTestOptional() {
  return KLV_TEST_VALUE + 2;
}
#endif
}
