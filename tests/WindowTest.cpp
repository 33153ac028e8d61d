// The window: its controls and their places, the menus, the start and the end.
#include <QAbstractButton>
#include <QAccessible>
#include <QClipboard>
#include <QComboBox>
#include <QMenuBar>
#include <QProcess>
#include <QTableView>

#include "Testing.h"

namespace {

// What a control does when the window grows.
enum class Follows { Nothing, RightEdge, Width, Both };

// Of a popup its rows, the selected one with a star.
QStringList Shown(QWidget* widget) {
    const auto* combo = qobject_cast<QComboBox*>(widget);
    if (!combo)
        return {widget->property("plainText").toString() + widget->property("text").toString()};
    QStringList rows;
    for (int i = 0; i < combo->count(); ++i)
        rows += (i == combo->currentIndex() ? "*" : "") + combo->itemText(i);
    return rows;
}

auto* Spoken(QObject* object) { return QAccessible::queryAccessibleInterface(object); }

QStringList Enabled(const QMenu* menu) {
    QStringList names;
    for (const QAction* item : menu->actions())
        if (!item->isSeparator() && item->isEnabled()) names += item->objectName();
    return names;
}

}  // namespace
Q_DECLARE_METATYPE(Follows)

class WindowTest : public QObject {
    Q_OBJECT
  private slots:
    void Control_data() {
        QTest::addColumn<QRect>("place");
        QTest::addColumn<Follows>("follows");
        QTest::addColumn<int>("textSize");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QString>("label");  // that a screen reader connects with it
        const auto row = [](const char* name, const QRect& place, const QStringList& shown,
                            Follows follows = Follows::Nothing, const QString& label = {},
                            int textSize = 11) {
            QTest::newRow(name) << place << follows << textSize << shown << label;
        };
        using enum Follows;
        row("tooltypePM", {30, -143, 107, 20}, {"esptool.py", "*esptool-ck"});
        row("Label1", {0, 7, 75, 20}, {"ESP Tool: "});
        row("StartPB", {422, 290, 80, 20}, {"Start"});
        row("rEF", {0, 322, 512, 198}, {"Install ...."}, Both);
        row("UploadEF", {20, -77, 334, 45}, {""}, Width);
        row("Label2", {0, 56, 75, 20}, {"Port (-cp): "});
        row("Label3", {0, 134, 75, 20}, {"Upload: "});
        row("SelectPB", {422, 179, 80, 20}, {"Select"}, RightEdge);
        row("EspToolEF", {80, 7, 334, 45}, {""}, Width, "Label1");
        row("Label5", {0, 208, 75, 20}, {"Install: "});
        row("BaudPM", {80, 82, 80, 20},
            {"2400", "4800", "7200", "9600", "14400", "19200", "28800", "38400", "57600", "76800",
             "*115200", "230400", "460800", "921600"},
            RightEdge, "Label9", 10);
        row("BitsPM", {262, -109, 50, 20}, {"5", "6", "7", "*8"}, Nothing, {}, 10);
        row("ConnectPB", {350, -143, 80, 20}, {"Connect"}, RightEdge);
        row("CtsCB", {443, -123, 50, 20}, {"CTS"}, RightEdge, {}, 10);
        row("DtrCB", {443, -103, 50, 20}, {"DTR"}, RightEdge, {}, 10);
        row("ParityPM", {317, -109, 50, 20}, {"*No", "Odd", "Even"}, Nothing, {}, 10);
        row("PortPM", {80, 56, 331, 20}, {}, Width, "Label2");
        row("ScanBtn", {422, 57, 80, 20}, {"Sccan"});
        row("StopPM", {372, -109, 50, 20}, {"*1", "1.5", "2"}, Nothing, {}, 10);
        row("XonCB", {443, -143, 50, 20}, {"XON"}, RightEdge, {}, 10);
        row("Label7", {0, 109, 75, 20}, {"Reset (-cd): "});
        row("ResetEF", {80, 108, 80, 22}, {"ck"}, Nothing, "Label7");
        row("Label9", {0, 81, 75, 20}, {"Speed (-cb): "});
        row("InstallEF", {80, 208, 334, 108}, {" -vv -cd ck -cb 115200 "}, Width, "Label5");
        row("SelectESPPB", {422, 7, 80, 20}, {"Select"}, RightEdge);
        row("Label8", {-87, -56, 75, 20}, {"Address (-ca): "});
        row("ulb", {80, 134, 334, 70}, {""}, Nothing, "Label3");
        row("DeletePB", {422, 134, 80, 20}, {"Delete"}, RightEdge);
        row("AddressEF", {379, -54, 88, 22}, {"0x00000000"}, Nothing, "Label8");
    }
    void Control() {
        const auto [place, follows, textSize, shown, label] =
            Row<QRect, Follows, int, QStringList, QString>("place", "follows", "textSize", "shown",
                                                           "label");
        const PreparedFolder folder("a/b/base");
        const OpenedWindow opened;
        QWidget* widget = opened.Widget<QWidget>(QTest::currentDataTag());
        QTRY_COMPARE(Shown(widget), shown);
        QCOMPARE(widget->font().pixelSize(), textSize);
        for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
            QCOMPARE(widget->palette().color(QPalette::Active, role), QColor(Qt::black));
        QCOMPARE(widget->isEnabled(), widget->objectName() != "DeletePB");

        const QWidget* content = widget->parentWidget();
        using enum Follows;
        for (const QSize& size : {QSize(512, 540), {900, 800}, {1, 1}, {64, 2000}}) {
            opened.frame->resize(size + opened.frame->size() - content->size());
            QCOMPARE(content->size(), size.expandedTo({64, 64}));
            const QSize grown = content->size() - QSize(512, 540);
            const QSize wider(grown.width(), 0), none(0, 0);
            const QSize growth = follows == Both ? grown : follows == Width ? wider : none;
            QCOMPARE(widget->size(), (place.size() + growth).expandedTo(none));
            QCOMPARE(widget->pos(),
                     place.topLeft() + QPoint(follows == RightEdge ? grown.width() : 0, 0));
        }

        const QString name = Spoken(widget)->text(QAccessible::Name);
        QVERIFY(name != "Select");  // which of the two?
        if (qobject_cast<QComboBox*>(widget))
            QVERIFY(label + Spoken(widget)->text(QAccessible::Description) != "");
        else
            QVERIFY(!name.isEmpty());
        if (qobject_cast<QAbstractButton*>(widget))
            QVERIFY2(name.contains(shown[0]), qPrintable(name));
        if (label.isEmpty()) return;
        const auto relations = Spoken(widget)->relations(QAccessible::Label);
        QCOMPARE(relations.size(), 1);
        QCOMPARE(relations[0].first->object(), opened.Widget<QObject>(qPrintable(label)));
    }

