// The list of images: its loads from install setting files, and what the user does with it.
#include <QLineEdit>
#include <QTableView>

#include "Testing.h"

namespace {

// The window with a tool and some images, of which a setting file loads the list.
struct Job {
    explicit Job(const QByteArray& setting) {
        for (const char* name : {"a.bin", "b.bin", "c.bin", "a b.bin", "テ.bin", "sub/a.bin"})
            folder.Write(name, "1");
        Load(setting);
    }
    void Load(const QByteArray& setting) const {
        folder.Write("x.csv", setting);
        window.SetInstallSetting(folder.Item("x.csv"));
    }
    // "name=address", with a star where the address can be edited; a free row has no name.
    QString Rows() const {
        QStringList rows;
        for (int row = 0; row < list.ListCount(); ++row) {
            const QString name = Index(row, 0).data().toString().section(" (", 0, 0);
            const bool editable = Index(row, 1).flags() & Qt::ItemIsEditable;
            rows += name + '=' + Index(row, 1).data().toString() + (editable ? "*" : "");
        }
        return rows.join(' ');
    }
    // Of the command what follows -vv, @ for the folder.
    QString Command() const {
        const QString command = QString::fromStdString(window.InstallEF().Text());
        return command.section(" -vv ", 1).replace(folder.Path(), "@");
    }
    QModelIndex Index(int row, int column) const { return view->model()->index(row, column); }
    void Click(int row, int column) const {
        const QPoint place = view->visualRect(Index(row, column)).center();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place);
    }
    // The cell editor that is open, if any.
    QLineEdit* Editor() const {
        auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        return editor && view->isAncestorOf(editor) ? editor : nullptr;
    }

    PreparedFolder folder{"a/b/base"};
    QString tool = folder.WriteTool(kShowArguments);
    OpenedWindow opened;
    EspWin& window = opened.window;
    Listbox& list = window.ulb();
    QTableView* view = opened.Widget<QTableView>("ulb");
};

constexpr char kThree[] = "up,a.bin,1\nup,b.bin,2\nup,c.bin,3";

}  // namespace

class UploadTest : public QObject {
    Q_OBJECT
  private slots:
    void Settings() {
        // clang-format off
        const std::tuple<QByteArray, QString, QString> rows[] = {
            {"", "=0x00100000", "-cd ck -cb 115200 "},
            {"up,none.bin,1\nup,,1\nup,.,1\nup,..,1\nup,sub/a.bin,1\nup, a.bin,1\nup\ncd,x",
             "=0x00100000", "-cd x -cb 115200 "},
            {"up,a.bin,1,x,y\r\nup,a b.bin,0x2\rup,b.bin, 3 0", "a.bin=1* a b.bin=0x2* b.bin= 3 0*",
             "-cd ck -cb 115200 -ca 1 -cf @/a.bin -ca 0x2 -cf '@/a b.bin' -ca  3 0 -cf @/b.bin"},
            {"# up,a.bin,1\n\n,up,a.bin\n up,a.bin,1\nupp,a.bin\nup,c.bin,9\nup,b.bin\nup,sub,\ncd",
             "c.bin=9* b.bin=* sub=*", "-cb 115200 -ca 9 -cf @/c.bin"},
            {"cb,9600\ncd,a\ncb,460800\ncb,12345\ncd, b b\ncb, 2400\ncb", "=0x00100000",
             "-cd  b b -cb 460800 "},
            {"CD,X\ncB,2400\nUp,a.bin,xyz\nup,b.bin\nup,a.bin,xyz", "a.bin=xyz* b.bin=* a.bin=xyz*",
             "-cd X -cb 2400 -ca xyz -cf @/a.bin -ca xyz -cf @/a.bin"},
            {"cd,\x83\x5C\nup,\x83\x65.bin,1", "テ.bin=1*", "-cd ソ -cb 115200 -ca 1 -cf '@/テ.bin'"},
            {QByteArray("\xEF\xBB\xBFup,a.bin,1\nup,b.bin?,2\nup,c.bin,").replace('?', '\0'),
             "a.bin=1* c.bin=*", "-cd ck -cb 115200 -ca 1 -cf @/a.bin"},
            {"up,b.bin," + QByteArray(1000, ','), "b.bin=*", "-cd ck -cb 115200 "}};
        // clang-format on
        for (const auto& [setting, list, command] : rows) {
            const Job job("up,a.bin,former");
            job.view->selectRow(0);
            job.Load(setting);
            QCOMPARE(job.Rows(), list);
            QCOMPARE(job.Command(), command);
            QVERIFY(job.list.ListIndex() == -1 && !job.window.DeletePB().Enabled());
            // What can't be loaded changes nothing.
            job.window.InstallEF().Text("by -vv hand");
            mkfifo(qPrintable(job.folder.Path("pipe")), 0644);
            for (const char* name : {"missing.csv", "sub", "pipe"})
                job.window.SetInstallSetting(job.folder.Item(name));
            QCOMPARE(job.Rows() + job.Command(), list + "hand");
        }
    }

