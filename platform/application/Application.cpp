#include "platform/application/Application.h"

#include <QApplication>
#include <QDropEvent>
#include <QLibraryInfo>
#include <QLocale>
#include <QMimeData>
#include <QPalette>
#include <QSettings>
#include <QStyleHints>
#include <QTranslator>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

#include "platform/application/private/Display.h"
#include "platform/qt/AccessibleLineEdit.h"
#include "platform/qt/HeldKey.h"
#include "platform/qt/OpenEdit.h"

namespace {

// True for a drag of files or links, and for their drop. The text controls would insert the paths
// as text.
bool IsFileDrag(QEvent& event) {
    const auto type = event.type();
    return (type == QEvent::DragEnter || type == QEvent::DragMove || type == QEvent::Drop) &&
           static_cast<QDropEvent&>(event).mimeData()->hasUrls();
}

class QtApplication : public QApplication {
  public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        WatchForHeldKey(*event);
        WatchForFocus(*event);
        if (IsFileDrag(*event)) {
            event->ignore();  // no control takes a file
            return false;
        }
        try {
            return QApplication::notify(receiver, event);
        } catch (const std::exception& exception) {
            UnhandledException(exception);
            return false;
        }
    }
};

struct Program {
    std::shared_ptr<Application> application;
    std::unique_ptr<QApplication> qt;
    std::vector<std::function<void()>> atEnd;
    std::optional<int> exitCode;  // set by the first Quit, or to 1 by an exception
};

Program& TheProgram() {
    static Program program;
    return program;
}

// Black on white, whatever the desktop's theme is. A dark theme's white text would be unreadable on
// the pale rows of the list.
QPalette LightPalette() {
    QPalette palette(QColor(0xEF, 0xEF, 0xEF));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xF7, 0xF7, 0xF7));
    palette.setColor(QPalette::WindowText, Qt::black);
    palette.setColor(QPalette::Text, Qt::black);
    palette.setColor(QPalette::ButtonText, Qt::black);
    palette.setColor(QPalette::Highlight, QColor(0x2A, 0x6F, 0xB8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(0xB8, 0xCC, 0xE0));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, Qt::black);
    palette.setColor(QPalette::PlaceholderText, QColor(0x6E, 0x6E, 0x6E));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x8C, 0x8C, 0x8C));
    return palette;
}

// Shows Qt's own texts, such as those of its file dialog, in the user's language if Qt's
// translations are installed.
void SpeakTheUsersLanguage() {
    // The translation of a language that is written from right to left would mirror the window.
    QApplication::setLayoutDirection(Qt::LeftToRight);
    auto* translator = new QTranslator(qApp);
    if (translator->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(translator);
}

}  // namespace

void RegisterApplication(std::shared_ptr<Application> application) {
    TheProgram().application = std::move(application);
}

std::shared_ptr<MenuBar> ApplicationMenuBar() {
    const auto& application = TheProgram().application;
    return application ? application->MenuBar() : nullptr;
}

void SetSupportsHiDPI(bool supported) {
    using Policy = Qt::HighDpiScaleFactorRoundingPolicy;
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(supported ? Policy::PassThrough
                                                                   : Policy::Floor);
}

void InitializeFramework(const std::function<void()>& ready) {
    // The program takes no command line arguments, so Qt gets none of the real ones.
    static char name[] = "quillstone";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    {
        const DisplayWatch watch;
        TheProgram().qt = std::make_unique<QtApplication>(count, arguments);
    }
    // The program keeps nothing from one start to the next. Qt's file dialog would write the
    // folders that it has shown into a file of the user's.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
    QApplication::setStyle("fusion");
    QApplication::setPalette(LightPalette());
    QApplication::setDesktopFileName(QUILLSTONE_APP_ID);
    QApplication::setQuitOnLastWindowClosed(false);  // Window's Close says what happens
    QGuiApplication::styleHints()->setTabFocusBehavior(Qt::TabFocusAllControls);
    SpeakTheUsersLanguage();
    InstallAccessibleLineEdit();
    ready();
}

void RunEventLoop() {
    // When the display goes away, Qt calls exit from within itself. Static objects hold our
    // windows, which can't be destroyed then. The exit handler that was registered last runs first.
    // So this one ends the process before those objects are destroyed.
    std::atexit([] {
        if (TheProgram().qt) std::_Exit(1);
    });
    if (!TheProgram().exitCode) QApplication::exec();
}

void Quit(int exitCode) {
    if (!TheProgram().exitCode) TheProgram().exitCode = exitCode;
    QApplication::exit(exitCode);
}

void UnhandledException(const std::exception& exception) {
    std::fprintf(stderr, "quillstone: unhandled exception: %s\n", exception.what());
    TheProgram().exitCode = 1;  // also if Quit was called before
    QApplication::exit(1);
}

void AtEnd(std::function<void()> release) { TheProgram().atEnd.push_back(std::move(release)); }

int EndFramework() {
    for (const auto& release : std::exchange(TheProgram().atEnd, {})) release();
    TheProgram().application.reset();
    TheProgram().qt.reset();
    return TheProgram().exitCode.value_or(0);
}
