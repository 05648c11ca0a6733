// Without a host's own timer nothing is timed.
#include "MXTools/ProfileTimer.h"

void ClProfileTimer::TimerStart(const char*, ...) {}

void ClProfileTimer::TimerStop(const char*, ...) {}
