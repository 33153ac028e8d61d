// The two file dialogs, driven by keyboard while they block their handler.
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QTreeView>

#include "Testing.h"

namespace {

using Answer = std::function<void(QFileDialog&)>;

// A name in the dialog's folder; the dialog would complain about another in a box of its own.
Answer Type(const QString& path) {
    return [path](QFileDialog& dialog) {
        QVERIFY(dialog.directory().exists(path));
        QTest::keyClicks(QApplication::focusWidget(), path);
        QTest::keyClick(dialog.findChild<QLineEdit*>("fileNameEdit"), Qt::Key_Return);
    };
}

// Cancels a dialog that asks for this and offers these.
Answer Cancel(const QString& wanted, const QStringList& names) {
    return [=](QFileDialog& dialog) {
        QCOMPARE(dialog.windowTitle(), "Select " + wanted);
        const auto* prompt = dialog.findChild<QLabel*>("PromptText");
        QCOMPARE(prompt->text(), wanted + "を選択して下さい....");
        const auto* files = dialog.findChild<QTreeView*>("treeView");
        QVERIFY(prompt->isVisible() && prompt->width() >= prompt->sizeHint().width() &&
                prompt->geometry().bottom() < files->mapTo(&dialog, QPoint()).y());
        QTRY_COMPARE(files->model()->rowCount(files->rootIndex()), names.size());
        for (int i = 0; i < names.size(); ++i)
            QTRY_COMPARE(files->model()->index(i, 0, files->rootIndex()).data().toString(),
                         names[i]);
        QTest::keyClick(&dialog, Qt::Key_Escape);
    };
}

struct Chooser : PreparedFolder, OpenedWindow {
    Chooser() : PreparedFolder("ファーム") {}

    // Opens a dialog, and answers while that blocks. False when none came up or it stayed open.
    bool Choose(const char* control, const Answer& answer) const {
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
    bool HasTool(const QString& shown, const QString& inCommand) const {
        return window.EspToolEF().Text() == shown.toStdString() &&
               window.InstallEF().Text() == (inCommand + " -vv -cd ck -cb 115200 ").toStdString();
    }
    QString Images() const {
        QString names;
        for (int i = 0; i < window.ulb().ListCount(); ++i)
            names += QString::fromStdString(window.ulb().Cell(i, 0)).section(" (", 0, 0) + '|';
        return names;
    }
};

}  // namespace

class DialogTest : public QObject {
    Q_OBJECT
    QTemporaryDir mSettings;

  private slots:
    void initTestCase() { qputenv("XDG_CONFIG_HOME", mSettings.path().toUtf8()); }
    void cleanupTestCase() { QVERIFY(QDir(mSettings.path()).isEmpty()); }  // nothing is kept

    void Tool() {
        const Chooser chooser;
        const QString tool = chooser.Write("flash tool", ""), link = chooser.Path("link");
        QVERIFY(QFile::link(tool, link));
        QVERIFY(chooser.Choose("SelectESPPB", Type("flash tool")));
        QVERIFY(chooser.HasTool(tool, '\'' + tool + '\''));
        // The other type shows its own tool; the command keeps the one that was chosen.
        auto* types = chooser.Widget<QComboBox>("tooltypePM");
        QTest::keyClick(types, Qt::Key_Up);
        QVERIFY(chooser.window.mEspToolUse == 0 && chooser.HasTool("", '\'' + tool + '\''));
        QVERIFY(chooser.Choose("SelectESPPB", Type("link")));
        QTest::keyClick(types, Qt::Key_Down);
        QVERIFY(chooser.window.mEspToolUse == 1 && chooser.HasTool(link, '\'' + link + '\''));
        QVERIFY(chooser.Choose("SelectESPPB", Cancel("ESPTool", {"flash tool", "link"})));
        QVERIFY(chooser.HasTool("", ""));
    }

    void UploadFile() {
        const Chooser chooser;
        for (const char* name : {"BOOT.BIN", "job.csv", "a b/one.bin"}) chooser.Write(name, "");
        chooser.Write("notes.txt", "cb,9600\n");
        chooser.Write("a b/job.CSV", "cd,none\ncb,9600\nup,one.bin,0x9\n");
        chooser.window.InstallEF().Text("edited");
        QVERIFY(chooser.Choose("ulb", Cancel("Uploadファイル", {"a b", "BOOT.BIN", "job.csv"})));
        QCOMPARE(chooser.Images(), "|");
        QCOMPARE(chooser.window.InstallEF().Text(), "edited");

        QVERIFY(chooser.Choose("SelectPB", Type("BOOT.BIN")));
        QVERIFY(chooser.Choose("ulb", [](QFileDialog& dialog) {
            Type("a b")(dialog);  // is for walking through
            Type("one.bin")(dialog);
        }));
        // In the base folder again. Another type changes nothing but a command edited by hand.
        chooser.window.InstallEF().Text("edited");
        QVERIFY(chooser.Choose("SelectPB", Type("notes.txt")));
        QCOMPARE(chooser.Images(), "BOOT.BIN|one.bin|");
        QVERIFY(chooser.HasTool("", ""));
        QVERIFY(chooser.Choose("SelectPB", Type("a b/job.CSV")));
        QCOMPARE(QString::fromStdString(chooser.window.InstallEF().Text()),
                 " -vv -cd none -cb 9600 -ca 0x9 -cf '" + chooser.Path("a b/one.bin") + '\'');
    }

    void BeginsInDocumentsWithoutABaseFolder() {
        const Chooser chooser;
        SetBaseFolder(chooser.Path("gone").toStdString());
        for (const char* button : {"SelectPB", "SelectESPPB"}) {
            chooser.Write(QString(button) + "/Documents/m.bin", "");
            qputenv("HOME", chooser.Path(button).toUtf8());
            QVERIFY(chooser.Choose(button, Type("m.bin")));
        }
        QVERIFY(chooser.window.ulb().Cell(0, 0).ends_with("/SelectPB/Documents/m.bin)"));
        QVERIFY(chooser.window.EspToolEF().Text().ends_with("/SelectESPPB/Documents/m.bin"));
    }
};

QUILLSTONE_TEST(DialogTest)
#include "DialogTest.moc"
