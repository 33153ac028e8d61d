// One measurement in a process of its own: bench_child MODE ARGUMENT... prints its figures. The
// modes that end in "-bare" are the baselines, in a process set up alike.
#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSocketNotifier>
#include <QTextBlock>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <map>

#include "bench/Endings.h"
#include "bench/Measuring.h"
#include "bench/Median.h"
#include "bench/PlainWindow.h"
#include "frame/Startup.h"
#include "platform/application/Application.h"
#include "platform/qt/ControlWidget.h"

namespace {

// Prints a byte when the window and all in it have been painted for the first time.
class FirstPaint : public QObject {
  public:
    FirstPaint() : QObject(qApp) { qApp->installEventFilter(this); }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint && qobject_cast<QMainWindow*>(object)) {
            qApp->removeEventFilter(this);
            QTimer::singleShot(0, this, [] {
                std::cout << '.' << std::flush;
                Quit(0);
            });
        }
        return false;
    }
};

void Start(const Arguments&) {
    new FirstPaint;
    EspWin::Instance();
}

QMainWindow* BareWindow() {
    auto* window = new QMainWindow;  // for as long as the process lasts
    window->resize(512, 540);
    return window;
}

// A text widget in a bare window that is shown.
QPlainTextEdit* BarePane(const QRect& place) {
    auto* window = BareWindow();
    auto* pane = new QPlainTextEdit(window);
    pane->setGeometry(place);
    QFont font = pane->font();
    font.setPixelSize(11);
    pane->setFont(font);
    window->show();
    QApplication::processEvents();
    return pane;
}

void StartBare(const Arguments&) {
    new FirstPaint;
    BareWindow()->show();
}

void StartPlain(const Arguments&) {
    new FirstPaint;
    PlainWindow()->show();
}

// How much of the start is owed to the first text, whatever the window.
void StartWord(const Arguments&) {
    new FirstPaint;
    auto* window = BareWindow();
    window->setCentralWidget(new QLabel("Quillstone"));
    window->show();
}

double PeakMebibytes() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == "VmHWM:" && status >> word) return std::stod(word) / 1024;
    return 0;
}

// What both sides of the flood measure while a text pane fills.
class FloodWatch : public TurnWatch {
  public:
    explicit FloodWatch(QPlainTextEdit& pane) : mPane(pane) { mClock.start(); }

    // At the end of the output: the seconds that it took, the peak memory, the longest turn in
    // milliseconds, the number in the last line, the characters shown.
    void Finish() {
        mPane.viewport()->repaint();
        std::cout << MicrosecondsOf(mClock) / 1e6 << ' ' << PeakMebibytes() << ' ' << Milliseconds()
                  << ' ' << mPane.document()->lastBlock().previous().text().left(7).toStdString()
                  << ' ' << mPane.document()->characterCount() << std::endl;
        Quit(0);
    }

  private:
    QPlainTextEdit& mPane;
    QElapsedTimer mClock;
};

// Runs a tool that prints the whole file.
void Flood(const Arguments& arguments) {
    const auto window = EspWin::Instance();
    QApplication::processEvents();  // the window is painted first
    auto* watch = new FloodWatch(WidgetOf<QPlainTextEdit>(window->rEF()));
    Shell& shell = window->esptool();
    shell.Completed = [=, handler = shell.Completed](Shell& sender) {
        handler(sender);
        watch->Finish();
    };
    window->InstallEF().Text("cat " + arguments[0]);
    window->StartPB_Action(window->StartPB());
}

