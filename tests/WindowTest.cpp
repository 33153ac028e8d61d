// The window: its controls and their places, the keyboard, the menus, the start and the end.
#include <QAccessible>
#include <QClipboard>
#include <QComboBox>
#include <QMenuBar>
#include <QProcess>
#include <QTableView>

#include "Testing.h"

namespace {

// The labels, then the rest in the order of Tab: place; what a larger window does (move it, widen
// it, let it grow); text size; text, of a popup its rows, the selected one with a star.
// clang-format off
const std::tuple<const char*, QRect, char, int, const char*> kControls[] = {
    {"Label1",{0,7,75,20},'.',11,"ESP Tool: "}, {"Label2",{0,56,75,20},'.',11,"Port (-cp): "},
    {"Label3",{0,134,75,20},'.',11,"Upload: "}, {"Label5",{0,208,75,20},'.',11,"Install: "},
    {"Label7",{0,109,75,20},'.',11,"Reset (-cd): "}, {"Label9",{0,81,75,20},'.',11,"Speed (-cb): "},
    {"Label8",{-87,-56,75,20},'.',11,"Address (-ca): "},
    {"tooltypePM",{30,-143,107,20},'.',11,"esptool.py,*esptool-ck"},
    {"StartPB",{422,290,80,20},'.',11,"Start"}, {"rEF",{0,322,512,198},'g',11,"Install ...."},
    {"UploadEF",{20,-77,334,45},'w',11,""}, {"SelectPB",{422,179,80,20},'m',11,"Select"},
    {"EspToolEF",{80,7,334,45},'w',11,""}, {"BaudPM",{80,82,80,20},'m',10,
     "2400,4800,7200,9600,14400,19200,28800,38400,57600,76800,*115200,230400,460800,921600"},
    {"BitsPM",{262,-109,50,20},'.',10,"5,6,7,*8"}, {"ConnectPB",{350,-143,80,20},'m',11,"Connect"},
    {"CtsCB",{443,-123,50,20},'m',10,"CTS"}, {"DtrCB",{443,-103,50,20},'m',10,"DTR"},
    {"ParityPM",{317,-109,50,20},'.',10,"*No,Odd,Even"}, {"PortPM",{80,56,331,20},'w',11,""},
    {"ScanBtn",{422,57,80,20},'.',11,"Sccan"}, {"StopPM",{372,-109,50,20},'.',10,"*1,1.5,2"},
    {"XonCB",{443,-143,50,20},'m',10,"XON"}, {"ResetEF",{80,108,80,22},'.',11,"ck"},
    {"AddressEF",{379,-54,88,22},'.',11,"0x00000000"},
    {"InstallEF",{80,208,334,108},'w',11," -vv -cd ck -cb 115200 "},
    {"SelectESPPB",{422,7,80,20},'m',11,"Select"}, {"ulb",{80,134,334,70},'.',11,""},
    {"DeletePB",{422,134,80,20},'m',11,"Delete"}};
// clang-format on

QString Shown(QWidget* widget) {
    QStringList cells;
    if (auto* combo = qobject_cast<QComboBox*>(widget))
        for (int i = 0; i < combo->count(); ++i)
            cells += (i == combo->currentIndex() ? "*" : "") + combo->itemText(i);
    return cells.join(',') + widget->property("plainText").toString() +
           widget->property("text").toString();
}

QWidget* Named(const QString& name) {
    return QApplication::activeWindow()->findChild<QWidget*>(name);
}

QString FocusName() { return QApplication::focusWidget()->objectName(); }

// Keys, and the names of controls that Tab leads to.
void Press(const QString& steps) {
    for (const QString& step : steps.split(' ')) {
        QCoreApplication::processEvents();  // an edit ends after its key
        for (int i = 0; i < 22 && Named(step) && FocusName() != step; ++i)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (!Named(step)) QTest::keySequence(QApplication::focusWidget(), QKeySequence(step));
    }
}

// A window over a tool that shows its arguments, two images and two ports.
struct WholeJob : PreparedFolder {
    WholeJob() : PreparedFolder("a/b/o'neil $HOME \"q\" ファーム;&") {
        WriteTool(kShowArguments);
        for (const char* name : {"bin/a.bin", "bin/b b.bin"}) Write(name, "1");
        Write("bin/installsetting.csv", "up,a.bin,1\nup,b b.bin,x\n");
        Ports({"p", "q"});
        opened = std::make_unique<OpenedWindow>();
    }
    void Shows(const QString& arguments) const {
        QTRY_VERIFY(opened->window.StartPB().Enabled());
        const QString shown = QString::fromStdString(opened->window.rEF().Text());
        QCOMPARE(QString(shown).replace(Path("bin"), "@"), "Wait....<-vv>" + arguments);
    }
    std::unique_ptr<OpenedWindow> opened;
};

}  // namespace

class WindowTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { QApplication::setDoubleClickInterval(40); }

    void ControlsStandAsDesigned() {
        const PreparedFolder folder("a/b/base");
        const OpenedWindow opened;
        QWidget* content = Named("StartPB")->parentWidget();
        QCOMPARE(opened.frame->windowTitle(), "Quillstone");
        QCOMPARE(content->size(), QSize(512, 540));
        QVERIFY(!Named("DeletePB")->isEnabled());
        QSet<QString> spoken;
        for (const auto& [name, place, follows, textSize, text] : kControls) {
            QWidget* widget = Named(name);
            QTRY_COMPARE(Shown(widget), QString(text));
            QCOMPARE(widget->font().pixelSize(), textSize);
            for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
                QCOMPARE(widget->palette().color(QPalette::Active, role), QColor(Qt::black));
            spoken += QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
        }
        QVERIFY(spoken.size() == 29 && !spoken.contains("") && !spoken.contains("Select"));
        for (const QSize& size : {QSize(900, 800), {1, 1}, {64, 2000}}) {
            opened.frame->resize(size + opened.frame->size() - content->size());
            QCOMPARE(content->size(), size.expandedTo({64, 64}));
            const int wider = content->width() - 512, higher = content->height() - 540;
            for (const auto& [name, place, follows, textSize, text] : kControls) {
                const QRect expected(
                    place.left() + (follows == 'm' ? wider : 0), place.top(),
                    std::max(0, place.width() + (follows == 'w' || follows == 'g' ? wider : 0)),
                    std::max(0, place.height() + (follows == 'g' ? higher : 0)));
                QVERIFY2(Named(name)->geometry() == expected, name);
            }
            // Neither goes behind the control that has grown over its place.
            for (QWidget* button : {Named("StartPB"), Named("ScanBtn")}) {
                const QPoint centre = button->geometry().center();
                QVERIFY(size.width() < 512 || content->childAt(centre) == button);
            }
        }
        opened.Widget<QTableView>("ulb")->selectRow(0);  // lights DeletePB up
        for (const auto& control : std::span(kControls).subspan(7)) {
            QCOMPARE(FocusName(), QString(std::get<0>(control)));
            Press("Tab");
        }
    }

    void WholeJobByKeyboard() {
        const WholeJob job;
        Press("PortPM Down BaudPM Up ResetEF X Y ulb Down Return 9 0 Return Down DeletePB Space");
        Press("InstallEF Ctrl+End Space E StartPB");
        for (const char* key : {"Space", "Return"}) {
            Press(key);
            job.Shows("<-cd><xy><-cb><76800><-cp></dev/q><-ca><90><-cf><@/a.bin><e>");
        }
    }

    void WholeJobByMouse() {
        const WholeJob job;
        job.opened->Click("StartPB");  // all is prepared
        job.Shows(
            "<-cd><ck><-cb><115200><-cp></dev/p><-ca><1><-cf><@/a.bin><-ca><x><-cf><@/b b.bin>");
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
        job.Shows("<-cd><ck><-cb><230400><-cp></dev/q><-ca><x><-cf><@/b b.bin>");
    }

    void Menus() {
        const OpenedWindow opened;
        auto* bar = opened.frame->findChild<QMenuBar*>();
        QMenu* edit = bar->actions()[1]->menu();
        QString items;
        for (const QAction* menu : bar->actions())
            for (const QAction* item : menu->menu()->actions())
                items += item->text() + ' ' + item->shortcut().toString() + '|';
        QCOMPARE(bar->actions()[0]->text() + edit->title(), "ファイル編集");
        QCOMPARE(items,
                 "終了 Ctrl+Q|取り消す Ctrl+Z| |カット Ctrl+X|コピー Ctrl+C|貼り付け Ctrl+V|"
                 "削除 | |すべてを選択 Ctrl+A|");
        const auto gives = [&](const char* item, const QString& text, const QString& enabled) {
            edit->findChild<QAction*>(item)->trigger();
            QString names;
            for (const QAction* other : edit->actions())
                if (!other->isSeparator() && other->isEnabled()) names += other->objectName();
            QCOMPARE(names.remove("Edit") + ' ' + Shown(QApplication::focusWidget()),
                     enabled + ' ' + text);
        };
        Named("StartPB")->setFocus();
        gives("EditSelectAll", "Start", "");
        Named("rEF")->setFocus();  // can only be read
        gives("EditSelectAll", "Install ....", "CopySelectAll");
        opened.window.rEF().AppendText(std::string(20'000, 'x'));  // split, but for show only
        QCOMPARE(opened.window.rEF().Text(), "Install ...." + std::string(20'000, 'x'));
        for (const QString steps : {"ResetEF", "InstallEF", "ulb Down F2"}) {
            Press(steps);
            const QString before = Shown(QApplication::focusWidget());
            QApplication::clipboard()->clear();
            gives("EditSelectAll", before, "CutCopyClearSelectAll");
            gives("EditCopy", before, "CutCopyPasteClearSelectAll");
            gives("EditClear", "", "UndoPaste");
            gives("EditPaste", before, "UndoPasteSelectAll");
        }
    }

    void StartUpSearch() {
        // Files that are there, '>' for a setting file; the one that is loaded, or the design's.
        // clang-format off
        const std::pair<const char*, const char*> rows[] = {
            {"esptool/esptool", "ck"}, {"esptool", "ck"}, {"> ../> ../../>", ">"}, {">/x", "ck"},
            {"esptool/esptool/x", "ck"}, {"bin/x ../>", "ck"}, {"bin ../>", "ck"}, {"../../../>", "ck"},
            {"../../>", "../../>"}, {"../> ../../> ../esptool/esptool", "../>"}};
        // clang-format on
        for (const auto& [files, setting] : rows) {
            const PreparedFolder folder("l3/l2/l1/base");
            for (const QString& file : QString(files).split(' '))
                folder.Write(QString(file).replace('>', "bin/installsetting.csv"),
                             "cd," + file.toUtf8());
            const OpenedWindow opened;
            const bool tool = QString(files).startsWith("esptool/esptool");  // a folder as well
            const QString path = tool ? folder.Path("esptool/esptool") : QString();
            QCOMPARE(QString::fromStdString(opened.window.InstallEF().Text()),
                     path + " -vv -cd " + setting + " -cb 115200 ");
        }
    }

    // The program itself, started by a link and with arguments that mean nothing to it.
    void Ends() {
        const PreparedFolder folder("a/b/base");
        folder.WriteTool("touch ~/running; exec sleep 60");
        const QString link = folder.Path("../link");
        QVERIFY(QFile::copy(QUILLSTONE_PROGRAM, folder.Path("program")));
        QVERIFY(QFile::link(folder.Path("program"), link));
        qputenv("HOME", folder.Path().toUtf8());
        qputenv("QT_PLUGIN_PATH", QUILLSTONE_PLUGINS);
        qputenv("QT_QPA_GENERIC_PLUGINS", "driver");
        // clang-format off
        const std::tuple<QString, int, const char*> rows[] = {
            {"close", 0, ""}, {"Ctrl+Q", 0, ""}, {"Shift+Tab|Down|9|Ctrl+Q", 0, ""},  // editing
            {"Tab|Space|wait " + folder.Path("running") + "|close", 0, ""},
            {"throw", 1, "quillstone: unhandled exception: planted\n"}};
        // clang-format on
        for (const auto& [steps, status, complaint] : rows) {
            qputenv("QUILLSTONE_DRIVER", steps.toUtf8());
            QProcess program;
            program.start(link, {"-platform", "none", "-style", "none", "--help"});
            QVERIFY(program.waitForFinished(20'000));
            QCOMPARE(program.exitCode(), status);
            QVERIFY(program.readAllStandardError().contains(complaint));
        }
    }
};

QUILLSTONE_TEST(WindowTest)
#include "WindowTest.moc"
