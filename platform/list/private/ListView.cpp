#include "platform/list/private/ListView.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <utility>

#include "platform/qt/HeldKey.h"

QModelIndex ListView::EditableCell(int row) const {
    for (int column = 0; column < model()->columnCount(); ++column) {
        const QModelIndex cell = model()->index(row, column);
        if (cell.flags().testFlag(Qt::ItemIsEditable)) return cell;
    }
    return {};
}

ListView::ListView(QWidget* parent) : QTableView(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    // Clicks, F2 and Return are handled below. Qt's own trigger for a click on the selected row
    // waits for a double click, and loses the keys that come meanwhile.
    setEditTriggers(AnyKeyPressed);
    setTabKeyNavigation(false);
    setShowGrid(false);
    setWordWrap(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setCornerButtonEnabled(false);
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(1);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setMinimumSectionSize(1);
}

// Also gets the keys that an open editor ignores, such as Up and Down.
void ListView::keyPressEvent(QKeyEvent* event) {
    if (state() == EditingState || !TakeKey(*event)) QTableView::keyPressEvent(event);
}

// Returns false to leave the key to Qt. Qt's own Up and Down start from the current row, even if it
// isn't selected; its Home and End go to the ends of the row; its Space replaces the cell's text.
bool ListView::TakeKey(QKeyEvent& event) {
    const bool modified =
        event.modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const int row = SelectedRow();
    if (event.matches(QKeySequence::Copy))
        return row < 0;  // Qt copies the current cell, which isn't shown
    switch (event.key()) {
        case Qt::Key_Home:
            SelectRow(0);
            return true;
        case Qt::Key_End:
            SelectRow(model()->rowCount() - 1);
            return true;
        case Qt::Key_Space:
        case Qt::Key_Select:
            if (row < 0) SelectRow(0);
            return true;
        case Qt::Key_Down:
            if (row < 0) SelectRow(0);
            return row < 0;
        case Qt::Key_Up:
            if (row < 0) SelectRow(model()->rowCount() - 1);
            return row < 0;
        case Qt::Key_Delete:
            if (row >= 0 && !modified && !KeyIsHeld() && DeletePressed) DeletePressed();
            return true;
        case Qt::Key_F2:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (row < 0 || modified || KeyIsHeld()) return false;
            EditRow(row);
            return true;
        default:
            break;
    }
    if (modified || event.text().isEmpty() || !event.text()[0].isPrint()) return false;
    if (const QModelIndex cell = EditableCell(row); cell.isValid()) {
        setCurrentIndex(cell);
        edit(cell, AnyKeyPressed, &event);
    }
    return true;
}

// If an input method commits text without composing it first, Qt opens the editor and drops the
// text.
void ListView::inputMethodEvent(QInputMethodEvent* event) {
    const QString& text = event->commitString();
    if (state() == EditingState || text.isEmpty()) {
        if (SelectedRow() >= 0) QTableView::inputMethodEvent(event);
    } else if (!text.trimmed().isEmpty()) {
        EditRow(SelectedRow());
        if (QWidget* editor = indexWidget(currentIndex()))
            QCoreApplication::sendEvent(editor, event);
    }
}

void ListView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex cell = indexAt(event->position().toPoint());
    const bool edits = event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier &&
                       selectionModel()->isSelected(cell) &&
                       cell.flags().testFlag(Qt::ItemIsEditable);
    mPressed = edits ? cell : QModelIndex();
    QTableView::mousePressEvent(event);
}

void ListView::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    const QPersistentModelIndex pressed = std::exchange(mPressed, {});
    if (pressed.isValid() && pressed == indexAt(event->position().toPoint())) edit(pressed);
}

void ListView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && DoubleClicked) DoubleClicked();
}

void ListView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
}

void ListView::SetFixedWidth(int width) {
    QHeaderView& header = *horizontalHeader();
    header.setSectionResizeMode(QHeaderView::Fixed);
    header.setDefaultSectionSize(width);
    header.setSectionResizeMode(0, QHeaderView::Stretch);
}

int ListView::SelectedRow() const {
    const auto rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.front().row();
}

void ListView::SelectRow(int row) {
    if (row >= 0 && row < model()->rowCount()) selectRow(row);
}

void ListView::EditRow(int row) {
    const QModelIndex cell = EditableCell(row);
    if (!cell.isValid()) return;
    setCurrentIndex(cell);
    edit(cell);
}
