// The handler notes the signal, and the tool looks at it between and beside its calls.
#include "Interruption.h"

#include <csignal>

namespace {

volatile std::sig_atomic_t s_nSignal = 0;

void Note(int nSignal) {
  s_nSignal = nSignal;
}

}  // namespace

void Interruption::Catch() {
  struct sigaction oAction = {};
  oAction.sa_handler = Note;
  oAction.sa_flags = SA_RESTART;
  for (const int nSignal : {SIGINT, SIGTERM}) sigaction(nSignal, &oAction, nullptr);
}

bool Interruption::Pending() {
  return s_nSignal != 0;
}

EExitCode Interruption::ExitCode() {
  return s_nSignal == SIGTERM ? eExitTerminated : eExitInterrupted;
}

void Interruption::Check() {
  if (s_nSignal == SIGINT) throw ClToolError(eExitInterrupted, "interrupted");
  if (s_nSignal == SIGTERM) throw ClToolError(eExitTerminated, "terminated");
}
