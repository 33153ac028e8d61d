// The window in the user's hands: keyboard, mouse, wheel, drops, keys that are held down.
#include <QComboBox>
#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QTableView>
#include <QWheelEvent>

#include "Testing.h"

namespace {

using Keys = QList<QKeyCombination>;

// A window over a tool that shows its arguments and counts its runs, two images and two ports.
struct WholeJob : PreparedFolder {
    WholeJob() : PreparedFolder("a/b/o'neil $HOME \"q\" ファーム;&") {
        WriteTool(QByteArray("echo >>\"$0.runs\";") + kShowArguments);
        for (const char* name : {"bin/a.bin", "bin/b b.bin"}) Write(name, "1");
        Write("bin/installsetting.csv", "up,a.bin,1\nup,b b.bin,x\n");
        Ports({"p", "q"});
        opened = std::make_unique<OpenedWindow>();
    }
    bool Ended() const {
        return QTest::qWaitFor([&] { return opened->window.StartPB().Enabled(); });
    }
    // What the tool got, @ for the images' folder.
    QString Arguments() const {
        const QString shown = QString::fromStdString(opened->window.rEF().Text());
        return QString(shown).replace(Path("bin"), "@").remove(0, QString("Wait....<-vv>").size());
    }
    qint64 Runs() const { return QFileInfo(Path("esptool/esptool.runs")).size(); }

    std::unique_ptr<OpenedWindow> opened;
};

void Press(const Keys& keys) {
    for (const auto& key : keys) Key(key.key(), key.keyboardModifiers());
}

// Whether the widget would take what is dragged over it.
bool Takes(QWidget* widget, const QList<QUrl>& files) {
    QMimeData dragged;
    dragged.setText("file:///tmp/a.bin");
    if (!files.isEmpty()) dragged.setUrls(files);
    QDragEnterEvent event({2, 2}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
    event.ignore();
    QCoreApplication::sendEvent(widget, &event);
    return event.isAccepted();
}

}  // namespace

class HandsTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { QApplication::setDoubleClickInterval(40); }

    void WholeJobByKeyboard() {
        const WholeJob job;
        job.opened->TabTo("PortPM");
        Key(Qt::Key_Down);
        job.opened->TabTo("BaudPM");
        Key(Qt::Key_Up);
        job.opened->TabTo("ResetEF");
        Type("xy");
        job.opened->TabTo("ulb");
        Key(Qt::Key_Down);
        Key(Qt::Key_Return);
        Type("90");
        Key(Qt::Key_Return);
        QCoreApplication::processEvents();  // an edit ends after its key
        Key(Qt::Key_Down);
        job.opened->TabTo("DeletePB");
        Key(Qt::Key_Space);
        job.opened->TabTo("InstallEF");
        Key(Qt::Key_End, Qt::ControlModifier);
        Type(" e");
        job.opened->TabTo("StartPB");
        for (const auto key : {Qt::Key_Space, Qt::Key_Return}) {
            Key(key);
            QVERIFY(job.Ended());
            QCOMPARE(job.Arguments(),
                     "<-cd><xy><-cb><76800><-cp></dev/q><-ca><90><-cf><@/a.bin><e>");
        }
        QCOMPARE(job.Runs(), 2);
    }

    void WholeJobByMouse() {
        const WholeJob job;
        job.opened->Click("StartPB");  // all is prepared
        QVERIFY(job.Ended());
        QCOMPARE(job.Arguments(),
                 "<-cd><ck><-cb><115200><-cp></dev/p><-ca><1><-cf><@/a.bin><-ca><x><-cf><@/b "
                 "b.bin>");
        for (const auto& [name, row] : {std::pair("PortPM", 1), {"BaudPM", 11}}) {
            QAbstractItemView* rows = job.opened->Widget<QComboBox>(name)->view();
            job.opened->Click(name);
            QTRY_VERIFY(rows->isVisible());
            QTest::qWait(2 * QApplication::doubleClickInterval());  // no click is taken before
            const QRect place = rows->visualRect(rows->model()->index(row, 0));
            QTest::mouseClick(rows->viewport(), Qt::LeftButton, {}, place.center());
            QTRY_VERIFY(!rows->isVisible());
        }
        QWidget* list = job.opened->Widget<QTableView>("ulb")->viewport();
        QTest::mouseClick(list, Qt::LeftButton, {}, {9, 9});
        job.opened->Click("DeletePB");
        job.opened->Click("StartPB");
        QVERIFY(job.Ended());
        QCOMPARE(job.Arguments(), "<-cd><ck><-cb><230400><-cp></dev/q><-ca><x><-cf><@/b b.bin>");
    }

