// Feeds stored records of a parameter list: an entry takes a whole record, and a refused one leaves it as it
// was.
#include "ParameterMembers.h"
#include "StreamBytes.h"

namespace {

Bytes RecordOf(const ClParameterInterface::ClParameter& oEntry) {
  return Written([&](ClStream& oStream) { oEntry.WriteToStream(oStream); });
}

}  // namespace

std::vector<Bytes> Seeds() {
  ClParameterMembers oMembers;
  std::vector<Bytes> aSeeds{Written([&](ClStream& oStream) { oMembers.oList.WriteToStream(oStream); })};
  for (long n = 0; n < oMembers.oList.Count(); ++n) aSeeds.push_back(RecordOf(*oMembers.oList.GetParam(n)));
  return aSeeds;
}

void Feed(const Bytes& aRecords) {
  ClParameterMembers oWhole;
  Refused([&] {
    ClBytesStream oStream(aRecords);
    oWhole.oList.ReadFromStream(oStream);
  });
  ClParameterMembers oMembers;
  for (long n = 0; n < oMembers.oList.Count(); ++n) {
    ClParameterInterface::ClParameter& oEntry = *oMembers.oList.GetParam(n);
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
}
