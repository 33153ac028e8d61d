// The window in the user's hands: keyboard, mouse, wheel, drops, keys that are held down.
#include <QComboBox>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QTableView>
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

bool TakesAFile(QWidget* widget) {
    QMimeData dragged;
    dragged.setUrls({QUrl("file:///tmp/a.bin")});
    QDragEnterEvent event({2, 2}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
    event.ignore();
    QCoreApplication::sendEvent(widget, &event);
    return event.isAccepted();
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
        QCoreApplication::processEvents();  // an edit ends after its key
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
