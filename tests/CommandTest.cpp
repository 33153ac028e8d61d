// The command: when it is composed, and how it reaches the tool.
#include <QPlainTextEdit>

#include "Testing.h"

class CommandTest : public QObject {
    Q_OBJECT
  private slots:
    // Each change composes anew, over a hand edit.
    void Callers() {
        const PreparedFolder folder("a/b/base");
        folder.Ports({"p", "q"});
        const std::string image = folder.Write("i.bin", "1").toStdString();
        folder.Write("x.csv", "up,i.bin,7");
        OpenedWindow opened;
        EspWin& window = opened.window;
        const auto gives = [&](const std::string& command, const std::function<void()>& change) {
            window.InstallEF().Text("by hand");
            change();
            QCOMPARE(window.InstallEF().Text(), command);
        };
        const auto type = [&](auto name) { QTest::keyClicks(opened.Widget<QWidget>(name), "y"); };
        const std::string none = " -vv -cd ck -cb 115200 -cp /dev/p ";
        const std::string start = " -vv -cd cky -cb 230400 -cp /dev/q ";
        const std::string whole = start + "-ca 7 -cf " + image;
        gives(" -vv -cd ck -cb 115200 ", [&] { window.PortPM().DeleteAllRows(); });
        gives(none, [&] { window.MakeSerialPortPopupMenu(); });
        gives(none, [&] { type("EspToolEF"); });  // shown only
        gives(none, [&] { window.UploadEF().Text("x"); });
        gives(none, [&] { type("AddressEF"); });
        gives(" -vv -cd ck -cb 115200 -cp /dev/q ", [&] { window.PortPM().ListIndex(1); });
        gives(" -vv -cd cky -cb 115200 -cp /dev/q ", [&] { type("ResetEF"); });
        gives(" -vv -cd cky -cp /dev/q ", [&] { window.BaudPM().ListIndex(14); });  // no such row
        gives(start, [&] { window.BaudPM().ListIndex(11); });
        gives(whole, [&] { window.SetInstallSetting(folder.Item("x.csv")); });
        // A file that has gone counts again once it is back.
        QFile::rename(folder.Path("i.bin"), folder.Path("gone"));
        gives(start, [&] { window.ResetEF().Text("cky"); });
        QFile::rename(folder.Path("gone"), folder.Path("i.bin"));
        gives(whole, [&] { window.MakeCommand(); });
    }

    // Characters that a text control replaces or takes for line ends, and bytes that are no text.
    void ExoticPathsReachTheTool() {
        const PreparedFolder folder("n\u00A0r\rp\u2029l\u2028 n\n'q'");
        folder.WriteTool(kShowArguments + QByteArray(" >\"$0.args\""));
        const std::string image =
            folder.Path("i").toStdString() + "\xFF\xE3\x83\x7F\u00A0\r\r\n\t.bin";
        fclose(fopen(image.c_str(), "w"));
        OpenedWindow opened;
        opened.window.SetUploadFileToList(std::make_shared<FolderItem>(image), "0");
        opened.window.MakeCommand();
        // Looking at it changes nothing.
        auto* field = opened.Widget<QPlainTextEdit>("InstallEF");
        QTest::mouseClick(field->viewport(), Qt::LeftButton);
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTRY_VERIFY(field->toPlainText().contains("-cf"));
        opened.Click("StartPB");
        QTRY_VERIFY(opened.window.StartPB().Enabled());
        remove(image.c_str());  // not every way of removing the folder can name it
        QFile arguments(folder.Path("esptool/esptool.args"));
        QVERIFY(arguments.open(QIODevice::ReadOnly));
        QCOMPARE(arguments.readAll().toStdString(),
                 "<-vv><-cd><ck><-cb><115200><-ca><0><-cf><" + image + ">");
    }
};

QUILLSTONE_TEST(CommandTest)
#include "CommandTest.moc"
