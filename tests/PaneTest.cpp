// The pane with the tool's output.
#include <QClipboard>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>

#include "Testing.h"

class PaneTest : public QObject {
    Q_OBJECT
  private slots:
    void ARunIsSeen() {
        const OpenedWindow opened;
        auto* pane = opened.Widget<QPlainTextEdit>("rEF");
        const auto edge = [&] {  // as it stands on the screen
            const QPoint place = pane->mapTo(opened.frame, QPoint());
            const WId frame = opened.frame->winId();
            return pane->screen()->grabWindow(frame, place.x(), place.y(), 512, 3).toImage();
        };
        opened.TabTo("StartPB");
        QCoreApplication::processEvents();
        const QImage idle = edge();
        opened.Start("sleep 99");
        QVERIFY(opened.window.rEF().Busy());
        QCOMPARE(pane->toolTip(), "Ctrl+. stops the run");
        QImage before = idle;
        for (int moves = 0; moves < 2; ++moves) {
            QTRY_VERIFY(edge() != idle && edge() != before);
            before = edge();
        }
        Key(Qt::Key_Period, Qt::ControlModifier);
        QTRY_COMPARE(edge(), idle);
        QCOMPARE(pane->toolTip(), "");
    }

    void OutputIsCopiedAsItWasPrinted() {
        const OpenedWindow opened;
        const std::string printed = "\xEF\xBB\xBF" + std::string(20'000, 'x') + "\nnext\n";
        opened.window.rEF().AppendText(printed);
        QCOMPARE(opened.window.rEF().Text(), "Install ...." + printed);
        Press({Qt::CTRL | Qt::Key_A, Qt::CTRL | Qt::Key_C});
        QCOMPARE(QApplication::clipboard()->text().toStdString(), "Install ...." + printed);
    }

    // However long the command is, a line of it is one paragraph of the document.
    void LongCommand() {
        const OpenedWindow opened;
        const QString command = QString(9'000, 'x') + "\nnext";
        opened.window.InstallEF().Text(command.toStdString());
        auto* field = opened.Widget<QPlainTextEdit>("InstallEF");
        const auto text = [&] { return QString::fromStdString(opened.window.InstallEF().Text()); };
        field->setFocus();
        QCOMPARE(field->blockCount(), 2);
        QCOMPARE(field->toPlainText(), command);
        Press({Qt::CTRL | Qt::Key_End, Qt::Key_Backspace});
        QCOMPARE(text(), command.chopped(1));
        // Return and Shift+Return begin a new line, and so does a pasted line end.
        const QString pasted = "a" + QString(9'000, QChar(0x301)) + "\nbxy";
        QApplication::clipboard()->setText(pasted);
        Press({Qt::CTRL | Qt::Key_A, Qt::CTRL | Qt::Key_V, Qt::Key_Left, Qt::Key_Return,
               Qt::Key_Left, Qt::Key_Left, Qt::SHIFT | Qt::Key_Return});
        QCOMPARE(text(), pasted.chopped(2) + "\nx\ny");
        QCOMPARE(field->blockCount(), 4);
        for (int line = 0; line < 20; ++line) Key(Qt::Key_Return, Qt::ShiftModifier);
        QVERIFY(field->viewport()->rect().contains(field->cursorRect()));
        QApplication::clipboard()->setText("a\u2028b");
        Press({Qt::CTRL | Qt::Key_A, Qt::CTRL | Qt::Key_V});
        QCOMPARE(text(), "a\nb");  // Qt draws a break there
    }

    // The pane keeps the newest output, byte for byte.
    void OutputWithoutEnd_data() {
        const auto row = Columns<QByteArray, int, int>("piece", "lines", "characters");
        row("no line end", QByteArray(2'500, 'x'), 1'000'000, 100'000);
        row("empty lines", "\n", 100, 1'000'000);
    }
    void OutputWithoutEnd() {
        const auto [piece, lines, characters] =
            Row<QByteArray, int, int>("piece", "lines", "characters");
        const OpenedWindow opened;
        TextArea& output = opened.window.rEF();
        output.SetLimits(lines, characters);
        for (int i = 0; i < 120; ++i) output.AppendText(piece.toStdString());
        const QString kept = QString::fromStdString(output.Text());
        QVERIFY(("Install ...." + piece.repeated(120)).endsWith(kept.toUtf8()));
        QVERIFY(kept.count('\n') >= lines - 1 || kept.size() >= characters * 3 / 4);
        QVERIFY(kept.count('\n') < lines && kept.size() <= characters);
    }

    // In a very narrow pane the scroll bar leaves no room for the text, and Qt would show and hide
    // it for ever.
    void AnyWidth() {
        const OpenedWindow opened;
        opened.window.EspToolEF().Text("/home/user/esptool/esptool");
        opened.window.InstallEF().Text("word/1 word/2 word/3");
        const auto* pane = opened.Widget<QPlainTextEdit>("InstallEF");
        const QSignalSpy scrolls(pane->verticalScrollBar(), &QScrollBar::rangeChanged);
        for (int width = 540; width >= 64; width -= 2) {
            opened.frame->resize(width, 540);
            for (int turn = 0; turn < 10; ++turn) QCoreApplication::processEvents();
            QVERIFY2(scrolls.size() < 1'000, qPrintable(QString::number(width)));
        }
    }

    void OutputStaysInView() {
        const OpenedWindow opened;
        QScrollBar* bar = opened.Widget<QPlainTextEdit>("rEF")->verticalScrollBar();
        TextArea& output = opened.window.rEF();
        output.AppendText("1\n2\n3\n4\n5\n6\n7\n8\n");
        QCOMPARE(bar->maximum(), 0);
        for (const int height : {450, 420, 500}) {  // all of it was in view, then the end
            opened.frame->resize(512, height);
            QCOMPARE(bar->value(), bar->maximum());
        }
        const std::string lines = QString("line\n").repeated(9'000).toStdString();
        for (int times = 0; times < 2; ++times) {
            output.AppendText(lines);
            QVERIFY(bar->value() < bar->maximum());
            output.ScrollPosition(10'000);  // a line: the last one, unless there are more by now
            QCOMPARE(bar->value(), std::min(bar->maximum(), 10'000));
        }
        // Paragraphs of several lines that have been scrolled through.
        auto* pane = opened.Widget<QPlainTextEdit>("rEF");
        output.Text((QString(500, 'x') + '\n').repeated(100).toStdString());
        for (int page = 0; page < 10; ++page) QTest::keyClick(pane, Qt::Key_PageDown);
        bar->setValue(bar->maximum());
        const QPoint lastLine(9, pane->viewport()->height() - 9);
        QVERIFY(pane->cursorForPosition(lastLine).atEnd());
    }
};

QUILLSTONE_TEST(PaneTest)
#include "PaneTest.moc"