    void EditInPlace() {
        const Job job(kThree);
        // clang-format off
        const std::tuple<bool, Qt::Key, const char*> ways[] = {  // by a second click, else F2
            {true, Qt::Key_Tab, "DeletePB"}, {false, Qt::Key_Return, "ulb"},
            {false, Qt::Key_Backtab, "SelectESPPB"}};
        // clang-format on
        for (int row = 0; const auto& [clicked, leave, heir] : ways) {
            job.Click(row, 1);
            QVERIFY(job.list.ListIndex() == row && !job.Editor());
            if (clicked) job.Click(row, 1);
            if (!clicked) QTest::keyClick(job.view, Qt::Key_F2);
            QTRY_VERIFY(job.Editor());
            QTest::keyClicks(job.Editor(), heir);  // over the old text
            QTest::keyClick(job.Editor(), leave);
            QTRY_COMPARE(QApplication::focusWidget()->objectName(), QString(heir));
            QCOMPARE(job.list.Cell(row++, 1), std::string(heir));
            QVERIFY(job.Command().contains("-ca " + QString(heir) + " -cf "));
        }
        QTest::keyClick(job.view, Qt::Key_F2);
        QTest::keyClicks(job.Editor(), "dropped");
        QTest::keyClick(job.Editor(), Qt::Key_Escape);
        QVERIFY(!job.Editor() && !job.Command().contains("dropped"));
        // Start never runs without what the cell shows.
        job.Click(0, 0);
        QTest::keyClick(job.view, '0');
        QTest::keyClicks(job.Editor(), "xAB");
        job.opened.Click("StartPB");
        QTRY_VERIFY(job.window.StartPB().Enabled());
        QVERIFY(job.window.rEF().Text().find("<-ca><0xAB>") != std::string::npos);
    }

    // Rows are selected by keyboard, from none.
    void Delete() {
        const Job job(kThree);
        // clang-format off
        const std::pair<Qt::Key, const char*> rows[] = {
            {Qt::Key_End, "a.bin=1* b.bin=2*"}, {Qt::Key_Down, "b.bin=2*"},
            {Qt::Key_Up, "=2*"}, {Qt::Key_Home, "=2*"}};
        // clang-format on
        for (const auto& [key, left] : rows) {
            QTest::keyClick(job.view, key);
            job.opened.Click("DeletePB");
            QCOMPARE(job.Rows(), left);
            const bool sole = left[0] == '=';  // stays, free and selected
            QVERIFY(job.window.DeletePB().Enabled() == sole && (job.list.ListIndex() == 0) == sole);
            QVERIFY(job.Command().endsWith("-ca 2 -cf @/b.bin") != sole);
        }
        // A new file fills the free row, and else goes behind the last, not over the selected.
        for (const char* name : {"a.bin", "b.bin"})
            job.window.SetUploadFileToList(job.folder.Item(name), "");
        QCOMPARE(job.Rows(), "a.bin=* b.bin=*");
    }

    void Look() {
        const Job job(kThree);
        const auto colour = [&job](int cell) {
            const QRect place = job.view->visualRect(job.Index(cell / 2, cell % 2));
            const QImage image = job.view->viewport()->grab().toImage();
            return image.pixel(place.right() - 3, place.center().y());
        };
        job.view->resize(334, 200);
        QCOMPARE(job.view->model()->headerData(0, Qt::Horizontal).toString(), "File (-cf)");
        for (int cell = 0; cell < 6; ++cell)
            QCOMPARE(colour(cell), cell / 2 == 1 ? 0xFFD2EDF5 : 0xFFD2FFF3);
        job.Click(2, 0);
        QVERIFY(colour(4) != 0xFFD2FFF3 && colour(2) == 0xFFD2EDF5);
    }
};

QUILLSTONE_TEST(UploadTest)
#include "UploadTest.moc"
