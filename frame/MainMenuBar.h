#pragma once

#include <memory>

#include "platform/window/Menu.h"

class MainMenuBar : public MenuBar {
  public:
    MainMenuBar();

    // Returns the one instance. The first call creates it.
    static std::shared_ptr<MainMenuBar> Instance();

  private:
    void AddFileMenu();
    void AddEditMenu();
};
