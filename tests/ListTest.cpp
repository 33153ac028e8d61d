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
    void TypingAfterAClick_data() {
        const auto row = Columns<bool, int>("selected", "wait");
        row("at once, on the selected row", true, 0);
        row("after 80 ms, on the selected row", true, 80);
        row("after 300 ms, on the selected row", true, 300);
        row("at once, on another row", false, 0);
    }
    void TypingAfterAClick() {
        const LoadedWindow job;
        const auto [selected, wait] = Row<bool, int>("selected", "wait");
        if (selected) job.Click(1, 0);
        job.Click(1, 1);
        job.Type("0x20000", wait, 80);
        job.Press(Qt::Key_Tab);
        QCOMPARE(job.Column(1), (QStringList{"1", "0x20000", "3"}));
        QCOMPARE(QApplication::focusWidget()->objectName(), "DeletePB");
    }

    void EditInPlace_data() {
        const auto row =
            Columns<Qt::Key, Qt::Key, QString, QString>("start", "leave", "address", "heir");
        // A click starts it where no key does.
        row("a click and Tab", Qt::Key_unknown, Qt::Key_Tab, "new", "DeletePB");
        row("a click and Down", Qt::Key_unknown, Qt::Key_Down, "new", "ulb");
        row("F2 and Return", Qt::Key_F2, Qt::Key_Return, "new", "ulb");
        row("F2 and Escape", Qt::Key_F2, Qt::Key_Escape, "2", "ulb");
        row("Return and Shift+Tab", Qt::Key_Return, Qt::Key_Backtab, "new", "SelectESPPB");
    }
    void EditInPlace() {
        const LoadedWindow job;
        const auto [start, leave, address] =
            Row<Qt::Key, Qt::Key, QString>("start", "leave", "address");
        job.Click(1, 1);
        QVERIFY(!job.Editor());
        start == Qt::Key_unknown ? job.Click(1, 1) : job.Press(start);
        job.Type("xnew");  // over the old text
        job.Press(Qt::Key_Home);
        job.Press(Qt::Key_Delete);
        job.Press(leave);
        QTRY_VERIFY(!job.Editor());
        QTEST(QApplication::focusWidget()->objectName(), "heir");
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

    void InputMethod() {
        const LoadedWindow job;
        job.Press(Qt::Key_End);
        for (const char* text : {" ", "0", "x2"}) {
            QInputMethodEvent event;
            event.setCommitString(text);
            QApplication::sendEvent(QApplication::focusWidget(), &event);
        }
        job.Press(Qt::Key_Tab);
        QCOMPARE(job.Column(1)[2], "0x2");
    }

    void DoubleClick_data() {
        const auto row = Columns<int, int>("selectedRow", "column");
        row("an address of the selected row", 1, 1);
        row("a file", 1, 0);
    }
    void DoubleClick() {
        LoadedWindow job;
        const auto [selectedRow, column] = Row<int, int>("selectedRow", "column");
        QStringList seen;
        job.list.DoubleClick = [&](Listbox&) { seen += job.Editor() ? "open" : "closed"; };
        job.Click(selectedRow, 0);
        QTest::mouseDClick(job.Desktop(), Qt::LeftButton, {}, job.InWindow(1, column));
        job.Press(Qt::Key_F2);  // in an editor that was open before it selects a word
        QTest::mouseDClick(job.Desktop(), Qt::LeftButton, {}, job.InWindow(1, 1));
        QVERIFY(job.Editor());
        QCOMPARE(seen, QStringList{"closed"});
    }

    void SelectByKeys_data() {
        const auto row = Columns<QString, int>("keys", "row");
        row("Up from none", "Up", 2);
        row("the space bar, again and again", "Space, Space, Space", 0);
        row("the space bar on a row", "End, Space, Ctrl+Space", 2);
        row("End", "Down, End", 2);
        row("Home", "Up, Home", 0);
        row("Shift with others", "Home, Shift+Down, Shift+Down, Shift+Up", 1);
        row("a letter from none", "C", -1);
    }
    void SelectByKeys() {
        const LoadedWindow job;
        QFETCH(const QString, keys);
        QTest::keySequence(job.Desktop(), QKeySequence(keys));
        QTEST(static_cast<int>(job.list.ListIndex()), "row");
        QVERIFY(!job.Editor() && job.view->selectionModel()->selectedRows().size() <= 1);
        QCOMPARE(job.Column(1), (QStringList{"1", "2", "3"}));
    }

    // Ctrl+C copies the current cell, and leaves the clipboard alone where there is none.
    void Copy_data() {
        const auto row = Columns<Qt::Key, int, QString>("key", "clickRow", "copied");
        row("without a current cell", Qt::Key_unknown, -1, "before");
        row("after a click into the free space", Qt::Key_unknown, 9, "before");
        row("after a click on an address", Qt::Key_unknown, 1, "2");
        row("after a row has gone", Qt::Key_Delete, 2, "before");
    }
    void Copy() {
        const LoadedWindow job;
        const auto [key, clickRow] = Row<Qt::Key, int>("key", "clickRow");
        job.view->resize(334, 200);
        QApplication::clipboard()->setText("before");
        if (clickRow == 9)
            QTest::mouseClick(job.view->viewport(), Qt::LeftButton, {}, {20, 150});
        else if (clickRow >= 0)
            job.Click(clickRow, 1);
        if (key != Qt::Key_unknown) job.Press(key);
        QTest::keyClick(job.Desktop(), Qt::Key_C, Qt::ControlModifier);
        QTEST(QApplication::clipboard()->text(), "copied");
    }

    void Colours() {
        const LoadedWindow job;
        job.view->resize(334, 200);
        const auto colour = [&job](int row, int column) {
            const QImage cell = job.Picture(row, column);
            return cell.pixel(cell.width() - 3, cell.height() / 2);
        };
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 2; ++column)
                QCOMPARE(colour(row, column), row == 1 ? 0xFFD2EDF5 : 0xFFD2FFF3);
        job.Click(2, 0);
        QVERIFY(colour(2, 0) != 0xFFD2FFF3 && colour(1, 0) == 0xFFD2EDF5);
    }

    // An empty address cell beside a file shows a hint, which isn't part of its text.
    void Hint() {
        const LoadedWindow job("up,a.bin\nup,b.bin");
        const auto isPlain = [&job](int row) {
            const QImage cell = job.Picture(row, 1);
            return cell == cell.copy(cell.width() - 1, 0, 1, 1).scaled(cell.size());
        };
        job.Click(0, 0);
        QVERIFY(!isPlain(0) && !isPlain(1));
        QCOMPARE(job.Column(1).join("") + job.Command(), "-cd ck -cb 115200 ");
        for (const auto key : {Qt::Key_Delete, Qt::Key_Home, Qt::Key_Delete}) job.Press(key);
        QVERIFY(job.Column(0)[0].isEmpty() && isPlain(0));
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
        const auto row = Columns<bool, bool>("list", "editor");
        row("a field", false, true);
        row("an address", true, false);
        row("an address that is edited", true, true);
    }
    void AccessToText() {
        const LoadedWindow job;
        const auto [list, editor] = Row<bool, bool>("list", "editor");
        job.Press(Qt::Key_Home);
        if (editor) list ? job.Press(Qt::Key_F2) : job.opened.TabTo("ResetEF");
        auto* access = QAccessible::queryAccessibleInterface(QApplication::focusWidget());
        if (!editor) access = access->tableInterface()->cellAt(0, 1);
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
        QCOMPARE(text->textAtOffset(7, QAccessible::WordBoundary, &start, &end), "");
        QCOMPARE(text->textAtOffset(7, QAccessible::LineBoundary, &start, &end), "one two");
        access->editableTextInterface()->insertText(INT_MAX, "!");
        QCOMPARE(text->text(-9, INT_MAX), "one two!");
        if (!editor) return;
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
