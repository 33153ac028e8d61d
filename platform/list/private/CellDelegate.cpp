#include "platform/list/private/CellDelegate.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTableView>
#include <utility>

#include "platform/controls/TextEdit.h"
#include "platform/list/Graphics.h"
#include "platform/list/private/ListModel.h"
#include "platform/list/private/ListView.h"
#include "platform/qt/HeldKey.h"

namespace {

constexpr qsizetype kShown = 2000;  // characters that are painted; more never fit

// At least 4.5 to 1 against both colours of the rows and against a row that is selected while the
// list has no focus.
constexpr QRgb kHintColor = 0xFF555555;

using BackgroundPainter = std::function<bool(Graphics&, int row, int column)>;

class CellDelegate : public QStyledItemDelegate {
  public:
    CellDelegate(QTableView& view, BackgroundPainter paintBackground)
        : QStyledItemDelegate(&view), mView(view), mPaintBackground(std::move(paintBackground)) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* widget, const QModelIndex& index) const override;
    void setModelData(QWidget* widget, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void Commit(QWidget* editor);

    QTableView& mView;
    const BackgroundPainter mPaintBackground;
};

class Editor : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;

    QString given;            // the text that it was opened with
    bool wasPressed = false;  // by the mouse, since it was opened
};

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const QRect& cell = option.rect;
    painter->save();
    painter->setClipRect(cell);
    painter->translate(cell.topLeft());
    Graphics graphics(painter, cell.width(), cell.height());
    const bool claimed =
        mPaintBackground && mPaintBackground(graphics, index.row(), index.column());
    painter->restore();
    if (claimed) return;

    QStyledItemDelegate::paint(painter, option, index);
    if (index.column() + 1 < index.model()->columnCount()) {
        painter->setPen(option.palette.color(QPalette::Mid));
        painter->drawLine(cell.topRight(), cell.bottomRight());
    }
}

void CellDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    // The selected row shows where the focus is, by its colour.
    option->state.setFlag(QStyle::State_HasFocus, false);
    if (!mView.hasFocus()) option->state.setFlag(QStyle::State_Active, false);
    option->text.truncate(kShown);
    option->text.replace(QChar::LineSeparator, u' ');  // of a file's name

    const QString hint = index.data(ListModel::kHintRole).toString();
    if (hint.isEmpty()) return;
    option->text = hint;
    option->features |= QStyleOptionViewItem::HasDisplay;
    option->font.setItalic(true);
    option->palette.setColor(QPalette::Text, kHintColor);
    option->palette.setColor(QPalette::Inactive, QPalette::HighlightedText, kHintColor);
}

QWidget* CellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                    const QModelIndex& index) const {
    auto* editor = new Editor(parent);
    editor->setFrame(false);
    editor->setMaxLength(kLongestLine);
    editor->setFont(mView.font());
    editor->setAccessibleName(index.model()->headerData(index.column(), Qt::Horizontal).toString());
    return editor;
}

// The editor covers the whole cell, so no click can hit the cell beside it.
void CellDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                        const QModelIndex&) const {
    editor->setGeometry(option.rect);
}

void CellDelegate::setEditorData(QWidget* widget, const QModelIndex& index) const {
    QStyledItemDelegate::setEditorData(widget, index);
    auto* editor = static_cast<Editor*>(widget);
    editor->given = editor->text();
}

// A text that is too long for the editor stays whole unless the user changes it.
void CellDelegate::setModelData(QWidget* widget, QAbstractItemModel* model,
                                const QModelIndex& index) const {
    const auto* editor = static_cast<Editor*>(widget);
    if (editor->text() != editor->given) QStyledItemDelegate::setModelData(widget, model, index);
}

void CellDelegate::Commit(QWidget* editor) {
    emit commitData(editor);
    emit closeEditor(editor, NoHint);
}

bool CellDelegate::eventFilter(QObject* object, QEvent* event) {
    auto* editor = static_cast<Editor*>(object);
    switch (event->type()) {
        case QEvent::KeyPress: {
            const int key = static_cast<QKeyEvent*>(event)->key();
            // A Return that is held since it opened the editor doesn't close it.
            if ((key == Qt::Key_Return || key == Qt::Key_Enter) && KeyIsHeld()) return true;
            if (key != Qt::Key_Tab && key != Qt::Key_Backtab) break;
            Commit(editor);
            FocusNeighbour(mView, key == Qt::Key_Tab);
            return true;
        }
        case QEvent::MouseButtonPress:
            editor->wasPressed = true;
            break;
        // The click that opened the editor was the first half of a double click on the list.
        case QEvent::MouseButtonDblClick:
            if (editor->wasPressed) break;
            Commit(editor);
            RaiseDoubleClicked(mView);
            return true;
        // The menu bar gives the focus back, and its items act on the editor meanwhile.
        case QEvent::FocusOut:
            if (static_cast<QFocusEvent*>(event)->reason() == Qt::MenuBarFocusReason) return false;
            break;
        default:
            break;
    }
    return QStyledItemDelegate::eventFilter(object, event);
}

}  // namespace

QAbstractItemDelegate* NewCellDelegate(QTableView& view, BackgroundPainter paintBackground) {
    return new CellDelegate(view, std::move(paintBackground));
}
