// How images get into the list and out of it.
#include "LoadedWindow.h"

class UploadTest : public QObject {
    Q_OBJECT
  private slots:
    void Settings_data() {
        const auto row = Columns<QByteArray, QStringList, QStringList, QString>(
            "setting", "names", "addresses", "command");
        const QStringList free{""}, start{"0x00100000"};
        row("files that aren't beside it",
            "up,none.bin,1\nup,,1\nup,.,1\nup,..,1\nup,sub/a.bin,1\nup, a.bin,1\nup", free, start,
            "-cd ck -cb 115200 ");
        row("a byte order mark, all line ends, a thousand fields, a zero byte",
            QByteArray("\xEF\xBB\xBFup,a.bin,1" + QByteArray(1000, ',') +
                       "\r\nup,a b.bin,0x2\rup,b.bin, 3 0\nup,c.bin?,2")
                .replace('?', '\0'),
            {"a.bin", "a b.bin", "b.bin"}, {"1", "0x2", " 3 0"},
            "-cd ck -cb 115200 -ca 1 -cf @/a.bin -ca 0x2 -cf '@/a b.bin' -ca  3 0 -cf @/b.bin");
        row("no address, no such key, a folder, a file twice",
            "# up,a.bin,1\n\n,up,a.bin\n "
            "up,a.bin,1\nupp,a.bin\nup,c.bin,9\nup,sub,\nup,c.bin,9\ncd",
            {"c.bin", "sub", "c.bin"}, {"9", "", "9"},
            "-cb 115200 -ca 9 -cf @/c.bin -ca 9 -cf @/c.bin");
        row("the last reset method and the last known speed, keys in any case",
            "cb,9600\ncd,a\nCb,460800\ncb,12345\nCD, b b\ncb, 2400\ncb", free, start,
            "-cd  b b -cb 460800 ");
    }
    void Settings() {
        const LoadedWindow job("up,a.bin,former");
        job.view->selectRow(0);
        QFETCH(const QByteArray, setting);
        job.Load(setting);
        QTEST(job.Column(0), "names");
        QTEST(job.Column(1), "addresses");
        QTEST(job.Command(), "command");
        QVERIFY(job.list.ListIndex() == -1 && !job.window.DeletePB().Enabled());
        for (int row = 0; row < job.list.ListCount(); ++row)
            QCOMPARE(job.Index(row, 1).flags().testFlag(Qt::ItemIsEditable),
                     !job.Column(0)[row].isEmpty());
    }

    void NoSettingFile() {
        const LoadedWindow job;
        job.window.InstallEF().Text("by -vv hand");
        mkfifo(qPrintable(job.folder.Path("pipe")), 0644);
        for (const char* name : {"missing.csv", "sub", "pipe"}) {
            job.window.SetInstallSetting(job.folder.Item(name));
            QCOMPARE(job.Column(1).join(' ') + job.Command(), "1 2 3hand");
        }
    }

    // By the key and by the button.
    void Delete() {
        const LoadedWindow job;
        job.Press(Qt::Key_Delete);  // with no row selected
        for (const auto& [select, left] : {std::pair(Qt::Key_End, QStringList{"a.bin", "b.bin"}),
                                           {Qt::Key_Home, {"b.bin"}},
                                           {Qt::Key_Up, {""}},
                                           {Qt::Key_Down, {""}}}) {
            job.view->setFocus();
            job.Press(select);
            select == Qt::Key_Up ? job.opened.Click("DeletePB") : job.Press(Qt::Key_Delete);
            QCOMPARE(job.Column(0), left);
            const bool sole = left[0].isEmpty();  // stays, free and selected, with its address
            QVERIFY(job.window.DeletePB().Enabled() == sole && (job.list.ListIndex() == 0) == sole);
            QVERIFY(job.Command().endsWith("-ca 2 -cf @/b.bin") != sole);
        }
        QCOMPARE(job.Column(1), QStringList{"2"});
        // A new file fills the free row, and else goes behind the last, not over the selected.
        for (const char* name : {"a.bin", "b.bin"})
            job.window.SetUploadFileToList(job.folder.Item(name), "");
        QCOMPARE(job.Column(0) + job.Column(1), (QStringList{"a.bin", "b.bin", "", ""}));
    }
};

QUILLSTONE_TEST(UploadTest)
#include "UploadTest.moc"
