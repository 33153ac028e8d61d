// Usage: RandomUser STEPS SEED...
// A user who does anything at all with the window. After each step it must still be right (see
// Oracle). With several seeds, each has a process of its own. A crash, a report of a sanitizer, a
// step that takes a minute or a wrong window ends it. Then the program prints the seed and the last
// moves.
//
// No typed text is ever run: Start replaces the command by one of kCommands. Dialogs and menus with
// an event loop of their own are closed at once, since a dialog can delete files.
#include <unistd.h>

#include <QAccessible>
#include <QClipboard>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProcess>
#include <QTextBlock>
#include <QThread>
#include <QWheelEvent>
#include <array>
#include <map>
#include <random>

#include "tests/LoadedWindow.h"

namespace {

// Prints how the shell was called: sh, -c, -- and the command's first line, without NULs between.
constexpr char kShowCall[] = "IFS= read -r x </proc/$$/cmdline; printf %s\\\\n \"$x\"; ";
constexpr const char* kCommands[] = {"echo a; echo b",
                                     "printf %9999d 1",
                                     "printf '\\377\\r1 %%\\r'",
                                     "read x",
                                     "trap '' TERM; echo x; read x",
                                     "\n("};
constexpr Qt::Key kKeys[] = {
    Qt::Key_Tab,   Qt::Key_Backtab,   Qt::Key_Return, Qt::Key_Space,    Qt::Key_Escape, Qt::Key_Up,
    Qt::Key_Down,  Qt::Key_Left,      Qt::Key_Right,  Qt::Key_Home,     Qt::Key_End,    Qt::Key_F2,
    Qt::Key_Menu,  Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_PageDown, Qt::Key_F10,    Qt::Key_A,
    Qt::Key_C,     Qt::Key_V,         Qt::Key_X,      Qt::Key_Y,        Qt::Key_Z,      Qt::Key_9,
    Qt::Key_Enter, Qt::Key_Period,    Qt::Key_Shift,  Qt::Key_Alt};
constexpr Qt::KeyboardModifier kHeld[] = {Qt::NoModifier,      Qt::NoModifier,    Qt::NoModifier,
                                          Qt::ControlModifier, Qt::ShiftModifier, Qt::AltModifier};
constexpr const char* kTexts[] = {"",           "0x10", " ",        "a\u0301",
                                  "\U0001F600", "\n",   "ab cd. E", "ガ,\r\n"};
constexpr Qt::MouseButton kButtons[] = {Qt::LeftButton, Qt::LeftButton, Qt::RightButton,
                                        Qt::MiddleButton};

// On the standard output, at once, since the process may crash.
void Print(const QString& line) {
    std::puts(line.toUtf8().replace('\n', "\\n").constData());
    std::fflush(stdout);
}

void Expect(bool isRight, const char* what, const QString& where) {
    if (isRight) return;
    Print(QString("wrong: ") + what + ": " + where);
    _exit(1);
}

// Knows what is right. It judges after each step, and whenever something acts in the middle of one.
class Oracle {
  public:
    explicit Oracle(const LoadedWindow& job) : mJob(job), mWindow(job.window) {}

    void BeforeStep() {
        mBefore = Text(mWindow.InstallEF());
        mEditsCommand = CommandHasFocus();
    }
    // The user edits the command, or gives up the edit of a cell.
    void EditsCommand() { mEditsCommand = true; }
    void GivesUp() {
        if (mEditor != nullptr && mEditor->hasFocus()) mCell = QModelIndex();
    }

    // A button or a choice acts.
    void OnAction() {
        Expect(OpenEditor() == nullptr, "acts before the edit is taken over", mTyped);
        JudgeEdit();
    }
    // The command that the window shows must be right. Then it is replaced by `given`.
    void OnStart(const QString& given) {
        OnAction();
        JudgeCommand();
        mWindow.InstallEF().Text(given.toStdString());
        mEditsCommand = true;
        mGiven = given;
    }

    void ForgetRun() { mGiven.clear(); }
    bool HasRun() const { return !mGiven.isEmpty(); }
    // Right after a start the shell was given the command that stood in the window. Once in some
    // thousand runs /proc had no command line for it.
    void JudgeRun() const {
        const QString shown = Text(mWindow.rEF()), line = shown.section('\n', 0, 0);
        if (shown == line || line == "Wait...." || !QFile::exists("/proc/self")) return;
        Expect(line == "Wait....sh-c--" + mGiven.section('\n', 0, 0), "run", shown);
    }

