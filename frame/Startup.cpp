#include "frame/Startup.h"

#include "flash/EspWin.h"
#include "frame/App.h"
#include "frame/FileTypes.h"
#include "frame/MainMenuBar.h"

namespace {

void InitFileTypes() { FileTypes1::Initialize(); }

// The application has no menu handlers of its own: the platform supplies the actions.
void ApplicationAddMenuHandlers() {}

void NewAppInstance() {
    auto app = std::make_shared<App>();
    app->MenuBar(MainMenuBar::Instance());
    RegisterApplication(std::move(app));
}

void MakeDefaultView() { EspWin::Instance(); }

}  // namespace

void EarlyStartup() {
    SetSupportsHiDPI(true);
    InitFileTypes();
    NewAppInstance();
    ApplicationAddMenuHandlers();
}

void LateStartup() { MakeDefaultView(); }
