#include "platform/controls/private/TextPane.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionFrame>
#include <QTextBlock>
#include <QTextLayout>

#include "platform/controls/private/LongLines.h"
#include "platform/qt/HeldKey.h"
#include "platform/qt/OpenEdit.h"
#include "platform/qt/QtText.h"

namespace {

constexpr int kStripHeight = 3;
constexpr int kBorder = 2;  // room for the focus ring

// In a pane narrower than a character Qt shows and hides the scroll bar for ever. In a pane lower
// than a line, Page Down crashes.
constexpr QSize kSmallest(48, 24);

// To break a line, Qt scans from its start to the end of its last word. So the time for a very long
// word grows with the square of its length.
bool HasVeryLongWord(const QString& text) {
    constexpr qsizetype kVeryLong = 8192;
    qsizetype length = 0;
    for (const QChar c : text) {
        length = c.isSpace() ? 0 : length + 1;
        if (length > kVeryLong) return true;
    }
    return false;
}

// Qt shows U+2028 as a break within its paragraph. In a command a break is a line end.
QString WithLineEnds(QString text) { return text.replace(QChar::LineSeparator, u'\n'); }

}  // namespace

TextPane::TextPane(QWidget* parent) : QPlainTextEdit(parent) {
    setMinimumSize(kSmallest);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setLineWidth(kBorder);
    setViewportMargins(0, kStripHeight - kBorder, 0, 0);
    document()->setDocumentMargin(3);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    SetLimits(500'000, 50'000'000);
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (mOwnChange) return;
        mSet.reset();
        if (Edited) Edited();
    });
}

std::string TextPane::Text() const {
    if (mSet) return mSet->text;
    return FromQt(OutputBetween(*document(), 0, document()->characterCount() - 1));
}

void TextPane::SetText(std::string_view text) {
    const bool showingIsDue = mSet && !mSet->isShown;
    mSet = TextThatWasSet{std::string(text)};
    if (!showingIsDue) QMetaObject::invokeMethod(this, &TextPane::ShowText, Qt::QueuedConnection);
}

void TextPane::ShowText() {
    if (!mSet || mSet->isShown) return;
    mSet->isShown = true;
    mOwnChange = true;
    const QString text = ToQt(mSet->text);
    ChooseWrapping(text);
    setPlainText(text);
    mOwnChange = false;
}

void TextPane::SetLimits(int paragraphs, int characters) {
    mMostParagraphs = paragraphs;
    mMostCharacters = characters;
}

void TextPane::Append(const QString& text) {
    ShowText();
    mSet.reset();
    mOwnChange = true;
    AppendOutput(*document(), text);
    DropOldest();
    mOwnChange = false;
    mAnnouncer.Announce(text);
}

// Qt's setMaximumBlockCount takes twice the time, since it lays out each paragraph that it drops.
void TextPane::DropOldest() {
    while (blockCount() > 1 &&
           (blockCount() > mMostParagraphs || document()->characterCount() > mMostCharacters)) {
        const int count = std::max(1, blockCount() / 64);
        QTextCursor oldest(document());
        oldest.setPosition(document()->findBlockByNumber(count).position(),
                           QTextCursor::KeepAnchor);
        oldest.removeSelectedText();
    }
}

void TextPane::SetBusy(bool busy) {
    delete std::exchange(mStrip, nullptr);
    if (!busy) return;
    mStrip = new QProgressBar(this);
    mStrip->setRange(0, 0);  // without an end it moves to and fro
    mStrip->setTextVisible(false);
    // The application's style shows no movement at this height.
    const QColor moving = palette().color(QPalette::Active, QPalette::Highlight);
    mStrip->setStyleSheet(
        "QProgressBar { border: none; background: palette(midlight) }"
        "QProgressBar::chunk { width: 64px; background: " +
        moving.name() + " }");
    mStrip->setGeometry(0, 0, width(), kStripHeight);
    mStrip->show();
}

// Qt calls it for a copy and for a drag.
QMimeData* TextPane::createMimeDataFromSelection() const {
    const QTextCursor selection = textCursor();
    auto* copied = new QMimeData;
    copied->setText(
        OutputBetween(*document(), selection.selectionStart(), selection.selectionEnd()));
    return copied;
}

