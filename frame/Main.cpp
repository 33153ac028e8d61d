// The entry point: the steps of the start. An exception from one of them skips the rest.
#include "flash/EspWin.h"
#include "frame/App.h"
#include "frame/FileTypes1.h"
#include "frame/MainMenuBar.h"

namespace {

void InitFileTypes() { FileTypes1::Initialize(); }

// The application has no menu handlers of its own: the platform supplies what the items do.
void ApplicationAddMenuHandlers() {}

void NewAppInstance() {
    auto app = std::make_shared<App>();
    app->MenuBar(MainMenuBar::Instance());
    RegisterApplication(std::move(app));
}

void EarlyStartup() {
    SetSupportsHiDPI(true);
    InitFileTypes();
    NewAppInstance();
    ApplicationAddMenuHandlers();
}

void MakeDefaultView() { EspWin::Instance(); }

void LateStartup() { MakeDefaultView(); }

void Main() {
    try {
        EarlyStartup();
        InitializeFramework(LateStartup);
        RunEventLoop();
    } catch (const std::exception& exception) {
        UnhandledException(exception);
    }
}

}  // namespace

int main() {
    Main();
    return EndFramework();
}
