#include "frame/MainMenuBar.h"

namespace {

std::shared_ptr<MenuItem> Described(std::shared_ptr<MenuItem> item, std::string_view name,
                                    std::string_view text, std::string_view shortcut = "") {
    item->Name(name);
    item->AutoEnable(true);
    item->Text(text);
    item->Visible(true);
    item->KeyboardShortcut(shortcut);
    return item;
}

std::shared_ptr<MenuItem> Item(std::string_view name, std::string_view text,
                               std::string_view shortcut = "") {
    return Described(std::make_shared<MenuItem>(), name, text, shortcut);
}

}  // namespace

MainMenuBar::MainMenuBar() {
    AddFileMenu();
    AddEditMenu();
}

std::shared_ptr<MainMenuBar> MainMenuBar::Instance() {
    static const auto instance = std::make_shared<MainMenuBar>();
    return instance;
}

void MainMenuBar::AddFileMenu() {
    Append(Item("FileMenu", "ファイル"));
    Child("FileMenu")
        ->Append(Described(std::make_shared<QuitMenuItem>(), "FileQuit", "終了", "Cmd+Q"));
}

void MainMenuBar::AddEditMenu() {
    Append(Item("EditMenu", "編集"));
    const auto menu = Child("EditMenu");
    menu->Append(Item("EditUndo", "取り消す", "Cmd+Z"));
    menu->Append(Item("EditSeparator1", "-"));
    menu->Append(Item("EditCut", "カット", "Cmd+X"));
    menu->Append(Item("EditCopy", "コピー", "Cmd+C"));
    menu->Append(Item("EditPaste", "貼り付け", "Cmd+V"));
    menu->Append(Item("EditClear", "削除"));
    menu->Append(Item("EditSeparator2", "-"));
    menu->Append(Item("EditSelectAll", "すべてを選択", "Cmd+A"));
}
