// Random hands on the window: keys, mouse, wheel, input methods, sizes, runs and a screen reader.
// Usage: Hands STEPS SEED...
// Each seed has a process of its own. A crash, a report of a sanitizer or a step that takes a
// minute ends it, and is told with the seed and the step.
//
// Nothing that is typed here is ever run: Start replaces it by a command of kCommands. And what has
// an event loop of its own, such as a dialog, is closed at once, since dialogs can delete files.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QAccessible>
#include <QInputMethodEvent>
#include <QThread>
#include <QTimer>
#include <QWheelEvent>
#include <QWindow>
#include <random>

#include "tests/Testing.h"

namespace {

constexpr const char* kCommands[] = {"echo a; echo b",
                                     "printf %9999d 1",
                                     "printf '\\377\\r1 %%\\r'",
                                     "read x",
                                     "trap '' TERM; echo x; read x",
                                     "("};
constexpr Qt::Key kKeys[] = {
    Qt::Key_Tab,   Qt::Key_Backtab,   Qt::Key_Return, Qt::Key_Space,    Qt::Key_Escape, Qt::Key_Up,
    Qt::Key_Down,  Qt::Key_Left,      Qt::Key_Right,  Qt::Key_Home,     Qt::Key_End,    Qt::Key_F2,
    Qt::Key_Menu,  Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_PageDown, Qt::Key_F10,    Qt::Key_A,
    Qt::Key_C,     Qt::Key_V,         Qt::Key_X,      Qt::Key_Y,        Qt::Key_Z,      Qt::Key_9,
    Qt::Key_Enter, Qt::Key_Period,    Qt::Key_Shift,  Qt::Key_Alt};
constexpr Qt::KeyboardModifier kHeld[] = {Qt::NoModifier,      Qt::NoModifier,    Qt::NoModifier,
                                          Qt::ControlModifier, Qt::ShiftModifier, Qt::AltModifier};
constexpr const char* kTexts[] = {"",           "0x10", " ",        "a\u0301",
                                  "\U0001F600", "\n",   "ab cd. E", "ガ,"};
constexpr Qt::MouseButton kButtons[] = {Qt::LeftButton, Qt::LeftButton, Qt::RightButton,
                                        Qt::MiddleButton};

class Hands {
  public:
    explicit Hands(unsigned seed) : mRandom(seed) {
        for (const char* name : {"a.bin", "b.bin"}) mFolder.Write(name, "1");
        mFolder.Write("x.csv", "up,a.bin,1\nup,b.bin,2\ncd,none");
        setenv("PATH", "", 1);  // no command finds a program
        auto& start = mOpened.window.StartPB();
        start.Action = [this, action = start.Action](PushButton& sender) {
            mOpened.window.InstallEF().Text(Any(kCommands));
            action(sender);
        };
        mCancel.callOnTimeout([] {
            if (QThread::currentThread()->loopLevel() == 0) return;
            QWidget* waits = QApplication::activePopupWidget();
            if (waits == nullptr) waits = QApplication::activeModalWidget();
            if (waits != nullptr) waits->close();
        });
        mCancel.start(1);
    }

    void Step() {
        using Move = void (Hands::*)();
        constexpr Move kMoves[] = {&Hands::Press,  &Hands::Press,  &Hands::Mouse, &Hands::Mouse,
                                   &Hands::Type,   &Hands::Resize, &Hands::Wheel, &Hands::Listen,
                                   &Hands::Listen, &Hands::Load};
        (this->*Any(kMoves))();
        QCoreApplication::processEvents();
    }

  private:
    int Below(int limit) { return static_cast<int>(mRandom() % static_cast<unsigned>(limit)); }
    template <class T, std::size_t size>
    T Any(const T (&values)[size]) {
        return values[Below(static_cast<int>(size))];
    }
    int Odd() {
        const int numbers[] = {-2, -1, 0, 1, 7, Below(99), INT_MAX, INT_MIN};
        return Any(numbers);
    }
    QPoint Place() { return {Below(mOpened.frame->width()), Below(mOpened.frame->height())}; }

