// The window: its controls and their places, the menus, the start and the end.
#include <unistd.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QComboBox>
#include <QMenuBar>
#include <QProcess>
#include <QTableView>

#include "Testing.h"

class WindowTest : public QObject {
    Q_OBJECT
  private slots:
    // A control moves, widens or grows with the window, and a text keeps room for a line. A text
    // that has grown over a button doesn't take the button's clicks.
    void Growth() {
        const OpenedWindow opened;
        const QWidget *start = opened.Widget<QWidget>("StartPB"), *content = start->parentWidget();
        const auto place = [&](const char* name) {
            return opened.Widget<QWidget>(name)->geometry();
        };
        for (const QSize& size : {QSize(512, 540), {900, 800}, {1, 1}, {64, 2000}}) {
            opened.frame->resize(size + opened.frame->size() - content->size());
            QCOMPARE(content->size(), size.expandedTo({64, 64}));
            const int wider = content->width() - 512, higher = content->height() - 540;
            QCOMPARE(place("SelectPB"), QRect(422 + wider, 179, 80, 20));
            QCOMPARE(place("PortPM"), QRect(80, 56, std::max(331 + wider, 0), 20));
            const QSize output(512 + wider, 198 + higher);
            QCOMPARE(place("rEF"), QRect({0, 322}, output.expandedTo({48, 24})));
            QVERIFY(wider < 0 || content->childAt(start->geometry().center()) == start);
        }
    }

    // A screen reader says what each control is.
    void ScreenReader() {
        const OpenedWindow opened;
        for (QObject* control : opened.Widget<QWidget>("StartPB")->parentWidget()->children()) {
            const auto* spoken = QAccessible::queryAccessibleInterface(control);
            QString name = spoken->text(QAccessible::Name);
            if (const auto* button = qobject_cast<QAbstractButton*>(control))
                QVERIFY(name.contains(button->text()));
            if (qobject_cast<QComboBox*>(control)) {  // its name is its choice
                name = spoken->text(QAccessible::Description);
                for (const auto& [label, relation] : spoken->relations(QAccessible::Label))
                    name += label->text(QAccessible::Name);
            }
            QVERIFY2(!name.isEmpty() && name != "Select", qPrintable(control->objectName()));
        }
    }

    void EditMenu() {
        const OpenedWindow opened;
        const auto* menu = opened.frame->findChild<QMenu*>("EditMenu");
        const auto choose = [&](const char* item) { menu->findChild<QAction*>(item)->trigger(); };
        const auto enabled = [&] {
            QString names;
            for (const QAction* item : menu->actions())
                if (item->isEnabled() && !item->isSeparator())
                    names += item->objectName().replace("Edit", " ");
            return names;
        };
        const auto shown = [] {
            return TakesKeys()->property("plainText").toString() +
                   TakesKeys()->property("text").toString();
        };
        for (const char* control : {"InstallEF", "ulb"}) {
            opened.TabTo(control);
            if (opened.Focus() == "ulb") Press({Qt::Key_Down, Qt::Key_F2});
            const QString before = shown();
            choose("EditSelectAll");
            QCOMPARE(enabled(), " Cut Copy Paste Clear SelectAll");
            choose("EditCopy");
            choose("EditClear");
            QCOMPARE(shown() + enabled(), " Undo Paste");
            choose("EditPaste");
            QCOMPARE(shown() + enabled(), before + " Undo Paste SelectAll");
        }
        opened.Widget<QWidget>("rEF")->setFocus();  // can be copied alone, and knows no undo
        opened.window.rEF().AppendText("x");
        choose("EditSelectAll");
        QCOMPARE(enabled(), " Copy SelectAll");
        opened.Widget<QWidget>("StartPB")->setFocus();
        QCOMPARE(enabled(), "");
    }

    void StartUpSearch_data() {
        const auto row = Columns<QStringList, bool, QString>("files", "findsTool", "loads");
        const QString here = "bin/installsetting.csv", above = "../" + here, top = "../../" + here;
        row("a tool", {"esptool/esptool"}, true, "");
        row("three settings", {here, above, top}, false, here);
        row("a setting three levels above", {"../../../" + here}, false, "");
        row("a bin without a setting", {"bin/x", above, "../esptool/esptool"}, false, "");
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
        std::optional<uid_t> user;
        for (const QString& file : files) {
            const bool planted = file.startsWith('!');
            if (!planted && !file.startsWith('=')) {
                folder.Write(file, "cd," + file.toUtf8());
                continue;
            }
            user = folder.Owner() + (planted ? 1 : 0);
            chmod(folder.Path(file.mid(1)).toUtf8().constData(), 0777);
        }
        SetUser(user);
        const OpenedWindow opened;
        SetUser({});
        QCOMPARE(QString::fromStdString(opened.window.InstallEF().Text()),
                 (findsTool ? folder.Path("esptool/esptool") : "") + " -vv -cd " +
                     (loads.isEmpty() ? "ck" : loads) + " -cb 115200 ");
    }

    // The program itself, started through a link and with meaningless arguments, on a screen.
    // Driver does the steps.
    void Program_data() {
        const auto row =
            Columns<QStringList, int, int, QByteArray>("steps", "height", "status", "output");
        row("quit while an address is edited",
            {"Shift+Tab", "Shift+Tab", "Shift+Tab", "Down", "9", "Ctrl+Q"}, 768, 0, "");
        row("closed during a run", {"Ctrl+Return", "wait running", "close"}, 768, 0, "");
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
