// The two file dialogs. A timer drives them by keyboard while they block their handler.
#include <QComboBox>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QTreeView>

#include "Testing.h"

namespace {

struct Chooser : PreparedFolder, OpenedWindow {
    Chooser() : PreparedFolder("ファーム") {}

    // Opens a dialog by that control, and answers it. False if none came up or it stayed open.
    bool Answer(const char* control, const std::function<void(QFileDialog&)>& answer) const {
        bool ended = false;
        QTimer poll;
        poll.callOnTimeout([&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isActiveWindow()) return;
            poll.stop();
            answer(*dialog);
            ended = !dialog->isVisible();
            if (!ended) dialog->reject();
        });
        poll.start(1);
        if (auto* list = Widget<QAbstractScrollArea>(control))
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, {20, 8});
        else
            Click(control);
        return ended;
    }
    // Types each name and Return. Stops at a name that doesn't exist: Qt would open a message box.
    bool Choose(const char* control, const QStringList& names) const {
        return Answer(control, [&](QFileDialog& dialog) {
            for (const QString& name : names) {
                if (!dialog.directory().exists(name)) return;
                Type(name);
                Key(Qt::Key_Return);
            }
        });
    }
    bool Cancel(const char* control) const {
        return Answer(control, [](QFileDialog&) { Key(Qt::Key_Escape); });
    }
    QString Command() const { return window.InstallEF().Text().c_str(); }
    QString Image(int row) const { return window.ulb().Cell(row, 0).c_str(); }
};

// The names of the items in the context menu of a text.
QStringList ContextMenu(QWidget& text) {
    text.setFocus();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
    QApplication::sendEvent(&text, &event);
    QWidget* menu = QApplication::activePopupWidget();
    if (!menu) return {};
    QStringList names;
    for (const QAction* action : menu->actions()) names += action->objectName();
    menu->close();
    return names;
}

const QString kNoImages = " -vv -cd ck -cb 115200 ";

}  // namespace

class DialogTest : public QObject {
    Q_OBJECT
    QTemporaryDir mSettings;

  private slots:
    void initTestCase() { qputenv("XDG_CONFIG_HOME", mSettings.path().toUtf8()); }
    void cleanupTestCase() { QVERIFY(QDir(mSettings.path()).isEmpty()); }  // nothing is kept

    void Dialog_data() {
        const auto row = Columns<QByteArray, QString, QStringList>("control", "wanted", "files");
        row("for the tool", "SelectESPPB", "ESPTool", {"a b", "BOOT.BIN", "job.csv", "notes.txt"});
        row("for the upload", "ulb", "Uploadファイル", {"a b", "BOOT.BIN", "job.csv"});
    }
    void Dialog() {
        const auto [control, wanted, files] =
            Row<QByteArray, QString, QStringList>("control", "wanted", "files");
        const Chooser chooser;
        for (const char* name : {"BOOT.BIN", "job.csv", "notes.txt", "a b/one.bin"})
            chooser.Write(name, "");
        QStringList texts;
        QVERIFY(chooser.Answer(control, [&, listed = files](QFileDialog& dialog) {
            const auto* view = dialog.findChild<QTreeView*>("treeView");
            const auto lists = [&] {
                QStringList names;
                for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
                    names += view->model()->index(row, 0, view->rootIndex()).data().toString();
                return names == listed;
            };
            const auto* label = dialog.findChild<QLabel*>("PromptText");
            if (!QTest::qWaitFor(lists) || !label->isVisible()) return;
            if (label->geometry().bottom() >= view->mapTo(&dialog, QPoint()).y()) return;
            // Only the system's own dialogs resolve links, so Tool doesn't see this.
            if (!dialog.testOption(QFileDialog::DontResolveSymlinks)) return;
            texts = {dialog.windowTitle(), label->text()};
            Key(Qt::Key_Escape);
        }));
        QCOMPARE(texts, QStringList({"Select " + wanted, wanted + "を選択して下さい...."}));
    }

