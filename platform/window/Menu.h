#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// An item of a menu, or a menu with items of its own. A Text of "-" makes it a separator.
//
// The platform supplies the actions: a QuitMenuItem ends the program; items named EditUndo,
// EditCut, EditCopy, EditPaste, EditClear and EditSelectAll act on the text that has the focus
// and are enabled while there is something for them to act on.
class MenuItem {
  public:
    MenuItem() = default;
    MenuItem(const MenuItem&) = delete;
    MenuItem& operator=(const MenuItem&) = delete;
    virtual ~MenuItem() = default;

    const std::string& Name() const { return mName; }
    void Name(std::string_view name) { mName = name; }
    const std::string& Text() const { return mText; }
    void Text(std::string_view text) { mText = text; }
    // As "Cmd+Q". Cmd is Ctrl where there is no command key.
    const std::string& KeyboardShortcut() const { return mKeyboardShortcut; }
    void KeyboardShortcut(std::string_view keys) { mKeyboardShortcut = keys; }
    // An edit item is enabled while it can act on the focused text; other items always are.
    bool AutoEnable() const { return mAutoEnable; }
    void AutoEnable(bool on) { mAutoEnable = on; }
    bool Visible() const { return mVisible; }
    void Visible(bool visible) { mVisible = visible; }

    // Adds an item at the end.
    void Append(std::shared_ptr<MenuItem> item) { mItems.push_back(std::move(item)); }
    // Returns the item of that name, or nullptr.
    std::shared_ptr<MenuItem> Child(std::string_view name) const;
    const std::vector<std::shared_ptr<MenuItem>>& Items() const { return mItems; }

  private:
    std::string mName, mText, mKeyboardShortcut;
    bool mAutoEnable = true, mVisible = true;
    std::vector<std::shared_ptr<MenuItem>> mItems;
};

class QuitMenuItem : public MenuItem {};

// The top level holds the menus.
class MenuBar : public MenuItem {};
