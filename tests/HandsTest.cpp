// The window in the user's hands: keyboard, mouse, wheel, drops, keys that are held down.
#include <QAccessible>
#include <QClipboard>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTableView>
#include <QTextBlock>
#include <QTextLayout>
#include <QWheelEvent>

#include "Testing.h"

namespace {

// A tool that shows its arguments and counts its runs, two images and two ports.
struct JobFolder : PreparedFolder {
    JobFolder() : PreparedFolder("a/b/o'neil $HOME \"q\" ファーム;&") {
        WriteTool(QByteArray("echo >>\"$0.runs\";") + kShowArguments);
        for (const char* name : {"bin/a.bin", "bin/b b.bin"}) Write(name, "1");
        Write("bin/installsetting.csv", "up,a.bin,1\nup,b b.bin,x\n");
        Ports({"p", "q"});
    }
};
struct WholeJob : JobFolder, OpenedWindow {
    // What the tool got when it has ended, @ for the images' folder.
    QString Arguments() const { return Output().replace(Path("bin"), "@").remove("<-vv>"); }
    qint64 Runs() const { return QFileInfo(Path("esptool/esptool.runs")).size(); }
};

// What a user does while a text is edited.
using Way = std::function<void(const WholeJob&)>;

// The steps are keys, "Menu" for a click on the edit menu, or the name of a control and what is
// done to it.
void Do(const WholeJob& job, const QString& steps) {
    for (const QString& step : steps.split(", ")) {
        const QByteArray control = step.section(' ', 1).toUtf8();
        auto* widget = job.Widget<QWidget>(control.constData());
        if (step.startsWith("click")) {
            QTest::mouseClick(widget, Qt::LeftButton);
        } else if (step.startsWith("press")) {
            QAccessible::queryAccessibleInterface(widget)->actionInterface()->doAction(
                QAccessibleActionInterface::pressAction());
        } else if (step.startsWith("choose")) {
            static_cast<QComboBox*>(widget)->setCurrentIndex(11);
        } else if (step == "Menu") {
            auto* bar = job.frame->findChild<QMenuBar*>();
            QTest::mouseClick(bar, Qt::LeftButton, {},
                              bar->actionGeometry(bar->actions()[1]).center());
            QVERIFY(QApplication::activePopupWidget());
        } else if (step == "Alt") {
            QTest::keyPress(TakesKeys(), Qt::Key_Alt, Qt::AltModifier);
            QTest::keyRelease(TakesKeys(), Qt::Key_Alt);
        } else {
            Press({QKeySequence(step)[0]});
        }
        if (!step.contains("StartPB") && !control.isEmpty())
            QCOMPARE(job.window.ulb().Cell(0, 1), "0xA2");  // no editor stays open behind it
    }
}

bool TakesAFile(QWidget* widget) {
    QMimeData dragged;
    dragged.setUrls({QUrl("file:///tmp/a.bin")});
    QDragEnterEvent event({2, 2}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
    event.ignore();
    QCoreApplication::sendEvent(widget, &event);
    return event.isAccepted();
}

}  // namespace

Q_DECLARE_METATYPE(Way)

class HandsTest : public QObject {
    Q_OBJECT
  private slots:
    void WholeJobByKeyboard() {
        const WholeJob job;
        job.TabTo("PortPM");
        Key(Qt::Key_Down);
        job.TabTo("BaudPM");
        Key(Qt::Key_Up);
        job.TabTo("ResetEF");
        Type("xy");
        job.TabTo("ulb");
        Press({Qt::Key_Down, Qt::Key_Return, Qt::Key_9, Qt::Key_0, Qt::Key_Return});
        QCoreApplication::processEvents();  // the editor closes in a later turn
        Key(Qt::Key_Down);
        job.TabTo("DeletePB");
        Key(Qt::Key_Space);
        QCOMPARE(job.Focus(), "ulb");  // nothing is left to delete
        job.TabTo("InstallEF");
        Key(Qt::Key_End, Qt::ControlModifier);
        Type(" e");
        for (const QKeyCombination key : {Qt::CTRL | Qt::Key_Return,
                                          Qt::CTRL | Qt::Key_Enter,
                                          {Qt::Key_Space},
                                          {Qt::Key_Return}}) {
            if (key.key() == Qt::Key_Space) job.TabTo("StartPB");
            Press({key});
            QCOMPARE(job.Arguments(),
                     "<-cd><xy><-cb><76800><-cp></dev/q><-ca><90><-cf><@/a.bin><e>");
        }
        QCOMPARE(job.Runs(), 4);
    }

