#include "platform/qt/AccessibleLineEdit.h"

#include <QAccessibleWidget>
#include <QLineEdit>
#include <QTextLayout>
#include <algorithm>

#include "platform/qt/AccessibleLine.h"
#include "platform/qt/LineEdit.h"

namespace {

class AccessibleLineEdit : public QAccessibleWidget, public AccessibleLine {
  public:
    explicit AccessibleLineEdit(QLineEdit& line)
        : QAccessibleWidget(&line, QAccessible::EditableText), mLine(line) {}

    void* interface_cast(QAccessible::InterfaceType type) override;
    QAccessible::State state() const override;
    using AccessibleLine::text;
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? mLine.text() : QAccessibleWidget::text(kind);
    }
    void setText(QAccessible::Text kind, const QString& text) override {
        kind == QAccessible::Value ? replaceText(0, -1, text)
                                   : QAccessibleWidget::setText(kind, text);
    }

    void selection(int index, int* start, int* end) const override;
    int selectionCount() const override { return mLine.hasSelectedText() ? 1 : 0; }
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int index) override {
        if (index == 0) mLine.deselect();
    }
    void setSelection(int index, int start, int end) override;
    int cursorPosition() const override { return mLine.cursorPosition(); }
    void setCursorPosition(int position) override { mLine.setCursorPosition(position); }
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint& point) const override {
        return mLine.cursorPositionAt(mLine.mapFromGlobal(point));
    }
    void scrollToSubstring(int start, int end) override {
        mLine.setCursorPosition(end);
        mLine.setCursorPosition(start);
    }

  protected:
    QString WholeText() const override { return mLine.text(); }
    // Edits as the keyboard does, so that the user can undo it.
    void Replace(int start, int length, const QString& text) override {
        mLine.setSelection(start, length);
        mLine.insert(OneLine(text));
    }

  private:
    QLineEdit& mLine;
};

void* AccessibleLineEdit::interface_cast(QAccessible::InterfaceType type) {
    switch (type) {
        case QAccessible::TextInterface:
            return static_cast<QAccessibleTextInterface*>(this);
        case QAccessible::EditableTextInterface:
            return static_cast<QAccessibleEditableTextInterface*>(this);
        default:
            return QAccessibleWidget::interface_cast(type);
    }
}

QAccessible::State AccessibleLineEdit::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.editable = state.selectableText = true;
    return state;
}

void AccessibleLineEdit::selection(int index, int* start, int* end) const {
    const bool selected = index == 0 && mLine.hasSelectedText();
    *start = selected ? mLine.selectionStart() : 0;
    *end = selected ? mLine.selectionEnd() : 0;
}

void AccessibleLineEdit::setSelection(int index, int start, int end) {
    if (index != 0) return;
    const int size = characterCount();
    start = std::clamp(start, 0, size);
    mLine.setSelection(start, std::clamp(end, 0, size) - start);
}

// Qt tells the place of the caret alone. The other characters' places are measured from there.
QRect AccessibleLineEdit::characterRect(int offset) const {
    if (offset < 0 || offset >= characterCount()) return {};
    QTextLayout layout(mLine.displayText(), mLine.font());
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    const QRect caret = mLine.inputMethodQuery(Qt::ImCursorRectangle).toRect();
    const qreal origin = caret.center().x() - line.cursorToX(mLine.cursorPosition());
    const qreal left = origin + line.cursorToX(offset);
    const qreal right = origin + line.cursorToX(offset + 1);
    const QRect place(qRound(left), caret.top(), qRound(right - left), caret.height());
    return {mLine.mapToGlobal(place.topLeft()), place.size()};
}

QAccessibleInterface* Create(const QString&, QObject* object) {
    auto* line = qobject_cast<QLineEdit*>(object);
    return line != nullptr && line->echoMode() == QLineEdit::Normal && !line->isReadOnly()
               ? new AccessibleLineEdit(*line)
               : nullptr;
}

}  // namespace

void InstallAccessibleLineEdit() { QAccessible::installFactory(Create); }
