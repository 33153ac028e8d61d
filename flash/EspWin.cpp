#include "flash/EspWin.h"

EspWin::EspWin() {
    Layout();
    CreateControls();
}

std::shared_ptr<EspWin> EspWin::Instance() {
    constexpr std::string_view kName = "EspWin.EspWin";
    if (auto live = std::dynamic_pointer_cast<EspWin>(Live(kName))) return live;
    auto window = std::make_shared<EspWin>();
    Register(kName, window);
    window->Show();
    return window;
}