    void TabGoesRound() {
        const WholeJob job;
        QCOMPARE(job.Focus(), "rEF");  // where no key changes anything
        const std::string command = job.window.InstallEF().Text();
        QInputMethodEvent committed;
        committed.setCommitString("x");
        QCoreApplication::sendEvent(QApplication::focusWidget(), &committed);
        Press({Qt::Key_Up, Qt::Key_E, Qt::Key_Space, Qt::Key_Delete, Qt::Key_Backtab});
        QCOMPARE(job.window.rEF().Text(), "Install ....");
        QCOMPARE(job.window.InstallEF().Text(), command);
        QCOMPARE(job.Focus(), "StartPB");
        job.Widget<QTableView>("ulb")->selectRow(0);  // enables DeletePB
        for (const char* next :
             {"rEF",       "UploadEF", "SelectPB",   "EspToolEF", "BaudPM",    "BitsPM",
              "ConnectPB", "CtsCB",    "DtrCB",      "ParityPM",  "PortPM",    "ScanBtn",
              "StopPM",    "XonCB",    "ResetEF",    "AddressEF", "InstallEF", "SelectESPPB",
              "ulb",       "DeletePB", "tooltypePM", "StartPB"}) {
            Key(Qt::Key_Tab);
            QCOMPARE(job.Focus(), QString(next));
        }
    }

    void WheelOverAClosedPopup() {
        const WholeJob job;
        for (const char* popup : {"PortPM", "BaudPM"}) {
            auto* combo = job.Widget<QComboBox>(popup);
            const int before = combo->currentIndex();
            for (const int notch : {-120, 120, -120, 120}) {
                QWheelEvent turn({5, 5}, combo->mapToGlobal(QPointF(5, 5)), {}, {0, notch}, {}, {},
                                 Qt::NoScrollPhase, false);
                QCoreApplication::sendEvent(combo, &turn);
                QCOMPARE(combo->currentIndex(), before);
                if (notch > 0) combo->setFocus();
            }
        }
    }

    void HeldKeyStartsOneRun_data() {
        const auto row = Columns<QKeyCombination, bool>("keys", "marked");  // or by the time alone
        row("Return, marked as repeated", Qt::Key_Return, true);
        row("Return", Qt::Key_Return, false);
        row("Space", Qt::Key_Space, false);
        row("Ctrl+Return", Qt::CTRL | Qt::Key_Return, false);
    }
    void HeldKeyStartsOneRun() {
        QFETCH(const QKeyCombination, keys);
        QFETCH(const bool, marked);
        const WholeJob job;
        job.TabTo("StartPB");
        const auto send = [&](QEvent::Type type, ulong time, bool repeated) {
            QWidget* focus = QApplication::focusWidget();
            const auto held = keys.keyboardModifiers();
            const bool told = repeated && marked;
            QKeyEvent event(type, keys.key(), held, {}, told);
            event.setTimestamp(time);
            if (type == QEvent::KeyRelease ||
                !qt_sendShortcutOverrideEvent(focus, time, keys.key(), held, {}, told))
                QCoreApplication::sendEvent(focus, &event);
        };
        send(QEvent::KeyPress, 1, false);
        for (ulong time = 700; time < 1500; time += 40) {
            send(QEvent::KeyRelease, time, true);
            send(QEvent::KeyPress, time, true);
            QVERIFY(job.Output() != "hangs");
        }
        send(QEvent::KeyRelease, 1600, false);
        QVERIFY(job.Output() != "hangs");
        QCOMPARE(job.Runs(), 1);
        QCOMPARE(job.Focus(), "StartPB");  // the focus came back
    }

    // Start is disabled meanwhile.
    void FocusDuringARun_data() {
        const auto row = Columns<Qt::Key, QString>("key", "after");
        row("Shift alone", Qt::Key_Shift, "StartPB");
        row("Alt alone", Qt::Key_Alt, "StartPB");
        row("another key", Qt::Key_Home, "rEF");
    }
    void FocusDuringARun() {
        const auto [key, after] = Row<Qt::Key, QString>("key", "after");
        const WholeJob job;
        job.TabTo("StartPB");
        job.window.InstallEF().Text("exec sleep 999");
        Key(Qt::Key_Space);
        QCOMPARE(job.Focus(), "rEF");
        QTest::keyPress(TakesKeys(), key);
        job.window.esptool().Stop();
        QVERIFY(job.Output() != "hangs");
        QCOMPARE(job.Focus(), after);
    }

    void CtrlReturnInAnOpenList() {
        const WholeJob job;
        job.TabTo("PortPM");
        for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
            Press({Qt::Key_Space, Qt::Key_Down, Qt::CTRL | key});
            QVERIFY(job.Arguments().contains("<-cp></dev/q>"));
            job.frame->activateWindow();  // no window manager does so after a popup
            QTRY_COMPARE(job.Focus(), "PortPM");
        }
        QCOMPARE(job.Runs(), 2);
    }

    // Start runs the text that the cell shows, whatever the user did in between.
    void AnEditIsTakenOver_data() {
        QTest::addColumn<QString>("steps");
        for (const char* steps :
             {"click StartPB", "Ctrl+Return", "Menu, Escape, click StartPB", "Alt, click StartPB",
              "Alt, Ctrl+Return", "Menu, Escape, click ResetEF, End, Ctrl+Return",
              "Menu, press StartPB", "Alt, choose BaudPM, Ctrl+Return",
              "Alt, Escape, Return, click StartPB"})
            QTest::newRow(steps) << steps;
    }
    void AnEditIsTakenOver() {
        const WholeJob job;
        job.TabTo("ulb");
        Press({Qt::Key_Down, Qt::Key_F2});
        Type("0xA2");
        QFETCH(const QString, steps);
        Do(job, steps);
        QTRY_COMPARE(job.Runs(), 1);
        QVERIFY(job.Arguments().contains("<-ca><0xA2>"));
        QCOMPARE(job.window.ulb().Cell(0, 1), "0xA2");
    }

