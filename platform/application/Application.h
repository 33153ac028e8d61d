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

// Declares support of high-resolution displays. Before InitializeFramework.
void SetSupportsHiDPI(bool supported);

// Brings Qt up and calls `ready`.
void InitializeFramework(const std::function<void()>& ready);

// Runs until Quit.
void RunEventLoop();

// Ends the event loop, and the program with that exit code. Before RunEventLoop: that call then
// returns at once.
void Quit(int exitCode);

// For an exception that nothing caught: writes a line to standard error and quits with 1.
void UnhandledException(const std::exception& exception);

// Has `release` called by EndFramework, while Qt is still there.
void AtEnd(std::function<void()> release);

// Calls what AtEnd was given, releases the application object and Qt, in this order, and returns
// the exit code.
int EndFramework();