    void TabGoesRound() {
        const WholeJob job;
        QCOMPARE(job.opened->Focus(), "rEF");  // where no key changes anything
        const std::string command = job.opened->window.InstallEF().Text();
        for (const auto key : {Qt::Key_Up, Qt::Key_E, Qt::Key_Space, Qt::Key_Delete}) Key(key);
        QCOMPARE(job.opened->window.rEF().Text(), "Install ....");
        QCOMPARE(job.opened->window.InstallEF().Text(), command);
        QCOMPARE(job.Runs(), 0);
        Key(Qt::Key_Backtab);
        QCOMPARE(job.opened->Focus(), "StartPB");
        job.opened->Widget<QTableView>("ulb")->selectRow(0);  // enables DeletePB
        for (const char* next :
             {"rEF",       "UploadEF", "SelectPB",   "EspToolEF", "BaudPM",    "BitsPM",
              "ConnectPB", "CtsCB",    "DtrCB",      "ParityPM",  "PortPM",    "ScanBtn",
              "StopPM",    "XonCB",    "ResetEF",    "AddressEF", "InstallEF", "SelectESPPB",
              "ulb",       "DeletePB", "tooltypePM", "StartPB"}) {
            Key(Qt::Key_Tab);
            QCOMPARE(job.opened->Focus(), QString(next));
        }
    }

    void WheelOverAClosedPopup_data() {
        QTest::addColumn<QString>("popup");
        QTest::addColumn<bool>("focused");
        for (const char* popup : {"PortPM", "BaudPM"})
            for (const bool focused : {false, true})
                QTest::addRow("%s, %s", popup, focused ? "focused" : "not focused")
                    << popup << focused;
    }
    void WheelOverAClosedPopup() {
        QFETCH(const QString, popup);
        QFETCH(const bool, focused);
        const WholeJob job;
        auto* combo = job.opened->Widget<QComboBox>(qPrintable(popup));
        if (focused) combo->setFocus();
        const int before = combo->currentIndex();
        job.opened->window.InstallEF().Text("by hand");
        for (const int notch : {-120, 120, 120}) {
            QWheelEvent turn({5, 5}, combo->mapToGlobal(QPointF(5, 5)), {}, {0, notch}, {}, {},
                             Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(combo, &turn);
        }
        QCOMPARE(combo->currentIndex(), before);
        QCOMPARE(job.opened->window.InstallEF().Text(), "by hand");
    }

    void HeldKeyStartsOneRun_data() {
        QTest::addColumn<QKeyCombination>("keys");
        QTest::addColumn<bool>("marked");  // or told by the time alone
        for (const bool marked : {true, false}) {
            const char* how = marked ? ", marked as repeated" : "";
            QTest::addRow("Return%s", how) << QKeyCombination(Qt::Key_Return) << marked;
            QTest::addRow("Enter%s", how) << (Qt::KeypadModifier | Qt::Key_Enter) << marked;
            QTest::addRow("Space%s", how) << QKeyCombination(Qt::Key_Space) << marked;
            QTest::addRow("Ctrl+Return%s", how) << (Qt::CTRL | Qt::Key_Return) << marked;
        }
    }
    void HeldKeyStartsOneRun() {
        QFETCH(const QKeyCombination, keys);
        QFETCH(const bool, marked);
        const WholeJob job;
        job.opened->TabTo("StartPB");
        const auto send = [&](QEvent::Type type, ulong time, bool repeated) {
            QWidget* focus = QApplication::focusWidget();
            const auto modifiers = keys.keyboardModifiers();
            QKeyEvent event(type, keys.key(), modifiers, {}, repeated && marked);
            event.setTimestamp(time);
            if (type == QEvent::KeyRelease ||
                !qt_sendShortcutOverrideEvent(focus, time, keys.key(), modifiers, {},
                                              repeated && marked))
                QCoreApplication::sendEvent(focus, &event);
        };
        send(QEvent::KeyPress, 1, false);
        for (ulong time = 700; time < 1500; time += 40) {
            send(QEvent::KeyRelease, time, true);
            send(QEvent::KeyPress, time, true);
            QVERIFY(job.Ended());
        }
        send(QEvent::KeyRelease, 1600, false);
        QVERIFY(job.Ended());
        QCOMPARE(job.Runs(), 1);
        QCOMPARE(job.opened->Focus(), "StartPB");  // it came back at the end
    }

    void CtrlReturnPressesStart_data() {
        QTest::addColumn<QString>("in");
        QTest::addColumn<Keys>("before");
        QTest::addColumn<QString>("arguments");
        const QString rest =
            "<-cb><115200><-cp></dev/p><-ca><1><-cf><@/a.bin><-ca><x><-cf><@/b "
            "b.bin>";
        QTest::newRow("in the output") << "rEF" << Keys() << "<-cd><ck>" + rest;
        QTest::newRow("in a field") << "ResetEF" << Keys{Qt::Key_7} << "<-cd><7>" + rest;
        QTest::newRow("in the command")
            << "InstallEF" << Keys{Qt::CTRL | Qt::Key_End, Qt::Key_Space, Qt::Key_7}
            << "<-cd><ck>" + rest + "<7>";
        QTest::newRow("in an address") << "ulb" << Keys{Qt::Key_Down, Qt::Key_F2, Qt::Key_7}
                                       << "<-cd><ck>" + QString(rest).replace("<1>", "<7>");
        QTest::newRow("in an open list of ports")
            << "PortPM" << Keys{Qt::Key_Space, Qt::Key_Down}
            << "<-cd><ck>" + QString(rest).replace("/p", "/q");
    }
    void CtrlReturnPressesStart() {
        QFETCH(const QString, in);
        QFETCH(const Keys, before);
        QFETCH(const QString, arguments);
        const WholeJob job;
        job.opened->TabTo(in);
        Press(before);
        for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
            Key(key, Qt::ControlModifier);
            QVERIFY(!job.opened->window.StartPB().Enabled());
            Key(key, Qt::ControlModifier);  // does nothing by now
            QVERIFY(job.Ended());
            QCOMPARE(job.Arguments(), arguments);
            job.opened->frame->activateWindow();  // no window manager does so after a popup
            QTRY_COMPARE(job.opened->Focus(), in);
        }
        QCOMPARE(job.Runs(), 2);
    }

