// The command: when the window composes it, and how the tool gets it.
#include <QPlainTextEdit>

#include "Testing.h"

using Change = std::function<void(OpenedWindow&)>;
Q_DECLARE_METATYPE(Change)

class CommandTest : public QObject {
    Q_OBJECT
  private slots:
    // Each change composes the command anew and discards a hand edit.
    void AChangeComposes_data() {
        const auto row = Columns<QString, Change>("options", "change");
        const QString same = "-cd ck -cb 115200 -cp /dev/p ";
        row("a scan", same, [](auto& o) { o.Click("ScanBtn"); });
        row("a tool's path, typed", same,
            [](OpenedWindow& o) { QTest::keyClicks(o.Widget<QWidget>("EspToolEF"), "y"); });
        row("no reset text", "-cb 115200 -cp /dev/p ",
            [](auto& o) { o.window.ResetEF().Text(""); });
        row("the image deleted and back", same, [](auto& o) {
            const auto path = QString::fromStdString(GetFolderItem("", 0)->NativePath()) + "/i.bin";
            QFile::rename(path, path + ".gone");
            o.window.ResetEF().Text("ck");
            QFile::rename(path + ".gone", path);
            o.window.ResetEF().Text("ck");
        });
    }
    void AChangeComposes() {
        const auto [options, change] = Row<QString, Change>("options", "change");
        const PreparedFolder folder("a/b/base");
        folder.Ports({"p", "q"});
        folder.Write("i.bin", "1");
        folder.Write("x.csv", "up,i.bin,7");
        OpenedWindow opened;
        opened.window.SetInstallSetting(folder.Item("x.csv"));
        opened.window.InstallEF().Text("by hand");
        QCoreApplication::processEvents();
        change(opened);
        const QString expected = " -vv " + options + "-ca 7 -cf " + folder.Path("i.bin");
        QCOMPARE(QString::fromStdString(opened.window.InstallEF().Text()), expected);
        QTRY_COMPARE(opened.Widget<QPlainTextEdit>("InstallEF")->toPlainText(), expected);
    }

    // Paths with characters that a text control replaces or takes for line ends, and with bytes
    // that are no UTF-8.
    void ExoticPathsReachTheTool() {
        const PreparedFolder folder(
            "n\u00A0r\rp\u2029l\u2028 n\n'q' \"$HOME\" `id` $(id) ~ \\*?;&|#");
        folder.WriteTool(kShowArguments + QByteArray(" >\"$0.args\""));
        const std::string image =
            folder.Path("i").toStdString() + "\xFF\xE3\x83\x7F\u00A0\r\r\n\t.bin";
        fclose(fopen(image.c_str(), "w"));
        OpenedWindow opened;
        opened.window.SetUploadFileToList(std::make_shared<FolderItem>(image), "0");
        opened.window.MakeCommand();
        // Selecting and copying the command changes nothing.
        auto* field = opened.Widget<QPlainTextEdit>("InstallEF");
        QTest::mouseClick(field->viewport(), Qt::LeftButton);
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTRY_VERIFY(field->toPlainText().contains("-cf"));
        opened.Click("StartPB");
        QCOMPARE(opened.Output(), "");
        remove(image.c_str());  // not every way of removing the folder can name it
        QFile arguments(folder.Path("esptool/esptool.args"));
        QVERIFY(arguments.open(QIODevice::ReadOnly));
        QCOMPARE(arguments.readAll().toStdString(),
                 "<-vv><-cd><ck><-cb><115200><-ca><0><-cf><" + image + ">");
    }
};

QUILLSTONE_TEST(CommandTest)
#include "CommandTest.moc"
