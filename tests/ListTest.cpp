// The list under the user's hands: typing, clicks, keys, colours, and what a screen reader does.
#include <unistd.h>

#include <QAccessible>
#include <QClipboard>
#include <QMenuBar>
#include <QSignalSpy>

#include "LoadedWindow.h"

class ListTest : public QObject {
    Q_OBJECT
  private slots:
    // An editor is open before the next key comes.
    void EditInPlace_data() {
        const auto row =
            Columns<QString, Qt::Key, QString, QString>("start", "leave", "address", "heir");
        row("a click and Tab", "click", Qt::Key_Tab, "new", "DeletePB");
        row("F2 and Escape", "F2", Qt::Key_Escape, "2", "ulb");
        row("Return and Shift+Tab", "Return", Qt::Key_Backtab, "new", "SelectESPPB");
        row("typing and Return", "", Qt::Key_Return, "new", "ulb");
        row("an input method and Down", "commit", Qt::Key_Down, "new", "ulb");
    }
    void EditInPlace() {
        const LoadedWindow job;
        const auto [start, leave, address, heir] =
            Row<QString, Qt::Key, QString, QString>("start", "leave", "address", "heir");
        job.Click(1, 1);
        job.Press(Qt::Key_Space);
        QVERIFY(!job.Editor());
        if (start == "click") job.Click(1, 1);
        if (start == "F2" || start == "Return") Press({QKeySequence(start)[0]});
        QCOMPARE(job.Editor() == nullptr, start.isEmpty() || start == "commit");
        if (start == "commit")
            for (const char* text : {" ", "x", "new"}) Commit(text);  // a blank opens no editor
        else
            job.Type("xnew");  // over the old text
        for (const auto key : {Qt::Key_Home, Qt::Key_Delete, leave}) job.Press(key);
        QTRY_VERIFY(!job.Editor());
        QCOMPARE(QApplication::focusWidget()->objectName(), heir);
        QCOMPARE(job.Column(1), (QStringList{"1", address, "3"}));
        QVERIFY(job.Command().contains("-ca " + address + " -cf @/b.bin"));
    }

    void ALoadTakesOverAnEdit() {
        LoadedWindow job;
        QString taken;
        job.list.CellTextChange = [&](Listbox& list, std::int64_t row, std::int64_t column) {
            taken = QString::fromStdString(list.Cell(row, column));
        };
        job.Click(1, 0);
        job.Press(Qt::Key_F2);
        job.Type("new");
        job.opened.frame->findChild<QMenuBar*>()->setFocus(Qt::MenuBarFocusReason);
        QVERIFY(taken.isEmpty());
        job.Load("up,a.bin,9");
        QCOMPARE(taken, "new");
        QVERIFY(!job.Editor() && job.Column(1) == QStringList{"9"});
    }

    void DoubleClick() {
        for (const int column : {1, 0}) {
            LoadedWindow job;
            QStringList seen;
            job.list.DoubleClick = [&](Listbox&) { seen += job.Editor() ? "open" : "closed"; };
            job.Click(1, 0);
            QTest::mouseDClick(job.Desktop(), Qt::LeftButton, {}, job.InWindow(1, column));
            job.Press(Qt::Key_F2);  // in an editor that was open before it selects a word
            QTest::mouseDClick(job.Desktop(), Qt::LeftButton, {}, job.InWindow(1, 1));
            QVERIFY(job.Editor());
            QCOMPARE(seen, QStringList{"closed"});
        }
    }

    // Ctrl+C copies the current cell, and leaves the clipboard alone where there is none.
    void Copy() {
        const LoadedWindow job;
        job.view->resize(334, 200);
        const auto copied = [&job] {
            QApplication::clipboard()->setText("before");
            QTest::keyClick(job.Desktop(), Qt::Key_C, Qt::ControlModifier);
            return QApplication::clipboard()->text();
        };
        QCOMPARE(copied(), "before");
        QTest::mouseClick(job.view->viewport(), Qt::LeftButton, {}, {20, 150});  // the free space
        QCOMPARE(copied(), "before");
        job.Click(1, 1);
        QCOMPARE(copied(), "2");
    }

    // The rows have colours. An empty address beside a file shows a hint, which is no text.
    void Drawing() {
        const LoadedWindow job("up,a.bin\nup,b.bin\nup,c.bin");
        const auto picture = [&job](int row) {  // of the address, without the line at its end
            return job.view->viewport()->grab(job.Place(row, 1).adjusted(0, 0, -1, 0)).toImage();
        };
        const auto colour = [&](int row) { return picture(row).pixel(0, 9); };
        QVERIFY(colour(0) == 0xFFD2FFF3 && colour(1) == 0xFFD2EDF5 && colour(2) == colour(0));
        job.Click(0, 0);
        QVERIFY(colour(0) != colour(2));  // the selected row
        for (const int row : {0, 1})
            QVERIFY(picture(row).convertToFormat(QImage::Format_Indexed8).colorCount() > 1);
        QCOMPARE(job.Column(1).join("") + job.Command(), "-cd ck -cb 115200 ");
    }