    void Menus() {
        const OpenedWindow opened;
        QCOMPARE(opened.frame->windowTitle(), "Quillstone");
        QString items;
        for (const QAction* menu : opened.frame->findChild<QMenuBar*>()->actions()) {
            items += menu->text() + ": ";
            for (const QAction* item : menu->menu()->actions())
                items += item->text() + ' ' + item->shortcut().toString() + ", ";
        }
        QCOMPARE(items,
                 "ファイル: 終了 Ctrl+Q, 編集: 取り消す Ctrl+Z,  , カット Ctrl+X, コピー Ctrl+C, "
                 "貼り付け Ctrl+V, 削除 ,  , すべてを選択 Ctrl+A, ");
    }

    void EditMenu_data() {
        const auto row = Columns<QString>("control");
        row("the reset text", "ResetEF");
        row("the command", "InstallEF");
        row("an address", "ulb");
    }
    void EditMenu() {
        QFETCH(const QString, control);
        const OpenedWindow opened;
        opened.TabTo(control);
        if (control == "ulb") Press({Qt::Key_Down, Qt::Key_F2});
        const auto* menu = opened.frame->findChild<QMenu*>("EditMenu");
        const auto choose = [&](const char* item) { menu->findChild<QAction*>(item)->trigger(); };
        const auto shown = [] { return Shown(QApplication::focusWidget())[0]; };
        const QString before = shown();
        QApplication::clipboard()->clear();
        choose("EditSelectAll");
        QCOMPARE(Enabled(menu), QStringList({"EditCut", "EditCopy", "EditClear", "EditSelectAll"}));
        choose("EditCopy");
        choose("EditClear");
        QCOMPARE(shown(), "");
        QCOMPARE(Enabled(menu), QStringList({"EditUndo", "EditPaste"}));
        choose("EditPaste");
        QCOMPARE(shown(), before);
        QCOMPARE(Enabled(menu), QStringList({"EditUndo", "EditPaste", "EditSelectAll"}));
    }