    void Press() {
        if (TakesKeys()) Key(Any(kKeys), Any(kHeld));
    }
    void Type() {
        QInputMethodEvent event(Any(kTexts), {});
        event.setCommitString(Any(kTexts), -Below(3), Below(3));
        if (TakesKeys()) QCoreApplication::sendEvent(TakesKeys(), &event);
    }
    void Mouse() {
        QWindow* window = mOpened.frame->windowHandle();
        const auto button = Any(kButtons);
        const auto held = Any(kHeld);
        QTest::mousePress(window, button, held, Place());
        if (Below(2) != 0) QTest::mouseMove(window, Place());
        QTest::mouseRelease(window, button, held, Place());
        if (Below(4) == 0) QTest::mouseDClick(window, button, held, Place());
    }
    void Wheel() {
        const QPoint at = Place();
        QWidget* under = mOpened.frame->childAt(at);
        QWheelEvent turn(at, at, {}, {0, Below(2) != 0 ? 120 : -1200}, {}, Any(kHeld),
                         Qt::NoScrollPhase, false);
        if (under != nullptr) QCoreApplication::sendEvent(under, &turn);
    }
    void Resize() { mOpened.frame->resize(64 + Below(800), 64 + Below(800)); }
    void Load() {
        mOpened.window.SetInstallSetting(mFolder.Item("x.csv"));
        if (Below(2) != 0) mOpened.window.esptool().Stop();
    }

    // A screen reader, at a random widget or a cell of it.
    void Listen() {
        const auto widgets = mOpened.frame->findChildren<QWidget*>();
        auto* access = QAccessible::queryAccessibleInterface(widgets[Below(int(widgets.size()))]);
        if (access == nullptr) return;
        if (auto* table = access->tableInterface()) {
            table->selectRow(Odd());
            access->child(Odd());  // Qt's own menus crash at numbers outside
            access = table->cellAt(Odd(), Odd());
            if (access == nullptr) return;
        }
        access->state();
        access->rect();
        for (int kind = QAccessible::Name; kind <= QAccessible::Accelerator; ++kind)
            access->text(static_cast<QAccessible::Text>(kind));
        access->childAt(Odd(), Odd());
        if (auto* action = access->actionInterface(); action != nullptr && Below(4) == 0)
            for (const QString& name : action->actionNames()) action->doAction(name);
        else if (auto* text = access->textInterface())
            Listen(*text, access->editableTextInterface());
    }
    void Listen(QAccessibleTextInterface& text, QAccessibleEditableTextInterface* edit) {
        int start = 0, end = 0;
        const int at = Below(2) != 0 ? Odd() : text.characterCount() - 1 + Below(4);
        const auto type = static_cast<QAccessible::TextBoundaryType>(Below(6));
        text.textBeforeOffset(at, type, &start, &end);
        text.textAtOffset(at, type, &start, &end);
        text.textAfterOffset(at, type, &start, &end);
        text.attributes(at, &start, &end);
        text.characterRect(at);
        text.offsetAtPoint({Odd(), Odd()});
        text.text(Odd(), Odd());
        text.setCursorPosition(Odd());
        text.setSelection(Odd(), Odd(), Odd());
        text.selection(Odd(), &start, &end);
        text.removeSelection(Odd());
        if (edit != nullptr) edit->replaceText(Odd(), Odd(), Any(kTexts));
        if (edit != nullptr) edit->insertText(Odd(), Any(kTexts));
    }

    std::mt19937 mRandom;
    PreparedFolder mFolder{"a/b/base"};
    OpenedWindow mOpened;
    QTimer mCancel;
};

}  // namespace

int main(int count, char** arguments) {
    const int steps = count > 2 ? std::atoi(arguments[1]) : 0;
    auto* step = static_cast<int*>(
        mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    int failed = steps > 0 ? 0 : 2;
    for (int i = 2; i < count && failed == 0; ++i) {
        const pid_t child = fork();
        if (child == 0)
            return WithProgram([&] {
                qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
                Hands hands(static_cast<unsigned>(std::atoi(arguments[i])));
                for (*step = 1; *step <= steps; ++*step) {
                    alarm(60);
                    hands.Step();
                }
                return 0;
            });
        int status = 0;
        waitpid(child, &status, 0);
        if (status != 0) {
            std::fprintf(stderr, "seed %s, step %d: status %d\n", arguments[i], *step, status);
            failed = 1;
        }
    }
    return failed;
}
