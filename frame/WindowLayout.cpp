#include "flash/EspWin.h"

// The properties of the window itself. WindowControls.cpp makes its content.
void EspWin::Layout() {
    Title("Quillstone");
    Width(512);
    Height(540);
    MinWidth(64);
    MinHeight(64);
    MaxWidth(32000);
    MaxHeight(32000);
}
