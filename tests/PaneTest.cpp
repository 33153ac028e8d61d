// The pane with the tool's output.
#include <QClipboard>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>

#include "Testing.h"

class PaneTest : public QObject {
    Q_OBJECT
  private slots:
    void ARunIsSeen() {
        const OpenedWindow opened;
        auto* pane = opened.Widget<QPlainTextEdit>("rEF");
        const QWidget* start = opened.Widget<QWidget>("StartPB");
        const QRect place(pane->mapTo(opened.frame, QPoint()), QSize(pane->width(), 3));
        const auto edge = [&] {  // as it stands on the screen
            return opened.frame->screen()
                ->grabWindow(opened.frame->winId(), place.x(), place.y(), place.width(), 3)
                .toImage();
        };
        opened.TabTo("StartPB");
        QCoreApplication::processEvents();
        const QImage idle = edge();
        opened.Start("sleep 99");
        QVERIFY(opened.window.rEF().Busy());
        QCOMPARE(pane->toolTip() + start->toolTip(), QString("Ctrl+. stops the run").repeated(2));
        QTRY_VERIFY(edge() != idle);
        const QImage before = edge();
        QTRY_VERIFY(edge() != before && edge() != idle);
        Key(Qt::Key_Period, Qt::ControlModifier);
        QTRY_COMPARE(edge(), idle);
        QCOMPARE(pane->toolTip() + start->toolTip(), "");
    }

    void OutputIsCopiedAsItWasPrinted() {
        const OpenedWindow opened;
        const std::string printed = "\xEF\xBB\xBF" + std::string(20'000, 'x') + "\nnext\n";
        opened.window.rEF().AppendText(printed);
        QCOMPARE(opened.window.rEF().Text(), "Install ...." + printed);
        Key(Qt::Key_A, Qt::ControlModifier);
        Key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text().toStdString(), "Install ...." + printed);
    }

    // A command of any length is shown, and edited, without line ends of the window's own.
    void LongCommand() {
        const OpenedWindow opened;
        const std::string command = std::string(20'000, 'x') + "\nnext";
        opened.window.InstallEF().Text(command);
        auto* field = opened.Widget<QPlainTextEdit>("InstallEF");
        field->setFocus();
        Type("y");
        QCOMPARE(opened.window.InstallEF().Text(), 'y' + command);
        field->undo();
        QCOMPARE(opened.window.InstallEF().Text(), command);
        QVERIFY(!field->document()->isUndoAvailable());
    }

    void OutputStaysInView() {
        const OpenedWindow opened;
        const QScrollBar* bar = opened.Widget<QPlainTextEdit>("rEF")->verticalScrollBar();
        TextArea& output = opened.window.rEF();
        output.AppendText("1\n2\n3\n4\n5\n6\n7\n8\n");
        QCOMPARE(bar->maximum(), 0);
        for (const int height : {450, 420, 500}) {  // all of it was in view, then the end
            opened.frame->resize(512, height);
            QCOMPARE(bar->value(), bar->maximum());
        }
        const std::string lines = QString("line\n").repeated(9'000).toStdString();
        output.AppendText(lines);
        QVERIFY(bar->value() < bar->maximum());
        output.ScrollPosition(10'000);
        QCOMPARE(bar->value(), bar->maximum());
        output.AppendText(lines);
        output.ScrollPosition(10'000);  // a line, and there are more by now
        QVERIFY(bar->value() == 10'000 && bar->value() < bar->maximum());
    }
};

QUILLSTONE_TEST(PaneTest)
#include "PaneTest.moc"
