// The entry point. An exception from a step of the start skips the other steps.
#include "frame/Startup.h"
#include "platform/application/Application.h"

namespace {

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
