#include "platform/qt/LineEdit.h"

#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>

#include "platform/qt/HeldKey.h"
#include "platform/qt/OpenEdit.h"

LineEdit::LineEdit(QWidget* parent) : QLineEdit(parent) { setMaxLength(kLongest); }

void LineEdit::Insert(const QString& text) {
    EndStepOfUndo();
    insert(OneLine(text));
    EndStepOfUndo();
}

void LineEdit::Paste(QClipboard::Mode mode) {
    if (!isReadOnly()) Insert(QGuiApplication::clipboard()->text(mode));
}

void LineEdit::keyPressEvent(QKeyEvent* event) {
    if (!IsModifier(event->key())) EndComposition();
    if (!event->matches(QKeySequence::Paste)) return QLineEdit::keyPressEvent(event);
    // On X11 these keys paste what a middle click would.
    const bool selection = event->keyCombination() == (Qt::CTRL | Qt::SHIFT | Qt::Key_Insert);
    Paste(selection ? QClipboard::Selection : QClipboard::Clipboard);
}

void LineEdit::mousePressEvent(QMouseEvent* event) {
    EndComposition();
    QLineEdit::mousePressEvent(event);
}

void LineEdit::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::MiddleButton) return QLineEdit::mouseReleaseEvent(event);
    deselect();
    if (QGuiApplication::clipboard()->supportsSelection()) Paste(QClipboard::Selection);
}

void LineEdit::dropEvent(QDropEvent* event) {
    QMimeData line;
    line.setText(OneLine(event->mimeData()->text()));
    QDropEvent drop(event->position(), event->possibleActions(), &line, event->buttons(),
                    event->modifiers());
    drop.setDropAction(event->dropAction());
    QLineEdit::dropEvent(&drop);
    event->setDropAction(drop.dropAction());
    event->setAccepted(drop.isAccepted());
}

void LineEdit::inputMethodEvent(QInputMethodEvent* event) {
    QInputMethodEvent line(OneLine(event->preeditString()), event->attributes());
    line.setCommitString(OneLine(event->commitString()), event->replacementStart(),
                         event->replacementLength());
    mComposed = line.preeditString();
    SetComposing(this, [this] { EndComposition(); });
    QLineEdit::inputMethodEvent(&line);
    event->setAccepted(line.isAccepted());
}

void LineEdit::focusOutEvent(QFocusEvent* event) {
    EndComposition();
    QLineEdit::focusOutEvent(event);
}

// Qt's own menu would paste line ends. The window shows its edit items for the field with the
// focus.
void LineEdit::contextMenuEvent(QContextMenuEvent* event) { event->ignore(); }

// Makes text of what is being composed. Qt counts its characters when a key or a click moves the
// cursor, and puts the cursor behind the end of the text.
void LineEdit::EndComposition() {
    if (mComposed.isEmpty()) return;
    QGuiApplication::inputMethod()->commit();
    if (mComposed.isEmpty()) return;
    QInputMethodEvent end;
    end.setCommitString(mComposed);
    inputMethodEvent(&end);
}

// Qt joins insertions to one step of undo until the cursor moves.
void LineEdit::EndStepOfUndo() {
    if (hasSelectedText() || text().isEmpty()) return;
    const int at = cursorPosition();
    setCursorPosition(at > 0 ? at - 1 : 1);
    setCursorPosition(at);
}

QString OneLine(QString text) {
    text.replace("\r\n", " ");
    for (QChar& c : text)
        if (c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = u' ';
    return text;
}