    // A screen reader reads and edits the list.
    void Access() {
        const LoadedWindow job;
        auto* list = QAccessible::queryAccessibleInterface(job.view);
        const auto* table = list->tableInterface();
        auto* cell = table->cellAt(1, 1);
        QCOMPARE(list->child(list->indexOfChild(cell)), cell);
        QCOMPARE(list->childAt(cell->rect().center().x(), cell->rect().center().y()), cell);
        QCOMPARE(cell->tableCellInterface()->columnHeaderCells()[0]->text(QAccessible::Name),
                 "Address(-ca)");
        QVERIFY(!table->cellAt(1, 0)->editableTextInterface());
        QVERIFY(table->columnDescription(9).isEmpty() && !table->cellAt(0, -9));
        const QSignalSpy painted(job.view->model(), &QAbstractItemModel::dataChanged);
        cell->editableTextInterface()->replaceText(-9, 99, "0x2\n0");
        QCOMPARE(painted.size(), 1);
        cell->editableTextInterface()->deleteText(5, 2);
        QCOMPARE(cell->text(QAccessible::Name), "0x2 0");
        QVERIFY(job.Command().contains("-ca 0x2 0 -cf @/b.bin"));
        cell->setText(QAccessible::Value, "");
        QCOMPARE(cell->text(QAccessible::Description), "address");
        cell->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QVERIFY(job.Editor() && cell->state().selected && table->selectedRows() == QList{1});
        job.Load("up,a.bin");
        QVERIFY(!cell->isValid() && !cell->state().selected);
    }

    // A screen reader's questions about a line of text. SIGALRM ends the test if no answer comes.
    void AccessToText_data() {
        const auto row = Columns<bool>("edited");
        row("an address", false);
        row("an address that is edited", true);
    }
    void AccessToText() {
        const LoadedWindow job;
        QFETCH(const bool, edited);
        Press({Qt::Key_Space});
        QCOMPARE(job.list.ListIndex(), 0);
        if (edited) Press({Qt::Key_F2});
        auto* access = QAccessible::queryAccessibleInterface(QApplication::focusWidget());
        if (!edited) access = access->tableInterface()->cellAt(0, 1);
        auto* text = access->textInterface();
        using Text = QAccessibleTextInterface;
        alarm(60);
        for (const QString whole : {"", "ab cd. E", "  ", "a\U0001F600b", "one two"}) {
            access->setText(QAccessible::Value, whole);
            QCOMPARE(access->text(QAccessible::Value), whole);
            const int size = static_cast<int>(whole.size());
            for (int type = QAccessible::CharBoundary; type <= QAccessible::NoBoundary; ++type)
                for (int at = -1; at <= size + 3; ++at)
                    for (const auto ask :
                         {&Text::textBeforeOffset, &Text::textAtOffset, &Text::textAfterOffset}) {
                        int start = -9, end = -9;
                        const auto kind = static_cast<QAccessible::TextBoundaryType>(type);
                        const QString part = (text->*ask)(at, kind, &start, &end);
                        QVERIFY(start >= 0 && start <= end && end <= size);
                        QCOMPARE(part, whole.mid(start, end - start));
                        QVERIFY(!part.isEmpty() || start == size);
                    }
        }
        alarm(0);
        int start = 0, end = 0;
        QCOMPARE(text->textBeforeOffset(7, QAccessible::WordBoundary, &start, &end), "two");
        QCOMPARE(text->textAtOffset(1, QAccessible::WordBoundary, &start, &end), "one");
        QCOMPARE(text->textAfterOffset(3, QAccessible::WordBoundary, &start, &end), "two");
        access->editableTextInterface()->insertText(INT_MAX, "!");
        QCOMPARE(text->text(-9, INT_MAX), "one two!");
        if (!edited) return;
        QVERIFY(access->role() == QAccessible::EditableText && access->state().editable);
        QVERIFY(text->cursorPosition() == 8 && text->selectionCount() == 0);
        QCOMPARE(text->offsetAtPoint(text->characterRect(4).topLeft()), 4);
        for (int at = 0; at < 7; ++at) {  // one beside the other, within the field
            const QRect place = text->characterRect(at), next = text->characterRect(at + 1);
            QVERIFY(access->rect().contains(place) && place.width() > 1 && place.height() > 8);
            QVERIFY(std::abs(next.left() - place.right() - 1) <= 1 && next.top() == place.top());
        }
        text->setSelection(0, 4, INT_MAX);
        text->selection(0, &start, &end);
        QVERIFY(start == 4 && end == 8 && text->selectionCount() == 1);
        Press({Qt::CTRL | Qt::Key_Z});
        QVERIFY(text->text(0, 9) != "one two!");  // an edit can be undone
    }
};

QUILLSTONE_TEST(ListTest)
#include "ListTest.moc"
