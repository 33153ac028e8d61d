// How a run ends, and what looking for its processes costs.
#pragma once

#include "bench/Measuring.h"

void Stop(const Arguments&);
void StopBare(const Arguments&);
void Close(const Arguments&);
void CloseBare(const Arguments&);
void Looks(const Arguments&);

// Where Close and CloseBare note when they close the window; invalid in the other modes.
inline QElapsedTimer& SinceClose() {
    static QElapsedTimer clock;
    return clock;
}
