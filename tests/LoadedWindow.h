// A window with images in its list, and what a user does with them.
#pragma once

#include <QLineEdit>
#include <QTableView>
#include <QWindow>

#include "Testing.h"

// The window with a tool and some images. A setting file has loaded the list.
struct LoadedWindow {
    explicit LoadedWindow(const QByteArray& setting = "up,a.bin,1\nup,b.bin,2\nup,c.bin,3") {
        for (const char* name : {"a.bin", "b.bin", "c.bin", "a b.bin", "テ.bin", "sub/a.bin"})
            folder.Write(name, "1");
        Load(setting);
        view->setFocus();
    }
    void Load(const QByteArray& setting) const {
        folder.Write("x.csv", setting);
        window.SetInstallSetting(folder.Item("x.csv"));
    }
    // The texts of a column, without the paths in the file column.
    QStringList Column(int column) const {
        QStringList texts;
        for (int row = 0; row < list.ListCount(); ++row)
            texts += Index(row, column).data().toString().section(" (", 0, 0);
        return texts;
    }
    // The command behind -vv, with the folder's path written as @.
    QString Command() const {
        const QString command = QString::fromStdString(window.InstallEF().Text());
        return command.section(" -vv ", 1).replace(folder.Path(), "@");
    }
    QModelIndex Index(int row, int column) const { return view->model()->index(row, column); }
    QRect Place(int row, int column) const { return view->visualRect(Index(row, column)); }
    QPoint InWindow(int row, int column) const {
        return view->viewport()->mapTo(opened.frame, Place(row, column).center());
    }
    // Clicks and keys go to the window, as real ones do. Qt passes them on to the widget at that
    // place, or to the one with the focus.
    void Click(int row, int column, Qt::KeyboardModifiers held = {}) const {
        QTest::mouseClick(Desktop(), Qt::LeftButton, held, InWindow(row, column));
    }
    void Type(const QString& text) const {
        for (const QChar c : text) QTest::keyClick(Desktop(), c.toLatin1());
    }
    void Press(Qt::Key key) const { QTest::keyClick(Desktop(), key); }
    QWindow* Desktop() const { return opened.frame->windowHandle(); }
    // The cell editor that is open, if any.
    QLineEdit* Editor() const {
        auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        return editor && view->isAncestorOf(editor) ? editor : nullptr;
    }

    PreparedFolder folder{"a/b/base"};
    QString tool = folder.WriteTool(kShowArguments);
    OpenedWindow opened;
    EspWin& window = opened.window;
    Listbox& list = window.ulb();
    QTableView* view = opened.Widget<QTableView>("ulb");
};