// The same tool on a terminal of its own, read in such portions, into a text widget of the same
// size that keeps as many lines.
void FloodBare(const Arguments& arguments) {
    auto* pane = BarePane({0, 342, 512, 198});
    pane->setReadOnly(true);
    pane->setUndoRedoEnabled(false);
    pane->setMaximumBlockCount(500'000);
    pane->setPlainText("Wait....");

    auto* watch = new FloodWatch(*pane);
    termios raw{};
    cfmakeraw(&raw);
    int terminal = -1;
    if (forkpty(&terminal, nullptr, &raw, nullptr) == 0) {
        execlp("cat", "cat", arguments[0].c_str(), nullptr);
        _exit(1);
    }
    fcntl(terminal, F_SETFL, O_NONBLOCK);
    auto* output = new QSocketNotifier(terminal, QSocketNotifier::Read, qApp);
    QObject::connect(output, &QSocketNotifier::activated, qApp, [=] {
        QByteArray portion;
        std::array<char, 4096> part;
        ssize_t count = 0;
        while (portion.size() < 64 * 1024 && (count = read(terminal, part.data(), part.size())) > 0)
            portion.append(part.data(), count);
        if (portion.isEmpty() && count < 0 && errno == EAGAIN) return;
        if (portion.isEmpty()) {
            output->setEnabled(false);
            return watch->Finish();
        }
        QTextCursor cursor(pane->document());
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(QString::fromUtf8(portion));
        pane->verticalScrollBar()->setValue(10000);
    });
}

// Milliseconds from the run's start until the first line of a tool stands in the window.
void FirstLine(const Arguments& arguments) {
    const auto window = EspWin::Instance();
    static QElapsedTimer clock;
    window->esptool().DataAvailable = [=, handler = window->esptool().DataAvailable](Shell& s) {
        handler(s);
        std::cout << MicrosecondsOf(clock) / 1000 << std::endl;
        Quit(0);
    };
    window->InstallEF().Text(arguments[0]);
    clock.start();
    window->StartPB_Action(window->StartPB());
}

// A folder with that many images and a setting file that names them.
FolderItemRef MakeSetting(const FolderItemRef& folder, int images) {
    const auto setting = folder->Child(std::to_string(images) + ".csv");
    std::ofstream lines(setting->NativePath());
    for (int i = 0; i < images; ++i) {
        const std::string name = "image" + std::to_string(10000 + i) + ".bin";
        std::ofstream(folder->Child(name)->NativePath()) << i;
        lines << "up," << name << ",0x" << 10000 + i << "000\n";
    }
    return setting;
}

// With so many rows: microseconds of MakeCommand, and of one stat for each row.
void Command(const Arguments& arguments) {
    const auto window = EspWin::Instance();
    const int rows = std::stoi(arguments[1]);
    const auto folder = std::make_shared<const FolderItem>(arguments[0]);
    window->SetInstallSetting(MakeSetting(folder, rows));
    std::vector<std::string> paths;
    for (int row = 0; row < rows; ++row) {
        const Variant tag = window->ulb().CellTag(row, 0);
        paths.push_back(std::any_cast<FolderItemRef>(tag)->NativePath());
    }
    std::vector<double> times[2];
    for (int run = 0; run < 200; ++run) {
        for (const int side : {run % 2, 1 - run % 2}) {  // whoever comes second has warm caches
            QElapsedTimer clock;
            clock.start();
            struct stat unused = {};
            if (side == 0)
                window->MakeCommand();
            else
                for (const std::string& path : paths) stat(path.c_str(), &unused);
            times[side].push_back(MicrosecondsOf(clock));
        }
        QApplication::processEvents();  // the command is shown
    }
    std::cout << Median(times[0]) << ' ' << Median(times[1]) << std::endl;
    Quit(0);
}

// Milliseconds until a key that is typed at the end of a text is painted.
double KeyTime(QPlainTextEdit& pane) {
    pane.moveCursor(QTextCursor::End);
    std::vector<double> times;
    for (int key = 0; key < 20; ++key) {
        QApplication::processEvents();
        QElapsedTimer clock;
        clock.start();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, "x");
        QApplication::sendEvent(&pane, &press);
        QApplication::processEvents();
        pane.viewport()->repaint();
        times.push_back(MicrosecondsOf(clock) / 1000);
    }
    return Median(times);
}

// A key in the command for so many images, and in a bare text widget with the same text.
void Key(const Arguments& arguments) {
    const auto window = EspWin::Instance();
    const auto folder = std::make_shared<const FolderItem>(arguments[0]);
    window->SetInstallSetting(MakeSetting(folder, std::stoi(arguments[1])));
    auto& command = WidgetOf<QPlainTextEdit>(window->InstallEF());
    QApplication::processEvents();  // the command is shown
    auto* bare = BarePane({80, 208, 334, 108});
    bare->setPlainText(command.toPlainText());
    std::cout << KeyTime(command) << ' ' << KeyTime(*bare) << ' ' << bare->toPlainText().size()
              << std::endl;
    Quit(0);
}

// Microseconds for each line of a file with 100 and of one with so many lines.
void Setting(const Arguments& arguments) {
    const auto window = EspWin::Instance();
    const auto folder = std::make_shared<const FolderItem>(arguments[0]);
    const int lines = std::stoi(arguments[1]);
    const auto time = [&](int length) {
        const auto setting = MakeSetting(folder, length);
        window->SetInstallSetting(setting);
        QApplication::processEvents();  // the list and the command are shown
        QElapsedTimer clock;
        clock.start();
        window->SetInstallSetting(setting);
        return MicrosecondsOf(clock) / length;
    };
    std::cout << time(lines) << ' ' << time(100) << std::endl;
    Quit(0);
}

const std::map<std::string, void (*)(const Arguments&)> kModes = {
    {"start", Start},
    {"start-bare", StartBare},
    {"start-word", StartWord},
    {"start-plain", StartPlain},
    {"flood", Flood},
    {"flood-bare", FloodBare},
    {"first-line", FirstLine},
    {"command", Command},
    {"setting", Setting},
    {"stop", Stop},
    {"stop-bare", StopBare},
    {"close", Close},
    {"close-bare", CloseBare},
    {"looks", Looks},
    {"key", Key},
    {"compare", Compare},
};

// Qt's offscreen platform says this of each window. It would stand between the rows.
void LeaveOutSizeHints(QtMsgType, const QMessageLogContext&, const QString& message) {
    if (!message.contains("propagateSizeHints")) std::cerr << qPrintable(message) << std::endl;
}

}  // namespace

int main(int count, char** words) {
    const Arguments arguments(words + std::min(count, 2), words + count);
    const auto mode = kModes.find(count > 1 ? words[1] : "");
    if (mode == kModes.end()) return 2;
    qInstallMessageHandler(LeaveOutSizeHints);
    EarlyStartup();
    InitializeFramework([&] { mode->second(arguments); });
    RunEventLoop();
    const int code = EndFramework();
    if (SinceClose().isValid()) std::cout << MicrosecondsOf(SinceClose()) / 1000 << std::endl;
    return code;
}