    void NothingTakesAFile_data() {
        QTest::addColumn<QString>("over");
        QTest::addColumn<bool>("takesText");
        QTest::newRow("the window") << "" << false;
        QTest::newRow("the output") << "rEF" << false;
        QTest::newRow("the command") << "InstallEF" << true;
        QTest::newRow("a field") << "ResetEF" << true;
        QTest::newRow("the list") << "ulb" << false;
        QTest::newRow("an address") << "an editor" << true;
    }
    void NothingTakesAFile() {
        QFETCH(const QString, over);
        QFETCH(const bool, takesText);
        const WholeJob job;
        QWidget* widget = job.opened->Widget<QWidget>(qPrintable(over));
        if (over.isEmpty()) widget = job.opened->frame;
        if (over == "an editor") {
            job.opened->TabTo("ulb");
            Key(Qt::Key_Down);
            Key(Qt::Key_F2);
            widget = QApplication::focusWidget();
        }
        if (auto* area = qobject_cast<QAbstractScrollArea*>(widget)) widget = area->viewport();
        QVERIFY(!Takes(widget, {QUrl("file:///tmp/a.bin")}));
        QCOMPARE(Takes(widget, {}), takesText);
    }

    void DestroyedWindowRaisesNoEvent_data() {
        QTest::addColumn<QString>("control");
        QTest::addColumn<Keys>("keys");
        QTest::newRow("with an open address") << "ulb" << Keys{Qt::Key_Down, Qt::Key_F2, Qt::Key_7};
        QTest::newRow("with an edited field") << "ResetEF" << Keys{Qt::Key_7};
        QTest::newRow("with an edited command") << "InstallEF" << Keys{Qt::Key_7};
        QTest::newRow("with an open list of ports")
            << "PortPM" << Keys{Qt::Key_Space, Qt::Key_Down};
        QTest::newRow("with a button held down") << "ScanBtn" << Keys{};
    }
    void DestroyedWindowRaisesNoEvent() {
        QFETCH(const QString, control);
        QFETCH(const Keys, keys);
        const WholeJob job;
        job.opened->TabTo(control);
        Press(keys);
        if (keys.isEmpty()) QTest::keyPress(QApplication::focusWidget(), Qt::Key_Space);
        int events = 0;
        EspWin& window = job.opened->window;
        const auto counted = [&events](auto&... handlers) {
            ((handlers = [&events](auto&&...) { ++events; }), ...);
        };
        counted(window.tooltypePM().Change, window.BaudPM().Change, window.PortPM().Change,
                window.UploadEF().TextChange, window.EspToolEF().TextChange,
                window.rEF().TextChange, window.InstallEF().TextChange, window.ResetEF().TextChange,
                window.AddressEF().TextChange, window.ulb().Change, window.ulb().DoubleClick,
                window.ulb().CellTextChange, window.StartPB().Action, window.SelectPB().Action,
                window.ConnectPB().Action, window.ScanBtn().Action, window.SelectESPPB().Action,
                window.DeletePB().Action, window.esptool().Completed,
                window.esptool().DataAvailable, window.MySerial().DataAvailable, window.Close);
        const_cast<WholeJob&>(job).opened.reset();
        QCOMPARE(events, 0);
    }
};

QUILLSTONE_TEST(HandsTest)
#include "HandsTest.moc"