    // A line end that comes in becomes a blank.
    void AFieldStaysOneLine_data() {
        QTest::addColumn<Way>("way");
        const auto row = [](const char* what, const Way& way) { QTest::newRow(what) << way; };
        row("by keys", [](const WholeJob&) { Key(Qt::Key_V, Qt::ControlModifier); });
        row("by the menu",
            [](const WholeJob& job) { job.frame->findChild<QAction*>("EditPaste")->trigger(); });
        row("by a drop", [](const WholeJob&) {
            QMimeData dragged;
            dragged.setText(QApplication::clipboard()->text());
            QDragEnterEvent enter({2, 2}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
            QDropEvent drop({2, 2}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
            Key(Qt::Key_Delete);
            QCoreApplication::sendEvent(QApplication::focusWidget(), &enter);
            QCoreApplication::sendEvent(QApplication::focusWidget(), &drop);
        });
        row("by an input method", [](const WholeJob&) {
            QInputMethodEvent event;
            event.setCommitString(QApplication::clipboard()->text());
            QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
        });
        row("by a screen reader", [](const WholeJob&) {
            auto* text = QAccessible::queryAccessibleInterface(QApplication::focusWidget());
            text->editableTextInterface()->replaceText(0, -1, QApplication::clipboard()->text());
        });
    }
    void AFieldStaysOneLine() {
        QFETCH(const Way, way);
        const WholeJob job;
        QApplication::clipboard()->setText("a\r\nb\n");
        job.TabTo("ResetEF");
        for (const bool inList : {false, true}) {
            if (inList) job.TabTo("ulb");
            if (inList) Press({Qt::Key_Down, Qt::Key_F2});
            Key(Qt::Key_A, Qt::ControlModifier);
            way(job);
            QCOMPARE(static_cast<QLineEdit*>(QApplication::focusWidget())->text(), "a b ");
            Key(Qt::Key_Z, Qt::ControlModifier);
            QVERIFY(static_cast<QLineEdit*>(QApplication::focusWidget())->text() != "a b ");
            Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        }
        Key(Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(job.Arguments().startsWith("<-cd><a><b>"));
    }

    // The user presses a key while an input method is composing.
    void AKeyEndsAComposition_data() {
        const auto row =
            Columns<QString, QString, QKeyCombination, QString>("in", "committed", "key", "text");
        row("Down in the command", "InstallEF", "", Qt::Key_Down, "bca");
        row("Page Down in the command", "InstallEF", "", Qt::Key_PageDown, "bca");
        row("Shift+Down in the command", "InstallEF", "", Qt::SHIFT | Qt::Key_Down, "bca");
        row("Shift alone in the command", "InstallEF", "", Qt::Key_Shift, "a");
        row("Up behind a line end", "InstallEF", "\nz", Qt::Key_Up, "\nzbca");
        row("Ctrl+Right in Reset", "ResetEF", "", Qt::CTRL | Qt::Key_Right, "bca");
    }
    void AKeyEndsAComposition() {
        const auto [in, committed, key, text] =
            Row<QString, QString, QKeyCombination, QString>("in", "committed", "key", "text");
        const WholeJob job;
        job.TabTo(in);
        QWidget* field = QApplication::focusWidget();
        Press({Qt::CTRL | Qt::Key_A, Qt::Key_A, Qt::Key_Left});
        for (const char* composed : {"b", "bc"}) {
            QInputMethodEvent event(composed, {});
            if (QString("bc") == composed) event.setCommitString(committed);
            QCoreApplication::sendEvent(field, &event);
        }
        Press({key});
        const auto* area = qobject_cast<QPlainTextEdit*>(field);
        const auto* line = qobject_cast<QLineEdit*>(field);
        const QString whole = area ? area->toPlainText() : line->text();
        QCOMPARE(whole, text);
        if (area)
            QVERIFY(area->document()->begin().layout()->preeditAreaText().isEmpty() !=
                    (text == "a"));
        QVERIFY((area ? area->textCursor().position() : line->cursorPosition()) <= whole.size());
    }

    void NothingTakesAFile() {
        const WholeJob job;
        QVERIFY(!TakesAFile(job.frame) && !TakesAFile(job.Widget<QWidget>("ResetEF")));
        for (const char* name : {"rEF", "InstallEF", "ulb"})
            QVERIFY(!TakesAFile(job.Widget<QAbstractScrollArea>(name)->viewport()));
        job.TabTo("ulb");
        Press({Qt::Key_Down, Qt::Key_F2});
        QVERIFY(!TakesAFile(QApplication::focusWidget()));
    }
};

QUILLSTONE_TEST(HandsTest)
#include "HandsTest.moc"
