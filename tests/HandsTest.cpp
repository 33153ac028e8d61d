// The window in the user's hands: keyboard, mouse, wheel, drops, keys that are held down.
#include <QAccessible>
#include <QClipboard>
#include <QComboBox>
#include <QDragEnterEvent>
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

// Drags something over a widget and drops it there. Returns false if it is refused.
bool Drop(QWidget* widget, const QMimeData& dragged) {
    QDragEnterEvent enter({2, 2}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
    QDropEvent drop({2, 2}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
    enter.ignore();
    QCoreApplication::sendEvent(widget, &enter);
    if (enter.isAccepted()) QCoreApplication::sendEvent(widget, &drop);
    return enter.isAccepted();
}

}  // namespace

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
        for (const QString keys : {"Ctrl+Return", "Ctrl+Enter", "Space", "Return"}) {
            if (keys == "Space") job.TabTo("StartPB");
            Press({QKeySequence(keys)[0]});
            QCOMPARE(job.Arguments(),
                     "<-cd><xy><-cb><76800><-cp></dev/q><-ca><90><-cf><@/a.bin><e>");
        }
        QCOMPARE(job.Runs(), 4);
    }

    void TabGoesRound() {
        const WholeJob job;
        QCOMPARE(job.Focus(), "rEF");  // where no key changes anything
        const std::string command = job.window.InstallEF().Text();
        Commit("x");
        Press({Qt::Key_Up, Qt::Key_E, Qt::Key_Space, Qt::Key_Delete, Qt::Key_Backtab});
        QCOMPARE(job.window.rEF().Text(), "Install ....");
        QCOMPARE(job.window.InstallEF().Text(), command);
        QCOMPARE(job.Focus(), "StartPB");
        job.Widget<QTableView>("ulb")->selectRow(0);  // enables DeletePB
        const QString stops =
            "rEF UploadEF SelectPB EspToolEF BaudPM BitsPM ConnectPB CtsCB DtrCB ParityPM PortPM "
            "ScanBtn StopPM XonCB ResetEF AddressEF InstallEF SelectESPPB ulb DeletePB tooltypePM "
            "StartPB";
        for (const QString& next : stops.split(' ')) {
            Key(Qt::Key_Tab);
            QCOMPARE(job.Focus(), next);
        }
    }

    void WheelOverAClosedPopup() {
        const WholeJob job;
        auto* popup = job.Widget<QComboBox>("PortPM");
        QWheelEvent turn({5, 5}, popup->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {}, {},
                         Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(popup, &turn);
        job.TabTo("PortPM");
        QCoreApplication::sendEvent(popup, &turn);
        QCOMPARE(popup->currentIndex(), 0);
        // Ctrl+Return takes the row of an open list.
        Press({Qt::Key_Space, Qt::Key_Down, Qt::CTRL | Qt::Key_Return});
        QVERIFY(job.Arguments().contains("<-cp></dev/q>"));
        QCOMPARE(job.Runs(), 1);
    }

    void HeldKeyStartsOneRun_data() {
        const auto row = Columns<QKeyCombination, bool>("keys", "marked");  // or by the time alone
        row("Return, marked as repeated", Qt::Key_Return, true);
        row("Space", Qt::Key_Space, false);
        row("Ctrl+Return", Qt::CTRL | Qt::Key_Return, false);
    }
    void HeldKeyStartsOneRun() {
        QFETCH(const QKeyCombination, keys);
        QFETCH(const bool, marked);
        const WholeJob job;
        job.TabTo("StartPB");
        const auto send = [&](QEvent::Type type, ulong time, bool repeated) {
            const auto held = keys.keyboardModifiers();
            const bool told = repeated && marked;
            QKeyEvent event(type, keys.key(), held, {}, told);
            event.setTimestamp(time);
            if (type == QEvent::KeyRelease ||
                !qt_sendShortcutOverrideEvent(TakesKeys(), time, keys.key(), held, {}, told))
                QCoreApplication::sendEvent(TakesKeys(), &event);
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
        QCOMPARE(job.Focus(), "StartPB");  // Start was disabled meanwhile
    }

    // Start runs the text that the cell shows, whatever the user did in between. An input method is
    // still composing the end of it.
    void AnEditIsTakenOver_data() {
        QTest::addColumn<QString>("steps");
        for (const char* steps :
             {"click StartPB", "Ctrl+Return", "Menu, Escape, click StartPB", "Alt, click StartPB",
              "Alt, Ctrl+Return", "Menu, Escape, click ResetEF, End, Ctrl+Return",
              "Menu, press StartPB", "Alt, choose BaudPM, Ctrl+Return"})
            QTest::newRow(steps) << steps;
        QTest::newRow("Tab") << "Tab, Ctrl+Return";
    }
    void AnEditIsTakenOver() {
        const WholeJob job;
        job.TabTo("ulb");
        Press({Qt::Key_Down, Qt::Key_F2});
        Type("0xA");
        QInputMethodEvent composed("2", {});
        QCoreApplication::sendEvent(TakesKeys(), &composed);
        QFETCH(const QString, steps);
        Do(job, steps);
        QTRY_COMPARE(job.Runs(), 1);
        QVERIFY(job.Arguments().contains("<-ca><0xA2>"));
        QCOMPARE(job.window.ulb().Cell(0, 1), "0xA2");
    }

    // A line end that comes in becomes a blank.
    void AFieldStaysOneLine() {
        const WholeJob job;
        const QString lines = "a\r\nb\n";
        QApplication::clipboard()->setText(lines);
        QMimeData dragged;
        dragged.setText(lines);
        auto* paste = job.frame->findChild<QAction*>("EditPaste");
        const auto spoken = [] {
            return QAccessible::queryAccessibleInterface(TakesKeys())->editableTextInterface();
        };
        const std::pair<const char*, std::function<void()>> ways[] = {
            {"by keys", [] { Key(Qt::Key_V, Qt::ControlModifier); }},
            {"by the menu", [&] { paste->trigger(); }},
            {"by a drop", [&] { Drop(TakesKeys(), dragged); }},
            {"by an input method", [&] { Commit(lines); }},
            {"by a screen reader", [&] { spoken()->insertText(0, lines); }}};
        for (const char* place : {"ResetEF", "ulb"}) {
            job.TabTo(place);
            if (job.Focus() == "ulb") Press({Qt::Key_Down, Qt::Key_F2});
            for (const auto& [name, way] : ways) {
                Press({Qt::CTRL | Qt::Key_A, Qt::Key_Delete});
                way();
                QVERIFY2(TakesKeys()->property("text") == "a b ", name);
            }
        }
        Key(Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(job.Arguments().startsWith("<-cd><a><b>"));
        job.TabTo("ResetEF");
        Type("x");
        Press({Qt::CTRL | Qt::Key_V, Qt::CTRL | Qt::Key_Z});
        QCOMPARE(job.window.ResetEF().Text(), "x");  // the paste was one step of undo
    }

    // The user presses a key while an input method is composing.
    void AKeyEndsAComposition_data() {
        const auto row = Columns<QString, QString, QKeyCombination, QString, QString>(
            "in", "committed", "key", "text", "left");
        row("Down in the command", "InstallEF", "", Qt::Key_Down, "bca", "");
        row("Shift alone in the command", "InstallEF", "", Qt::Key_Shift, "a", "bc");
        row("Ctrl+Return in the command", "InstallEF", "", Qt::CTRL | Qt::Key_Return, "bca", "");
        row("Up behind a line end", "InstallEF", "\nz", Qt::Key_Up, "\nzbca", "");
        row("Ctrl+Right in Reset", "ResetEF", "", Qt::CTRL | Qt::Key_Right, "bca", "");
    }
    void AKeyEndsAComposition() {
        const auto [in, committed, key, text, left] =
            Row<QString, QString, QKeyCombination, QString, QString>("in", "committed", "key",
                                                                     "text", "left");
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
        QCOMPARE(field->property(area ? "plainText" : "text").toString(), text);
        if (area) QCOMPARE(area->document()->begin().layout()->preeditAreaText(), left);
    }

    void NothingTakesAFile() {
        const WholeJob job;
        QMimeData file;
        file.setUrls({QUrl("file:///tmp/a.bin")});
        QVERIFY(!Drop(job.frame, file) && !Drop(job.Widget<QWidget>("ResetEF"), file));
        for (const char* name : {"rEF", "InstallEF", "ulb"})
            QVERIFY(!Drop(job.Widget<QAbstractScrollArea>(name)->viewport(), file));
        job.TabTo("ulb");
        Press({Qt::Key_Down, Qt::Key_F2});
        QVERIFY(!Drop(QApplication::focusWidget(), file));
    }
};

QUILLSTONE_TEST(HandsTest)
#include "HandsTest.moc"