    void Tool() {
        const Chooser chooser;
        const QString first = chooser.Write("flash tool", ""), other = chooser.Write("other", "");
        const auto shows = [&](const QString& tool, const QString& command) {
            return chooser.window.EspToolEF().Text() == tool.toStdString() &&
                   chooser.Command() == command + kNoImages;
        };
        QVERIFY(chooser.Choose("SelectESPPB", {"flash tool"}));
        QVERIFY(shows(first, '\'' + first + '\''));
        // The other type shows its own tool; the command keeps the one that was chosen.
        auto* types = chooser.Widget<QComboBox>("tooltypePM");
        QTest::keyClick(types, Qt::Key_Up);
        QVERIFY(shows("", '\'' + first + '\''));
        QVERIFY(chooser.Choose("SelectESPPB", {"other"}));
        QTest::keyClick(types, Qt::Key_Down);
        QVERIFY(shows(other, '\'' + other + '\''));
        QVERIFY(chooser.Cancel("SelectESPPB") && shows("", ""));
    }

    void UploadFile() {
        const Chooser chooser;
        for (const char* name : {"BOOT.BIN", "notes.txt", "a b/one.bin"})
            chooser.Write(name, "cb,9600\n");
        chooser.Write("a b/job.CSV", "cd,none\ncb,9600\nup,one.bin,0x9\n");
        QVERIFY(chooser.Choose("SelectPB", {"BOOT.BIN"}));
        QVERIFY(chooser.Choose("ulb", {"a b", "one.bin"}));  // a folder is walked through
        chooser.window.InstallEF().Text("edited");
        QVERIFY(chooser.Cancel("ulb"));
        QCOMPARE(chooser.Command(), "edited");
        // In the base folder again. Another type changes nothing but a command edited by hand.
        QVERIFY(chooser.Choose("SelectPB", {"notes.txt"}));
        QVERIFY(chooser.Image(0).startsWith("BOOT.BIN ("));
        QVERIFY(chooser.Image(1).startsWith("one.bin ("));
        QCOMPARE(chooser.Command(), kNoImages);
        QVERIFY(chooser.Choose("SelectPB", {"a b/job.CSV"}));
        QCOMPARE(chooser.Command(),
                 " -vv -cd none -cb 9600 -ca 0x9 -cf '" + chooser.Path("a b/one.bin") + '\'');
    }

    void ContextMenus() {
        const Chooser chooser;
        for (const char* name : {"InstallEF", "ResetEF"})
            QVERIFY(ContextMenu(*chooser.Widget<QWidget>(name)).contains("EditPaste"));
        QStringList items;
        QVERIFY(chooser.Answer("SelectPB", [&](QFileDialog& dialog) {
            items = ContextMenu(*dialog.findChild<QLineEdit*>());
            Key(Qt::Key_Escape);
        }));
        QVERIFY(!items.isEmpty() && !items.contains("EditPaste"));
    }

    // In a folder that every user can write to, the load at the start passes over images of
    // strangers. A setting file that the user chooses is loaded with them.
    void ImageOfAStranger() {
        Chooser chooser;
        for (const char* name : {"job.csv", "x.bin"}) chooser.Write(name, "up,x.bin,0");
        chmod(chooser.Path().toUtf8(), 01777);
        SetUser(chooser.Owner() + 1);
        const auto restore = qScopeGuard([] { SetUser({}); });
        chooser.window.SetInstallSetting(chooser.Item("job.csv"));
        QCOMPARE(chooser.Image(0), "");
        QVERIFY(chooser.Choose("SelectPB", {"job.csv"}));
        QVERIFY(chooser.Image(0).startsWith("x.bin ("));
    }

    void BeginsInDocumentsWithoutABaseFolder() {
        const Chooser chooser;
        SetBaseFolder(chooser.Path("gone").toStdString());
        qputenv("HOME", chooser.Path().toUtf8());
        chooser.Write("Documents/m.bin", "");
        for (const char* button : {"SelectPB", "SelectESPPB"})
            QVERIFY(chooser.Choose(button, {"m.bin"}));
    }
};

QUILLSTONE_TEST(DialogTest)
#include "DialogTest.moc"
