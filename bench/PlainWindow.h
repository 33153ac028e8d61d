// The program's window by Qt alone: as many controls, with the same fonts, places and texts, and
// nothing of the program's own behind them.
#pragma once

class QMainWindow;

// Lives as long as the process.
QMainWindow* PlainWindow();
