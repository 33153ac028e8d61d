#include "platform/list/private/CellDelegate.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <utility>

#include "platform/list/Graphics.h"
#include "platform/list/private/ListModel.h"
#include "platform/list/private/ListView.h"
#include "platform/qt/HeldKey.h"
#include "platform/qt/LineEdit.h"
#include "platform/qt/OpenEdit.h"

namespace {

constexpr qsizetype kShown = 2000;  // characters that are painted; no cell is wide enough for more

// Its contrast is at least 4.5 to 1 on both colours of the rows, and on a selected row of a list
// without the focus.
constexpr QRgb kHintColor = 0xFF555555;

class Editor : public LineEdit {
  public:
    using LineEdit::LineEdit;

    QString given;            // the text at the start of the edit
    bool wasPressed = false;  // the mouse was pressed in it
};

}  // namespace

CellDelegate::CellDelegate(ListView& view, BackgroundPainter paintBackground)
    : QStyledItemDelegate(&view), mView(view), mPaintBackground(std::move(paintBackground)) {}

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const QRect& cell = option.rect;
    painter->save();
    painter->setClipRect(cell);
    painter->translate(cell.topLeft());
    Graphics graphics(cell.width(), cell.height(), [painter](const FilledRect& rect) {
        painter->fillRect(QRectF(static_cast<qreal>(rect.left), static_cast<qreal>(rect.top),
                                 static_cast<qreal>(rect.width), static_cast<qreal>(rect.height)),
                          QColor::fromRgb(rect.color));
    });
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
    // The colour of the selected row shows that the list has the focus, so no frame is needed.
    option->state.setFlag(QStyle::State_HasFocus, false);
    if (!mView.hasFocus()) option->state.setFlag(QStyle::State_Active, false);
    option->text.truncate(kShown);
    option->text.replace(QChar::LineSeparator, u' ');  // a file's name may have it

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
    editor->setFont(mView.font());
    editor->setAccessibleName(index.model()->headerData(index.column(), Qt::Horizontal).toString());
    auto* delegate = const_cast<CellDelegate*>(this);
    // While the view closes an editor it moves the focus, which asks for a commit once more.
    SetOpenEditor(editor, [=, cell = QPersistentModelIndex(index)] {
        if (delegate->mView.indexWidget(cell) == editor) delegate->Commit(editor);
    });
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

// The editor cuts a very long text off. The cell keeps it whole unless the user changes it.
void CellDelegate::setModelData(QWidget* widget, QAbstractItemModel* model,
                                const QModelIndex& index) const {
    EndComposing();
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
            // The Return that opened the editor may still be held. It must not close it.
            if ((key == Qt::Key_Return || key == Qt::Key_Enter) && KeyIsHeld()) return true;
            if (key != Qt::Key_Tab && key != Qt::Key_Backtab) break;
            Commit(editor);
            mView.FocusNeighbour(key == Qt::Key_Tab);
            return true;
        }
        case QEvent::MouseButtonPress:
            editor->wasPressed = true;
            break;
        // The click that opened the editor was the first half of a double click on the list.
        case QEvent::MouseButtonDblClick:
            if (editor->wasPressed) break;
            Commit(editor);
            if (mView.DoubleClicked) mView.DoubleClicked();
            return true;
        // The items of the edit menu act on the editor. OpenEdit.cpp closes it if the focus doesn't
        // come back from the menu bar.
        case QEvent::FocusOut:
            if (static_cast<QFocusEvent*>(event)->reason() == Qt::MenuBarFocusReason) return false;
            break;
        default:
            break;
    }
    return QStyledItemDelegate::eventFilter(object, event);
}