void TextPane::insertFromMimeData(const QMimeData* source) {
    QMimeData lines;
    lines.setText(WithLineEnds(source->text()));
    ChooseWrapping(document()->toRawText() + lines.text());
    QPlainTextEdit::insertFromMimeData(&lines);
}

void TextPane::keyPressEvent(QKeyEvent* event) {
    if (!IsModifier(event->key())) EndComposition();
    // Shift+Return begins a new paragraph, as Return does.
    if (!event->matches(QKeySequence::InsertLineSeparator) || isReadOnly())
        return QPlainTextEdit::keyPressEvent(event);
    textCursor().insertBlock();
    ensureCursorVisible();
}

void TextPane::inputMethodEvent(QInputMethodEvent* event) {
    if (isReadOnly()) return event->ignore();  // Qt would edit the text all the same
    DropComposition();
    // First the commit, then the new composition: Qt would show both in the line where the commit
    // began.
    QInputMethodEvent commit;
    commit.setCommitString(WithLineEnds(event->commitString()), event->replacementStart(),
                           event->replacementLength());
    QPlainTextEdit::inputMethodEvent(&commit);
    QInputMethodEvent compose(event->preeditString(), event->attributes());
    QPlainTextEdit::inputMethodEvent(&compose);
    mComposition = textCursor();
    SetComposing(this, [this] { EndComposition(); });
}

QString TextPane::Composed() const {
    const QTextBlock line = mComposition.block();
    return line.isValid() ? line.layout()->preeditAreaText() : QString();
}

// Takes what is being composed out of the layout. Qt leaves it there when the cursor goes to
// another line.
void TextPane::DropComposition() {
    if (Composed().isEmpty()) return;
    const QTextBlock line = mComposition.block();
    line.layout()->setPreeditArea(-1, {});
    document()->markContentsDirty(line.position(), line.length());
}

// Makes text of what is being composed. Otherwise Qt counts its characters when a key moves the
// cursor, and puts the cursor behind the end of the text.
void TextPane::EndComposition() {
    ShowText();  // it replaces the text in which the composition was
    if (Composed().isEmpty()) return;
    QGuiApplication::inputMethod()->commit();
    const QString composed = Composed();
    DropComposition();
    mComposition.insertText(composed);
}

// A pane that showed its end still shows it.
void TextPane::resizeEvent(QResizeEvent* event) {
    const QScrollBar& bar = *verticalScrollBar();
    const bool atEnd = bar.value() == bar.maximum() && (bar.maximum() > 0 || isReadOnly());
    QPlainTextEdit::resizeEvent(event);
    if (atEnd) verticalScrollBar()->setValue(bar.maximum());
    if (mStrip) mStrip->resize(width(), kStripHeight);
}

void TextPane::focusInEvent(QFocusEvent* event) {
    QPlainTextEdit::focusInEvent(event);
    update();
}

void TextPane::focusOutEvent(QFocusEvent* event) {
    EndComposition();
    QPlainTextEdit::focusOutEvent(event);
    update();
}

bool TextPane::event(QEvent* event) {
    ShowBeforeInput(*event);
    if (event->type() != QEvent::Paint) return QPlainTextEdit::event(event);
    PaintFrame();
    return true;
}

bool TextPane::viewportEvent(QEvent* event) {
    ShowBeforeInput(*event);
    return QPlainTextEdit::viewportEvent(event);
}

void TextPane::ChooseWrapping(const QString& text) {
    setWordWrapMode(HasVeryLongWord(text) ? QTextOption::WrapAnywhere
                                          : QTextOption::WrapAtWordBoundaryOrAnywhere);
}

// The same frame as a one-line field's, with its focus ring.
void TextPane::PaintFrame() {
    QPainter painter(this);
    QStyleOptionFrame option;
    option.initFrom(this);
    option.lineWidth = 1;
    option.state |= QStyle::State_Sunken;
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
}

// An input event may be delivered before the event that SetText has posted: the system's events
// aren't in the same queue. The user's input must meet the text that was set, not the former one.
void TextPane::ShowBeforeInput(const QEvent& event) {
    switch (event.type()) {
        case QEvent::KeyPress:
        case QEvent::InputMethod:
        case QEvent::MouseButtonPress:
        case QEvent::Drop:
        case QEvent::ContextMenu:
        case QEvent::FocusIn:
            ShowText();
            break;
        default:
            break;
    }
}
