// The program as a whole: its start, its event loop and its end.
#pragma once

#include <exception>
#include <functional>
#include <memory>

class MenuBar;

class Application {
  public:
    virtual ~Application() = default;

    // The program's menu bar. Windows that are created afterwards show it.
    std::shared_ptr<::MenuBar> MenuBar() const { return mMenuBar; }
    void MenuBar(std::shared_ptr<::MenuBar> menuBar) { mMenuBar = std::move(menuBar); }

  private:
    std::shared_ptr<::MenuBar> mMenuBar;
};

// Makes `application` the program's one application object.
void RegisterApplication(std::shared_ptr<Application> application);

// nullptr before an application is registered, or when it has no menu bar.
std::shared_ptr<MenuBar> ApplicationMenuBar();

// Declares whether the program supports high-resolution displays. Call it before
// InitializeFramework.
void SetSupportsHiDPI(bool supported);

// Starts Qt and calls `ready`.
void InitializeFramework(const std::function<void()>& ready);

// Handles events until Quit is called.
void RunEventLoop();

// Ends the event loop; the first call's exit code becomes the program's. If called before
// RunEventLoop, that function returns at once.
void Quit(int exitCode);

// Takes an exception that nothing caught: writes a line to standard error and quits with 1.
void UnhandledException(const std::exception& exception);

// Makes EndFramework call `release` while Qt still exists.
void AtEnd(std::function<void()> release);

// Calls the functions that AtEnd was given, releases the application object, then Qt, and returns
// the exit code.
int EndFramework();
