// The window: its controls and their places, the menus, the start and the end.
#include <unistd.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QComboBox>
#include <QMenuBar>
#include <QProcess>
#include <QTableView>
#include <filesystem>

#include "Testing.h"

namespace {

// What a control adds to its left edge, its width and its height of what the window grows.
constexpr QMargins kNothing(0, 0, 0, 0), kMoves(1, 0, 0, 0), kWidens(0, 0, 1, 0),
    kGrows(0, 0, 1, 1);

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

QStringList Enabled(const QMenu* menu) {
    QStringList names;
    for (const QAction* item : menu->actions())
        if (!item->isSeparator() && item->isEnabled()) names += item->objectName();
    return names;
}

}  // namespace

class WindowTest : public QObject {
    Q_OBJECT
  private slots:
    void Control_data() {
        // The label is the one that a screen reader connects with it.
        const auto full = Columns<QRect, QMargins, int, QStringList, QString>(
            "place", "growth", "textSize", "shown", "label");
        const auto row = [full](const char* name, QRect place, QStringList shown,
                                QMargins growth = kNothing, QString label = {},
                                int size = 11) { full(name, place, growth, size, shown, label); };
        row("tooltypePM", {30, -143, 107, 20}, {"esptool.py", "*esptool-ck"});
        row("Label1", {0, 7, 75, 20}, {"ESP Tool: "});
        row("StartPB", {422, 290, 80, 20}, {"Start"});
        row("rEF", {0, 322, 512, 198}, {"Install ...."}, kGrows);
        row("UploadEF", {20, -77, 334, 45}, {""}, kWidens);
        row("Label2", {0, 56, 75, 20}, {"Port (-cp): "});
        row("Label3", {0, 134, 75, 20}, {"Upload: "});
        row("SelectPB", {422, 179, 80, 20}, {"Select"}, kMoves);
        row("EspToolEF", {80, 7, 334, 45}, {""}, kWidens, "Label1");
        row("Label5", {0, 208, 75, 20}, {"Install: "});
        row("BaudPM", {80, 82, 80, 20},
            {"2400", "4800", "7200", "9600", "14400", "19200", "28800", "38400", "57600", "76800",
             "*115200", "230400", "460800", "921600"},
            kMoves, "Label9", 10);
        row("BitsPM", {262, -109, 50, 20}, {"5", "6", "7", "*8"}, kNothing, {}, 10);
        row("ConnectPB", {350, -143, 80, 20}, {"Connect"}, kMoves);
        row("CtsCB", {443, -123, 50, 20}, {"CTS"}, kMoves, {}, 10);
        row("DtrCB", {443, -103, 50, 20}, {"DTR"}, kMoves, {}, 10);
        row("ParityPM", {317, -109, 50, 20}, {"*No", "Odd", "Even"}, kNothing, {}, 10);
        row("PortPM", {80, 56, 331, 20}, {}, kWidens, "Label2");
        row("ScanBtn", {422, 57, 80, 20}, {"Sccan"});
        row("StopPM", {372, -109, 50, 20}, {"*1", "1.5", "2"}, kNothing, {}, 10);
        row("XonCB", {443, -143, 50, 20}, {"XON"}, kMoves, {}, 10);
        row("Label7", {0, 109, 75, 20}, {"Reset (-cd): "});
        row("ResetEF", {80, 108, 80, 22}, {"ck"}, kNothing, "Label7");
        row("Label9", {0, 81, 75, 20}, {"Speed (-cb): "});
        row("InstallEF", {80, 208, 334, 108}, {" -vv -cd ck -cb 115200 "}, kWidens, "Label5");
        row("SelectESPPB", {422, 7, 80, 20}, {"Select"}, kMoves);
        row("Label8", {-87, -56, 75, 20}, {"Address (-ca): "});
        row("ulb", {80, 134, 334, 70}, {""}, kNothing, "Label3");
        row("DeletePB", {422, 134, 80, 20}, {"Delete"}, kMoves);
        row("AddressEF", {379, -54, 88, 22}, {"0x00000000"}, kNothing, "Label8");
    }
    void Control() {
        const auto [place, growth, textSize, shown, label] =
            Row<QRect, QMargins, int, QStringList, QString>("place", "growth", "textSize", "shown",
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
        for (const QSize& size : {QSize(512, 540), {900, 800}, {1, 1}, {64, 2000}}) {
            opened.frame->resize(size + opened.frame->size() - content->size());
            QCOMPARE(content->size(), size.expandedTo({64, 64}));
            const int wider = content->width() - 512, higher = content->height() - 540;
            const QSize grown(growth.right() * wider, growth.bottom() * higher);
            QCOMPARE(widget->pos(), place.topLeft() + QPoint(growth.left() * wider, 0));
            QCOMPARE(widget->size(), (place.size() + grown).expandedTo({0, 0}));
        }

        const auto* spoken = QAccessible::queryAccessibleInterface(widget);
        const QString name = spoken->text(QAccessible::Name);
        const bool isPopup = qobject_cast<QComboBox*>(widget);  // whose name is its choice
        QVERIFY(!(isPopup ? label + spoken->text(QAccessible::Description) : name).isEmpty());
        QVERIFY(name != "Select");  // which of the two?
        if (qobject_cast<QAbstractButton*>(widget)) QVERIFY(name.contains(shown[0]));
        const auto relations = spoken->relations(QAccessible::Label);
        QCOMPARE(relations.size(), label.isEmpty() ? 0 : 1);
        for (const auto& [other, relation] : relations)
            QCOMPARE(other->object(), opened.Widget<QObject>(qPrintable(label)));
    }

    void EditMenu_data() {
        const auto row = Columns<QString>("control");
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
        choose("EditSelectAll");
        QCOMPARE(Enabled(menu),
                 QStringList({"EditCut", "EditCopy", "EditPaste", "EditClear", "EditSelectAll"}));
        choose("EditCopy");
        choose("EditClear");
        QCOMPARE(shown(), "");
        QCOMPARE(Enabled(menu), QStringList({"EditUndo", "EditPaste"}));
        choose("EditPaste");
        QCOMPARE(shown(), before);
        QCOMPARE(Enabled(menu), QStringList({"EditUndo", "EditPaste", "EditSelectAll"}));
        opened.Widget<QWidget>("rEF")->setFocus();  // can be copied alone, and knows no undo
        opened.window.rEF().AppendText("x");
        choose("EditSelectAll");
        QCOMPARE(Enabled(menu), QStringList({"EditCopy", "EditSelectAll"}));
        opened.Widget<QWidget>("StartPB")->setFocus();
        QCOMPARE(Enabled(menu), QStringList());
    }

    void StartUpSearch_data() {
        const auto row = Columns<QStringList, bool, QString>("files", "findsTool", "loads");
        const QString here = "bin/installsetting.csv", above = "../" + here, top = "../../" + here;
        row("a tool", {"esptool/esptool"}, true, "");
        row("three settings", {here, above, top}, false, here);
        row("two settings and a tool above", {above, top, "../esptool/esptool"}, false, above);
        row("a setting two levels above", {top}, false, top);
        row("a setting three levels above", {"../../../" + here}, false, "");
        row("a bin without a setting", {"bin/x", above}, false, "");
        row("a folder in the tool's place", {"esptool/esptool/x", top}, false, top);
        // Folders that everybody can write to: "!" with a stranger's entries, "=" with the user's.
        row("planted here", {"esptool/esptool", here, above, "!."}, false, above);
        row("planted above", {above, top, "!.."}, false, top);
        row("planted in bin and esptool", {"esptool/esptool", here, "!bin", "!esptool"}, false, "");
        row("one's own in such a folder", {"esptool/esptool", here, "=."}, true, here);
        row("a stranger's release", {"esptool/esptool", here, "!../.."}, true, here);
    }
    void StartUpSearch() {
        const auto [files, findsTool, loads] =
            Row<QStringList, bool, QString>("files", "findsTool", "loads");
        const PreparedFolder folder("l3/l2/l1/base");
        uid_t owner = geteuid();
        std::optional<uid_t> user;
        for (const QString& file : files) {
            const bool planted = file.startsWith('!');
            if (!planted && !file.startsWith('=')) {
                folder.Write(file, "cd," + file.toUtf8());
                continue;
            }
            // What root owns is nobody's plant.
            if (owner == 0)
                for (owner = 1; const auto& entry : std::filesystem::recursive_directory_iterator(
                                    folder.Path("../../..").toStdString()))
                    QCOMPARE(lchown(entry.path().c_str(), owner, 0), 0);
            user = planted ? owner + 1 : owner;
            chmod(folder.Path(file.mid(1)).toUtf8().constData(), 0777);
        }
        SetUser(user);
        const OpenedWindow opened;
        SetUser({});
        QCOMPARE(QString::fromStdString(opened.window.InstallEF().Text()),
                 (findsTool ? folder.Path("esptool/esptool") : "") + " -vv -cd " +
                     (loads.isEmpty() ? "ck" : loads) + " -cb 115200 ");
    }

    // The program itself, started by a link and with arguments that mean nothing to it, on a
    // screen. The steps are Driver's.
    void Program_data() {
        const auto row =
            Columns<QStringList, int, int, QByteArray>("steps", "height", "status", "output");
        row("quit while an address is edited",
            {"Shift+Tab", "Shift+Tab", "Shift+Tab", "Down", "9", "Ctrl+Q"}, 768, 0, "");
        row("closed during a run", {"Ctrl+Return", "wait running", "close"}, 768, 0, "");
        row("on a large screen", {"print content", "close"}, 768, 0, "540\n");
        row("on a small screen", {"print frame", "close"}, 480, 0, "480\n");
        row("an exception", {"throw"}, 768, 1, "quillstone: unhandled exception: planted\n");
    }
    void Program() {
        const auto [steps, height, status, output] =
            Row<QStringList, int, int, QByteArray>("steps", "height", "status", "output");
        const PreparedFolder folder("a/b/base");
        folder.WriteTool("touch ~/running; exec sleep 60");
        const QString link = folder.Path("../link");
        QVERIFY(QFile::copy(QUILLSTONE_PROGRAM, folder.Path("program")));
        QVERIFY(QFile::link(folder.Path("program"), link));
        const QByteArray screen = R"({"screens": [{"name": "s", "x": 0, "y": 0, "width": 800,
            "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1, "height": )";
        const QString screens = folder.Write("s", screen + QByteArray::number(height) + "}]}");
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