    void EditMenuWhereNothingCanBeEdited() {
        const OpenedWindow opened;
        const auto* menu = opened.frame->findChild<QMenu*>("EditMenu");
        opened.window.rEF().AppendText("x");
        menu->findChild<QAction*>("EditSelectAll")->trigger();
        QCOMPARE(Enabled(menu), QStringList({"EditCopy", "EditSelectAll"}));  // and no undo
        opened.Widget<QWidget>("StartPB")->setFocus();
        QCOMPARE(Enabled(menu), QStringList());
    }

    void StartUpSearch_data() {
        const auto row = Columns<QStringList, bool, QString>("files", "findsTool", "loads");
        const QString here = "bin/installsetting.csv", above = "../" + here, top = "../../" + here;
        row("a tool", {"esptool/esptool"}, true, "");
        row("three settings", {here, above, top}, false, here);
        row("two settings and a tool above", {above, top, "../esptool/esptool"}, false, above);
        row("a setting three levels above", {"../../../" + here}, false, "");
        row("a folder in the setting's place", {here + "/x"}, false, "");
        row("a bin without a setting", {"bin/x", above}, false, "");
    }
    void StartUpSearch() {
        const auto [files, findsTool, loads] =
            Row<QStringList, bool, QString>("files", "findsTool", "loads");
        const PreparedFolder folder("l3/l2/l1/base");
        for (const QString& file : files) folder.Write(file, "cd," + file.toUtf8());
        const OpenedWindow opened;
        QCOMPARE(QString::fromStdString(opened.window.InstallEF().Text()),
                 (findsTool ? folder.Path("esptool/esptool") : "") + " -vv -cd " +
                     (loads.isEmpty() ? "ck" : loads) + " -cb 115200 ");
    }

    // The program itself, started by a link and with arguments that mean nothing to it, on a
    // screen. The steps are Driver's.
    void Program_data() {
        const auto row =
            Columns<QStringList, QSize, int, QByteArray>("steps", "screen", "status", "output");
        const QSize large(1024, 768), small(800, 480);
        row("quit", {"Ctrl+Q"}, large, 0, "");
        row("quit while an address is edited",
            {"Shift+Tab", "Shift+Tab", "Shift+Tab", "Down", "9", "Ctrl+Q"}, large, 0, "");
        row("closed during a run", {"Ctrl+Return", "wait running", "close"}, large, 0, "");
        row("on a large screen", {"print content", "close"}, large, 0, "540\n");
        row("on a small screen", {"print frame", "close"}, small, 0, "480\n");
        row("an exception", {"throw"}, large, 1, "quillstone: unhandled exception: planted\n");
    }
    void Program() {
        const auto [steps, screen, status, output] =
            Row<QStringList, QSize, int, QByteArray>("steps", "screen", "status", "output");
        const PreparedFolder folder("a/b/base");
        folder.WriteTool("touch ~/running; exec sleep 60");
        const QString link = folder.Path("../link");
        QVERIFY(QFile::copy(QUILLSTONE_PROGRAM, folder.Path("program")));
        QVERIFY(QFile::link(folder.Path("program"), link));
        const QString screens =
            folder.Write("screens", QString(R"({"screens": [{"name": "s", "x": 0, "y": 0,
                "width": %1, "height": %2, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})")
                                        .arg(screen.width())
                                        .arg(screen.height())
                                        .toUtf8());
        QProcess program;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", folder.Path());
        environment.insert("QT_PLUGIN_PATH", QUILLSTONE_PLUGINS);
        environment.insert("QT_QPA_GENERIC_PLUGINS", "driver");
        environment.insert("QT_QPA_PLATFORM", "offscreen:configfile=" + screens);
        environment.insert("QUILLSTONE_DRIVER", steps.join('|'));
        program.setProcessEnvironment(environment);
        program.setWorkingDirectory(folder.Path());
        program.start(link, {"-platform", "none", "-style", "none", "--help"});
        QVERIFY(program.waitForFinished(20'000));
        QCOMPARE(program.exitCode(), status);
        QVERIFY(program.readAllStandardError().contains(output));
    }
};

QUILLSTONE_TEST(WindowTest)
#include "WindowTest.moc"
