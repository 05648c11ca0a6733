// Plays made-up sequences of calls on the shared library: numbers are documented ones, and after each
// sequence the scanner is usable or opens anew.
#include "CallSequence.h"
#include "FuzzTarget.h"

std::vector<Bytes> Seeds() {
  return Reliability::ClSequencePlayer::Pairs();
}

void Feed(const Bytes& aInput) {
  static Reliability::ClSequencePlayer s_oPlayer;
  s_oPlayer.Play(aInput);
}
