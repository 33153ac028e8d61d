#include "Testing.h"

class CommandTest : public QObject {
    Q_OBJECT
  private slots:
    void PreparedFolderIsReady() {
        PreparedFolder folder("o'neil $HOME \"q\" ファーム;&");
        folder.WriteTool("for a; do printf '<%s>' \"$a\"; done");
        folder.Write("bin/installsetting.csv", "cd,ck\ncb,460800\nup,a b.bin,0x0\nup,c.bin,x\n");
        folder.Write("bin/a b.bin", "1");
        folder.Write("bin/c.bin", "2");
        OpenedWindow opened;
        opened.Click("StartPB");
        QTRY_VERIFY(opened.window.StartPB().Enabled());
        QCOMPARE(QString::fromStdString(opened.window.rEF().Text()),
                 QString("Wait....<-vv><-cd><ck><-cb><460800><-ca><0x0><-cf><%1><-ca><x><-cf><%2>")
                     .arg(folder.Path("bin/a b.bin"), folder.Path("bin/c.bin")));
    }
};

QUILLSTONE_TEST(CommandTest)
#include "CommandTest.moc"