    void AfterStep() {
        for (const TextArea* area :
             {&mWindow.rEF(), &mWindow.UploadEF(), &mWindow.EspToolEF(), &mWindow.InstallEF()})
            JudgeArea(*area);
        for (const char* name : {"ResetEF", "AddressEF"}) {
            const auto* line = mJob.opened.Widget<QLineEdit>(name);
            Expect(line->cursorPosition() <= line->text().size(), "cursor", name);
            Expect(!line->text().contains('\n'), "line end", name);
        }
        JudgeFocus();
        JudgeEdit();
        JudgeCommand();
        Follow(OpenEditor());
    }

  private:
    static QString Text(const TextEdit& text) { return QString::fromStdString(text.Text()); }

    bool CommandHasFocus() const {
        const QWidget* focus = QApplication::focusWidget();
        // The items of a menu act on the text that it was opened for.
        if (QApplication::activePopupWidget() != nullptr || qobject_cast<const QMenuBar*>(focus))
            return mEditsCommand;
        return focus != nullptr && focus->objectName() == "InstallEF";
    }

    QLineEdit* OpenEditor() const {
        for (auto* editor : mJob.view->viewport()->findChildren<QLineEdit*>())
            if (editor->isVisible()) return editor;
        return nullptr;
    }

    void Follow(QLineEdit* editor) {
        if (editor == nullptr) return;
        mTyped = editor->text();
        mCell = mJob.view->indexAt(editor->geometry().center());
        if (editor == std::exchange(mEditor, editor)) return;
        QObject::connect(editor, &QLineEdit::textChanged, editor,
                         [this](const QString& text) { mTyped = text; });
    }

    // A text field draws its text, line for line. A composition isn't part of the text.
    void JudgeArea(const TextArea& area) const {
        const auto* pane = mJob.opened.Widget<QPlainTextEdit>(area.Name().c_str());
        const QTextCursor cursor = pane->textCursor();
        const int end = pane->document()->characterCount();
        Expect(cursor.position() < end && cursor.anchor() < end, "cursor", pane->objectName());
        QString text = Text(area), drawn = pane->toPlainText();
        // The output has very long lines in several paragraphs.
        if (&area == &mWindow.rEF()) text.remove('\n'), drawn.remove('\n');
        Expect(drawn.toUtf8() == text.toUtf8(), "drawn", drawn + "| for |" + text);
    }

    void JudgeFocus() const {
        const QWidget* focus = QApplication::focusWidget();
        if (focus == nullptr || focus->window() != mJob.view->window()) return;
        Expect(focus->isVisible() && focus->isEnabled(), "focus", focus->objectName());
        // The list keeps the focus while an input method composes the first text of an editor.
        const QLineEdit* editor = OpenEditor();
        Expect(editor == nullptr || focus == editor || focus == mJob.view ||
                   qobject_cast<const QMenuBar*>(focus) != nullptr,
               "open editor behind", focus->objectName());
    }

    // After an edit the typed text is in its cell, unless the row is gone.
    void JudgeEdit() {
        if (!mCell.isValid() || OpenEditor() != nullptr) return;
        Expect(mCell.data().toString() == mTyped, "edit is lost", mTyped);
        mCell = QModelIndex();
    }

    QString Composed() const {
        QString command = " -vv ";
        const auto option = [&command](const char* letters, const QString& value) {
            if (!value.isEmpty()) command += letters + value + ' ';
        };
        option("-cd ", Text(mWindow.ResetEF()));
        option("-cb ", QString::fromStdString(mWindow.BaudPM().Text()));
        option("-cp /dev/", QString::fromStdString(mWindow.PortPM().Text()));
        QStringList images;
        for (int row = 0; row < mJob.list.ListCount(); ++row) {
            const QString file = mJob.Index(row, 0).data().toString();
            const QString address = mJob.Index(row, 1).data().toString();
            if (!file.isEmpty() && !address.isEmpty())
                images += "-ca " + address + " -cf " + file.section('(', 1).chopped(1);
        }
        // A half of a surrogate pair comes out as the control's text has it.
        return QString::fromUtf8((command + images.join(' ')).toUtf8());
    }

