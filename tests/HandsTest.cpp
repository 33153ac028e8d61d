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

using Keys = QList<QKeyCombination>;

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

// What a user does while an address is edited.
using Way = std::function<void(const WholeJob&)>;

void TapAlt() {
    QTest::keyPress(TakesKeys(), Qt::Key_Alt, Qt::AltModifier);
    QTest::keyRelease(TakesKeys(), Qt::Key_Alt);
}
void OpenMenu(const WholeJob& job) {
    auto* bar = job.frame->findChild<QMenuBar*>();
    const QPoint place = bar->actionGeometry(bar->actions()[1]).center();
    QTest::mouseClick(bar, Qt::LeftButton, {}, place);
    QVERIFY(QApplication::activePopupWidget());
}
void PressStart() { Key(Qt::Key_Return, Qt::ControlModifier); }

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
        job.TabTo("StartPB");
        for (const auto key : {Qt::Key_Space, Qt::Key_Return}) {
            Key(key);
            QCOMPARE(job.Arguments(),
                     "<-cd><xy><-cb><76800><-cp></dev/q><-ca><90><-cf><@/a.bin><e>");
        }
        QCOMPARE(job.Runs(), 2);
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

    void CtrlReturnPressesStart_data() {
        const auto row = Columns<QString, Keys, QString>("in", "before", "arguments");
        const QString images = "<-ca><1><-cf><@/a.bin><-ca><x><-cf><@/b b.bin>";
        const QString ports = "<-cd><ck><-cb><115200><-cp></dev/", all = ports + "p>" + images;
        row("in the command", "InstallEF", {Qt::CTRL | Qt::Key_End, Qt::Key_Space, Qt::Key_7},
            all + "<7>");
        row("in an address", "ulb", {Qt::Key_Down, Qt::Key_F2, Qt::Key_7},
            QString(all).replace("<1>", "<7>"));
        row("in an open list", "PortPM", {Qt::Key_Space, Qt::Key_Down}, ports + "q>" + images);
    }
    void CtrlReturnPressesStart() {
        const auto [in, before, arguments] =
            Row<QString, Keys, QString>("in", "before", "arguments");
        const WholeJob job;
        job.TabTo(in);
        Press(before);
        for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
            Key(key, Qt::ControlModifier);
            QVERIFY(!job.window.StartPB().Enabled());
            Key(key, Qt::ControlModifier);  // does nothing by now
            QCOMPARE(job.Arguments(), arguments);
            job.frame->activateWindow();  // no window manager does so after a popup
            QTRY_COMPARE(job.Focus(), in);
        }
        QCOMPARE(job.Runs(), 2);
    }

    // Start runs the text that the cell shows, whatever the user did in between.
    void AnEditIsTakenOver_data() {
        QTest::addColumn<Way>("way");
        const auto row = [](const char* what, const Way& way) { QTest::newRow(what) << way; };
        row("the menu by mouse, Escape, a click on Start", [](const WholeJob& job) {
            OpenMenu(job);
            Key(Qt::Key_Escape);
            job.Click("StartPB");
        });
        row("Alt, a click on Start", [](const WholeJob& job) {
            TapAlt();
            job.Click("StartPB");
        });
        row("Alt, Ctrl+Return", [](const WholeJob&) {
            TapAlt();
            PressStart();
        });
        row("the menu, Escape, a click into Reset, Ctrl+Return", [](const WholeJob& job) {
            OpenMenu(job);
            Key(Qt::Key_Escape);
            job.Click("ResetEF");
            QCOMPARE(job.window.ulb().Cell(0, 1), "0xA2");  // no editor stays open behind it
            Key(Qt::Key_End);
            PressStart();
        });
        row("the menu, Start by a screen reader", [](const WholeJob& job) {
            OpenMenu(job);
            auto* start = QAccessible::queryAccessibleInterface(job.Widget<QWidget>("StartPB"));
            start->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        });
        row("Alt, a choice of the speed by a screen reader, Ctrl+Return", [](const WholeJob& job) {
            TapAlt();
            job.Widget<QComboBox>("BaudPM")->setCurrentIndex(11);
            QCOMPARE(job.window.ulb().Cell(0, 1), "0xA2");
            PressStart();
        });
        row("Alt, Escape, Return, a click on Start", [](const WholeJob& job) {
            TapAlt();
            Press({Qt::Key_Escape, Qt::Key_Return});
            job.Click("StartPB");
        });
    }
    void AnEditIsTakenOver() {
        QFETCH(const Way, way);
        const WholeJob job;
        job.TabTo("ulb");
        Press({Qt::Key_Down, Qt::Key_F2});
        Type("0xA2");
        way(job);
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
        PressStart();
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
