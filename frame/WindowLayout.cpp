#include "flash/EspWin.h"

// The window's own properties. frame/WindowControls.cpp has what is in it.
void EspWin::Layout() {
    Title("Quillstone");
    Width(512);
    Height(540);
    MinWidth(64);
    MinHeight(64);
    MaxWidth(32000);
    MaxHeight(32000);
}