    // The command says what the window shows, unless the user has edited it since.
    void JudgeCommand() {
        const QString command = Text(mWindow.InstallEF()), composed = Composed();
        if (command == composed || command == mJob.tool + composed)
            mIsEdited = false;
        else if (mEditsCommand || CommandHasFocus())
            mIsEdited = true;
        else
            Expect(mIsEdited && command == mBefore, "command", command + "| for |" + composed);
    }

    const LoadedWindow& mJob;
    const EspWin& mWindow;
    QPointer<QLineEdit> mEditor;
    QPersistentModelIndex mCell;  // that is edited
    QString mTyped;               // the text in its editor
    QString mBefore;              // the command before the step
    QString mGiven;               // to the last run
    bool mEditsCommand = false, mIsEdited = false;
};

class RandomUser {
  public:
    explicit RandomUser(unsigned seed) : mRandom(seed) {
        mJob.folder.Ports({"p", "q"});
        mJob.opened.Click("ScanBtn");
        setenv("PATH", "", 1);  // no command finds a program
        EspWin& window = mJob.window;
        Before(window.StartPB().Action,
               [this] { mOracle.OnStart(QString(kShowCall) + Any(kCommands)); });
        for (auto* button : {&window.SelectPB(), &window.SelectESPPB(), &window.ScanBtn(),
                             &window.DeletePB(), &window.ConnectPB()})
            Before(button->Action, [this] { mOracle.OnAction(); });
        for (auto* popup : {&window.PortPM(), &window.BaudPM(), &window.tooltypePM()})
            Before(popup->Change, [this] { mOracle.OnAction(); });
        mCancel.callOnTimeout([] {
            if (QThread::currentThread()->loopLevel() == 0) return;
            QWidget* waits = QApplication::activePopupWidget();
            if (waits == nullptr) waits = QApplication::activeModalWidget();
            if (waits != nullptr) waits->close();
        });
        mCancel.start(1);
        QCoreApplication::processEvents();
    }

    void Step() {
        using Move = void (RandomUser::*)();
        constexpr Move kMoves[] = {&RandomUser::Press, &RandomUser::Press,  &RandomUser::Mouse,
                                   &RandomUser::Mouse, &RandomUser::Type,   &RandomUser::Resize,
                                   &RandomUser::Wheel, &RandomUser::Listen, &RandomUser::Listen,
                                   &RandomUser::Load,  &RandomUser::Copy,   &RandomUser::Start};
        mOracle.BeforeStep();
        ++mStep;
        (this->*Any(kMoves))();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();  // a timer may have posted some
        mOracle.AfterStep();
    }

  private:
    // Has something done before an event's handler.
    template <class Sender, class First>
    static void Before(std::function<void(Sender&)>& event, First first) {
        event = [first, handler = event](Sender& sender) {
            first();
            handler(sender);
        };
    }

    int Below(int limit) { return static_cast<int>(mRandom() % static_cast<unsigned>(limit)); }
    template <class Values>
    auto Any(const Values& values) -> std::decay_t<decltype(values[0])> {
        return values[Below(static_cast<int>(std::size(values)))];
    }
    int Odd() { return Any(std::array{-2, -1, 0, 1, 7, Below(99), INT_MAX, INT_MIN}); }

    // Anywhere in the window, or the middle of a control or of a cell.
    QPoint Place() {
        const auto* control = static_cast<QWidget*>(Any(mJob.view->parentWidget()->children()));
        const QWidget* frame = mJob.opened.frame;
        return Any(std::array{QPoint(Below(frame->width()), Below(frame->height())),
                              control->mapTo(frame, control->rect().center()),
                              mJob.InWindow(Below(2), Below(2))});
    }
    void Note(const QString& kind, const QString& move = {}) const {
        const QWidget* focus = QApplication::focusWidget();
        const QString name = focus ? focus->objectName() : QString();
        Print(QString("%1 %2: %3, focus on %4").arg(kind).arg(mStep).arg(move, name));
    }

