#include "platform/window/private/NativeMenu.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <string_view>
#include <vector>

#include "platform/application/Application.h"
#include "platform/qt/LineEdit.h"
#include "platform/qt/QtText.h"
#include "platform/window/Menu.h"

namespace {

// One editing command, for one-line texts (cell editors too) and for the others. No command asks
// for the clipboard's content before the user pastes: its owner is another program, which may hang.
struct EditCommand {
    std::string_view name;
    void (*line)(LineEdit&);
    bool (*lineReady)(const LineEdit&);
    void (*area)(QPlainTextEdit&);
    bool (*areaReady)(const QPlainTextEdit&);
};

constexpr EditCommand kEditCommands[] = {
    {"EditUndo", [](LineEdit& e) { e.undo(); },
     [](const LineEdit& e) { return e.isUndoAvailable(); }, [](QPlainTextEdit& e) { e.undo(); },
     [](const QPlainTextEdit& e) { return e.document()->isUndoAvailable(); }},
    {"EditCut", [](LineEdit& e) { e.cut(); },
     [](const LineEdit& e) { return e.hasSelectedText() && !e.isReadOnly(); },
     [](QPlainTextEdit& e) { e.cut(); },
     [](const QPlainTextEdit& e) { return e.textCursor().hasSelection() && !e.isReadOnly(); }},
    {"EditCopy", [](LineEdit& e) { e.copy(); },
     [](const LineEdit& e) { return e.hasSelectedText(); }, [](QPlainTextEdit& e) { e.copy(); },
     [](const QPlainTextEdit& e) { return e.textCursor().hasSelection(); }},
    {"EditPaste", [](LineEdit& e) { e.Paste(); }, [](const LineEdit& e) { return !e.isReadOnly(); },
     [](QPlainTextEdit& e) { e.paste(); }, [](const QPlainTextEdit& e) { return !e.isReadOnly(); }},
    {"EditClear", [](LineEdit& e) { e.del(); },
     [](const LineEdit& e) { return e.hasSelectedText() && !e.isReadOnly(); },
     [](QPlainTextEdit& e) { e.textCursor().removeSelectedText(); },
     [](const QPlainTextEdit& e) { return e.textCursor().hasSelection() && !e.isReadOnly(); }},
    {"EditSelectAll", [](LineEdit& e) { e.selectAll(); },
     [](const LineEdit& e) { return !e.text().isEmpty(); },
     [](QPlainTextEdit& e) { e.selectAll(); },
     [](const QPlainTextEdit& e) { return !e.document()->isEmpty(); }},
};

// Enables the edit items by what the focused text of the window can do. A child of the menu bar.
// The texts of dialogs have context menus of their own.
class EditItems : public QObject {
  public:
    explicit EditItems(QMenuBar& bar) : QObject(&bar), mBar(bar) {
        connect(qApp, &QApplication::focusChanged, this,
                [this](QWidget*, QWidget* now) { Follow(now); });
        Follow(QApplication::focusWidget());
    }

    void Add(QAction* action, const EditCommand& command) {
        mItems.push_back({action, &command});
        connect(action, &QAction::triggered, this, [this, &command] {
            if (mLine)
                command.line(*mLine);
            else if (mArea)
                command.area(*mArea);
        });
        Update();
    }

  protected:
    // Shows these items as the context menu of a text. Qt's own menu asks the clipboard's owner.
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() != QEvent::ContextMenu) return false;
        auto* menu = new QMenu(static_cast<QWidget*>(object));
        menu->setAttribute(Qt::WA_DeleteOnClose);
        for (const auto& [action, command] : mItems) menu->addAction(action);
        menu->popup(static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
    }

  private:
    void Follow(QWidget* focus) {
        if (qobject_cast<QMenuBar*>(focus))
            return;  // an item acts on the widget that had the focus before
        if (mFollowed) mFollowed->disconnect(this);
        const bool isOurs = focus != nullptr && focus->window() == mBar.window();
        mFollowed = isOurs ? focus : nullptr;
        mLine = dynamic_cast<LineEdit*>(mFollowed.data());
        mArea = qobject_cast<QPlainTextEdit*>(mFollowed.data());
        if (mLine) {
            mLine->installEventFilter(this);
            connect(mLine, &QLineEdit::selectionChanged, this, &EditItems::Update);
            connect(mLine, &QLineEdit::textChanged, this, &EditItems::Update);
        } else if (mArea) {
            mArea->installEventFilter(this);              // the menu key
            mArea->viewport()->installEventFilter(this);  // the mouse
            connect(mArea, &QPlainTextEdit::selectionChanged, this, &EditItems::Update);
            connect(mArea, &QPlainTextEdit::textChanged, this, &EditItems::Update);
            connect(mArea, &QPlainTextEdit::undoAvailable, this, &EditItems::Update);
        }
        Update();
    }

    void Update() {
        for (const auto& [action, command] : mItems)
            action->setEnabled(mLine   ? command->lineReady(*mLine)
                               : mArea ? command->areaReady(*mArea)
                                       : false);
    }

    struct Item {
        QAction* action;
        const EditCommand* command;
    };
    QMenuBar& mBar;
    std::vector<Item> mItems;
    QPointer<QObject> mFollowed;  // it may be a widget no more, if its destruction moved the focus
    QPointer<LineEdit> mLine;
    QPointer<QPlainTextEdit> mArea;
};

void AddItem(QMenu& menu, const MenuItem& item, EditItems& editItems) {
    if (item.Text() == "-") {
        menu.addSeparator()->setObjectName(ToQt(item.Name()));
        return;
    }
    QAction* action = menu.addAction(ToQt(item.Text()));
    action->setObjectName(ToQt(item.Name()));
    action->setMenuRole(QAction::NoRole);  // else Qt moves items to other menus on macOS
    action->setShortcut(ToQtKeys(item.KeyboardShortcut()));
    action->setVisible(item.Visible());
    if (dynamic_cast<const QuitMenuItem*>(&item))
        QObject::connect(action, &QAction::triggered, action, [] { Quit(0); });
    if (item.AutoEnable())
        for (const EditCommand& command : kEditCommands)
            if (command.name == item.Name()) editItems.Add(action, command);
}

}  // namespace

void BuildMenuBar(QMenuBar& native, const MenuBar& menus) {
    auto* editItems = new EditItems(native);
    for (const auto& menu : menus.Items()) {
        QMenu* nativeMenu = native.addMenu(ToQt(menu->Text()));
        nativeMenu->setObjectName(ToQt(menu->Name()));
        for (const auto& item : menu->Items()) AddItem(*nativeMenu, *item, *editItems);
    }
}
