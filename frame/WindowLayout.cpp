// Where everything stands. Nothing moves but by the locks.
#include <string_view>

#include "flash/EspWin.h"

namespace {

// Locks name the sides: L, T, R, B. Eleven of the controls lie above or left of the window for
// good; they are in the tab order all the same, and the logic keeps settings in several of them.
struct NamedPlace {
    std::string_view name;
    int left, top, width, height;
    std::string_view locks;
    int tabIndex, textSize;
};

// clang-format off
constexpr NamedPlace kPlaces[] = {
    {"tooltypePM",    30, -143, 107,  20, "LT",    0, 11},
    {"Label1",         0,    7,  75,  20, "LT",    1, 11},
    {"StartPB",      422,  290,  80,  20, "LT",    2, 11},
    {"rEF",            0,  322, 512, 198, "LTRB",  3, 11},
    {"UploadEF",      20,  -77, 334,  45, "LTR",   4, 11},
    {"Label2",         0,   56,  75,  20, "LT",    5, 11},
    {"Label3",         0,  134,  75,  20, "LT",    6, 11},
    {"SelectPB",     422,  179,  80,  20, "TR",    8, 11},
    {"EspToolEF",     80,    7, 334,  45, "LTR",  10, 11},
    {"Label5",         0,  208,  75,  20, "LT",   11, 11},
    {"BaudPM",        80,   82,  80,  20, "TR",   12, 10},
    {"BitsPM",       262, -109,  50,  20, "",     13, 10},
    {"ConnectPB",    350, -143,  80,  20, "R",    14, 11},
    {"CtsCB",        443, -123,  50,  20, "R",    15, 10},
    {"DtrCB",        443, -103,  50,  20, "R",    16, 10},
    {"ParityPM",     317, -109,  50,  20, "",     17, 10},
    {"PortPM",        80,   56, 331,  20, "LR",   18, 11},
    {"ScanBtn",      422,   57,  80,  20, "LT",   19, 11},
    {"StopPM",       372, -109,  50,  20, "",     20, 10},
    {"XonCB",        443, -143,  50,  20, "R",    21, 10},
    {"Label7",         0,  109,  75,  20, "LT",   23, 11},
    {"ResetEF",       80,  108,  80,  22, "LT",   24, 11},
    {"Label9",         0,   81,  75,  20, "LT",   27, 11},
    {"InstallEF",     80,  208, 334, 108, "LTR",  28, 11},
    {"SelectESPPB",  422,    7,  80,  20, "TR",   29, 11},
    {"Label8",       -87,  -56,  75,  20, "LT",   30, 11},
    {"ulb",           80,  134, 334,  70, "LT",   31, 11},
    {"DeletePB",     422,  134,  80,  20, "TR",   32, 11},
    {"AddressEF",    379,  -54,  88,  22, "LT",   26, 11},
};
// clang-format on

ControlPlace PlaceOf(const NamedPlace& named) {
    const auto locked = [&](char side) { return named.locks.find(side) != named.locks.npos; };
    return {.Left = named.left,
            .Top = named.top,
            .Width = named.width,
            .Height = named.height,
            .LockLeft = locked('L'),
            .LockTop = locked('T'),
            .LockRight = locked('R'),
            .LockBottom = locked('B'),
            .TabIndex = named.tabIndex,
            .TextSize = named.textSize};
}

}  // namespace

void EspWin::Layout() {
    Title("Quillstone");
    Width(512);
    Height(540);
    MinWidth(64);
    MinHeight(64);
    MaxWidth(32000);
    MaxHeight(32000);
}

void EspWin::PlaceControls() {
    for (const NamedPlace& named : kPlaces)
        ControlNamed<RectControl>(named.name).Place(PlaceOf(named));
}