    void Press() {
        const QKeyCombination keys = Any(kHeld) | Any(kKeys);
        Note("key", QKeySequence(keys).toString());
        if (keys.key() == Qt::Key_Escape) mOracle.GivesUp();
        if (TakesKeys()) Key(keys.key(), keys.keyboardModifiers());
    }
    void Type() {
        QInputMethodEvent event(Any(kTexts), {});
        event.setCommitString(Any(kTexts), -Below(3), Below(3));
        Note("composition", event.preeditString() + ", commits " + event.commitString());
        if (TakesKeys()) QCoreApplication::sendEvent(TakesKeys(), &event);
    }
    void Copy() {
        const char* text = Any(kTexts);
        Note("copy", text);
        QApplication::clipboard()->setText(text);
    }
    void Mouse() {
        QWindow* window = mJob.Desktop();
        const auto button = Any(kButtons);
        const auto held = Any(kHeld);
        const QPoint at = Place();
        Note("mouse", QString("button %1 at %2, %3").arg(button).arg(at.x()).arg(at.y()));
        const QWidget* under = mJob.opened.frame->childAt(at);
        if (mJob.opened.Widget<QWidget>("InstallEF")->isAncestorOf(under)) mOracle.EditsCommand();
        QTest::mousePress(window, button, held, at);
        if (Below(2) != 0) QTest::mouseMove(window, Place());
        QTest::mouseRelease(window, button, held, Place());
        if (Below(4) == 0) QTest::mouseDClick(window, button, held, Place());
    }
    void Start() {
        Note("start");
        mOracle.ForgetRun();
        if (TakesKeys()) Key(Qt::Key_Return, Qt::ControlModifier);
        if (!mOracle.HasRun()) return;
        const auto prints = [this] {
            return mJob.window.StartPB().Enabled() ||
                   mJob.window.rEF().Text().find('\n') != std::string::npos;
        };
        Expect(QTest::qWaitFor(prints), "hangs", "");
        mOracle.JudgeRun();
    }
    void Wheel() {
        const QPoint at = Place();
        QWidget* under = mJob.opened.frame->childAt(at);
        QWheelEvent turn(at, at, {}, {0, Below(2) != 0 ? 120 : -1200}, {}, Any(kHeld),
                         Qt::NoScrollPhase, false);
        Note("wheel");
        if (under != nullptr) QCoreApplication::sendEvent(under, &turn);
    }
    void Resize() {
        const QSize size(64 + Below(800), 64 + Below(800));
        Note("size", QString("%1, %2").arg(size.width()).arg(size.height()));
        mJob.opened.frame->resize(size);
    }
    void Load() {
        Note("load");
        mJob.Load("up,a.bin,1\nup,b.bin,2\ncd,none");
        if (Below(2) != 0) mJob.window.esptool().Stop();
    }

    // A screen reader, at a random widget or a cell of it.
    void Listen() {
        const QWidget* widget = Any(mJob.opened.frame->findChildren<QWidget*>());
        Note("reader", "at " + widget->objectName());
        if (widget->objectName() == "InstallEF") mOracle.EditsCommand();
        auto* access = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
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
            // Qt offers editing for read-only texts too.
            Listen(*text, access->state().readOnly ? nullptr : access->editableTextInterface());
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
    int mStep = 0;
    const LoadedWindow mJob;
    Oracle mOracle{mJob};
    QTimer mCancel;
};

int Use(unsigned seed, int steps) {
    return WithProgram([=] {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        RandomUser user(seed);
        for (int step = 0; step < steps; ++step) {
            alarm(60);
            user.Step();
        }
        return 0;
    });
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) return 2;
    if (count == 3)
        return Use(static_cast<unsigned>(std::atoi(arguments[2])), std::atoi(arguments[1]));
    std::map<QByteArray, int> kinds;
    for (int i = 2; i < count; ++i) {
        QProcess one;
        one.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        one.start(arguments[0], {arguments[1], arguments[i]});
        one.waitForFinished(-1);
        const auto moves = one.readAllStandardOutput().trimmed().split('\n');
        for (const QByteArray& move : moves) ++kinds[move.left(move.indexOf(' '))];
        if (one.exitStatus() == QProcess::NormalExit && one.exitCode() == 0) continue;
        Print(QString("seed %1").arg(arguments[i]));
        for (const QByteArray& move : moves.mid(moves.size() - 11)) Print(move);
        return 1;
    }
    for (const auto& [kind, times] : kinds) Print(QString("%1 %2").arg(times).arg(kind));
    return 0;
}
