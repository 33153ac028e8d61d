#pragma once

#include <memory>

#include "platform/window/Menu.h"

class MainMenuBar : public MenuBar {
  public:
    MainMenuBar();

    // The one instance, created at the first call.
    static std::shared_ptr<MainMenuBar> Instance();

  private:
    void Untitled0();  // ファイル
    void Untitled1();  // 編集
};
