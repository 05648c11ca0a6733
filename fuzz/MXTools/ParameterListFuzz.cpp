// Feeds stored records of a parameter list: an entry takes a whole record, and a refused one leaves it as it was.
#include "MXTools/FpImage.h"
#include "MXTools/ParameterInterface.h"
#include "StreamBytes.h"

namespace {

using List = ClParameterInterface;

/// Members of every type that a record can hold, described by a list.
struct ClMembers {
  unsigned char nByte = 1;
  short nShort = -2;
  unsigned short nAngle = 16384;
  int nInt = 4;
  long nLong = 5;
  double dDouble = 3;
  float fFloat = 0.5f;
  bool bBool = true;
  int nEnum = 1;
  List oList;

  ClMembers() {
    oList.AddParameter(&nByte, "b", "", List::eIn, 0, 200);
    oList.AddParameter(&nShort, "s", "", List::eIn, 1, -1);
    oList.AddParameter(&nAngle, "a", "", List::eIn, 0, 65535);
    oList.AddParameter(&nInt, "n", "", List::eIn, 0, 1e12);
    oList.AddParameter(&nLong, "l", "", List::eIn, 7, 7);
    oList.AddParameter(&dDouble, "d", "", List::eIn, 1, -1);
    oList.AddParameter(&fFloat, "f", "", List::eIn, 0, 1);
    oList.AddBool(&bBool, "t", "", List::eIn);
    oList.AddEnum(&nEnum, "e", "", "zero\0one\0two\0", List::eInOut);
    oList.AddComment("c");
  }
};

Bytes RecordOf(const List::ClParameter& oEntry) {
  return Written([&](ClStream& oStream) { oEntry.WriteToStream(oStream); });
}

}  // namespace

std::vector<Bytes> Seeds() {
  ClMembers oMembers;
  std::vector<Bytes> aSeeds{Written([&](ClStream& oStream) { oMembers.oList.WriteToStream(oStream); })};
  for (long n = 0; n < oMembers.oList.Count(); ++n) aSeeds.push_back(RecordOf(*oMembers.oList.GetParam(n)));
  return aSeeds;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  const Bytes aRecords(pData, pData + nSize);
  ClMembers oWhole;
  Refused([&] {
    ClBytesStream oStream(aRecords);
    oWhole.oList.ReadFromStream(oStream);
  });
  ClMembers oMembers;
  for (long n = 0; n < oMembers.oList.Count(); ++n) {
    List::ClParameter& oEntry = *oMembers.oList.GetParam(n);
    const Bytes aBefore = RecordOf(oEntry);
    ClBytesStream oStream(aRecords);
    long nResult = -1;
    Refused([&] { nResult = oEntry.ReadFromStream(oStream); });
    const Bytes aTaken = RecordOf(oEntry);
    if (nResult != 0) {
      Require(aTaken == aBefore, "a refused record leaves the entry as it was");
      continue;
    }
    ClBytesStream oAgain(aTaken);
    Require(oEntry.ReadFromStream(oAgain) == 0 && RecordOf(oEntry) == aTaken, "a record reads again");
    oEntry.szValue();
  }
  return 0;
}
