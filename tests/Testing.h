// Shared by all tests: the program's start, a prepared folder, and the widgets by their names.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <QFile>
#include <QInputMethodEvent>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <memory>
#include <string>

#include "flash/EspWin.h"
#include "frame/Startup.h"
#include "platform/application/Application.h"
#include "platform/files/FolderItem.h"
#include "platform/system/System.h"

// A failed comparison prints both texts.
template <>
inline char* QTest::toString(const std::string& text) {
    return qstrdup(text.c_str());
}

// True if the pattern matches the whole text, of any number of lines.
inline bool Matches(const QString& text, const QString& pattern) {
    return QRegularExpression("(?s)\\A(?:" + pattern + ")\\z").match(text).hasMatch();
}

// Adds columns. Returns the function that adds a row: its name, then one value for each column.
template <class... Types, class... Names>
auto Columns(Names... names) {
    (QTest::addColumn<Types>(names), ...);
    return [](const char* row, const Types&... values) { (QTest::newRow(row) << ... << values); };
}

// Returns this row's values. The types are those given to Columns.
template <class... Types, class... Names>
std::tuple<Types...> Row(Names... names) {
    return {*static_cast<Types*>(QTest::qData(names, qMetaTypeId<Types>()))...};
}

// A flash tool's script that shows its arguments.
constexpr char kShowArguments[] = "for a; do printf '<%s>' \"$a\"; done";

// A base folder of the test's own, removed with the object.
class PreparedFolder {
  public:
    explicit PreparedFolder(const QString& name = "base") : mPath(mRoot.filePath(name)) {
        QDir().mkpath(mPath);
        SetBaseFolder(mPath.toStdString());
    }
    ~PreparedFolder() {
        SetBaseFolder({});
        Ports({});
    }
    // Sets the machine's serial ports until the folder is removed.
    void Ports(const std::vector<std::string>& names) const {
        System().PortNames = [names] { return names; };
    }
    QString Path(const QString& relative = {}) const {
        return relative.isEmpty() ? mPath : mPath + '/' + relative;
    }
    FolderItemRef Item(const QString& relative) const {
        return std::make_shared<const FolderItem>(Path(relative).toStdString());
    }
    QString Write(const QString& relative, const QByteArray& bytes, int mode = 0644) const {
        const QString path = Path(relative);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("can't write %s", qPrintable(path));
        file.close();
        chmod(path.toUtf8().constData(), static_cast<mode_t>(mode));
        return path;
    }
    // A shell script in the flash tool's place.
    QString WriteTool(const QByteArray& script) const {
        return Write("esptool/esptool", "#!/bin/sh\n" + script, 0755);
    }
    // The owner of everything in the test's folder: never root, whom everybody trusts.
    uid_t Owner() const {
        if (geteuid() != 0) return geteuid();
        const std::string root = mRoot.path().toStdString();
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
            if (lchown(entry.path().c_str(), 1, 0) != 0) qFatal("can't give a file away");
        return 1;
    }

  private:
    QTemporaryDir mRoot;
    QString mPath;
};

// The widget that gets the next key: the open popup's, or the one with the focus.
inline QWidget* TakesKeys() {
    QWidget* popup = QApplication::activePopupWidget();
    if (!popup) return QApplication::focusWidget();
    return popup->focusWidget() ? popup->focusWidget() : popup;
}
inline void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(TakesKeys(), key, modifiers);
}
inline void Press(const QList<QKeyCombination>& keys) {
    for (const auto& key : keys) Key(key.key(), key.keyboardModifiers());
}
inline void Type(const QString& text) {
    for (const QChar c : text) QTest::keyClicks(TakesKeys(), QString(c));
}
// By an input method.
inline void Commit(const QString& text) {
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(TakesKeys(), &event);
}

// The program's window, opened in the current base folder.
class OpenedWindow {
  public:
    OpenedWindow() {
        window.Show();
        frame = Widget<QWidget>("StartPB")->window();
        if (!QTest::qWaitForWindowActive(frame)) qFatal("the window doesn't come up");
    }

    template <class W>
    W* Widget(const char* name) const {
        for (QWidget* widget : QApplication::allWidgets())
            if (widget->objectName() == name) return dynamic_cast<W*>(widget);
        return nullptr;
    }
    void Click(const char* name) const { QTest::mouseClick(Widget<QWidget>(name), Qt::LeftButton); }
    // The button is outside the window. Returns true if the window is connected then.
    bool PressConnect() const {
        QTest::keyClick(Widget<QWidget>("ConnectPB"), Qt::Key_Space);
        return window.mConnected;
    }
    // Gives the command and presses Start.
    void Start(const std::string& command) const {
        window.InstallEF().Text(command);
        Click("StartPB");
    }
    // The run's output so far, without "Wait....".
    QString Shown() const { return QString::fromStdString(window.rEF().Text()).mid(8); }
    // Waits for the run's end and returns its output, or "hangs" if it doesn't end.
    QString Output() const {
        QTimer limit;  // wakes the loop too
        limit.setSingleShot(true);
        limit.start(20'000);
        while (!window.StartPB().Enabled() && limit.isActive())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return window.StartPB().Enabled() ? Shown() : "hangs";
    }
    QString Run(const std::string& command) const {
        Start(command);
        return Output();
    }
    static QString Focus() {
        const QWidget* focus = QApplication::focusWidget();
        return focus ? focus->objectName() : QString();
    }
    static void TabTo(const QString& name) {
        for (int stops = 22; stops > 0 && Focus() != name; --stops) {
            QCoreApplication::processEvents();  // an edit ends after its key
            Key(Qt::Key_Tab);
        }
        if (Focus() != name) qFatal("Tab doesn't lead to %s", qPrintable(name));
    }

    EspWin window;
    QWidget* frame = nullptr;
};

// Starts the program without its window, for as long as `body` runs.
template <class Body>
int WithProgram(Body body) {
    EarlyStartup();
    InitializeFramework([] {});
    System().PortNames = [] { return std::vector<std::string>(); };  // whatever the machine has
    System().DevicePrefix = "/dev/";  // pseudo terminals have no other on any system
    const int failed = body();
    EndFramework();
    return failed;
}

#define QUILLSTONE_TEST(Test)                             \
    int main(int count, char** arguments) {               \
        return WithProgram([=] {                          \
            Test test;                                    \
            return QTest::qExec(&test, count, arguments); \
        });                                               \
    }
