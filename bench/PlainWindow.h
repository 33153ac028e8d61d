// The program's window by Qt alone: as many controls, with the same fonts, places and texts, and
// nothing of the program's own behind them.
#pragma once

#include "bench/Measuring.h"

class QMainWindow;

// Lives as long as the process.
QMainWindow* PlainWindow();

// Ends the process with 1, and both lists of controls, where this isn't the program's window.
void Compare(const Arguments&);
