#include <QMimeData>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStyleOptionFrame>
#include <algorithm>
#include <limits>
#include <optional>

#include "platform/controls/TextEdit.h"
#include "platform/controls/private/Announcer.h"
#include "platform/controls/private/BusyStrip.h"
#include "platform/controls/private/LineLayout.h"
#include "platform/controls/private/NewestOutput.h"
#include "platform/controls/private/Paragraphs.h"
#include "platform/qt/Native.h"
#include "platform/qt/QtText.h"

// The widget shows a text that was set when the event loop comes round, or at the next input
// event: a command that is composed several times within one handler is laid out once.
struct TextArea::State : public QPlainTextEdit {
    State(TextArea& area, QWidget* parent) : QPlainTextEdit(parent), mArea(area) {
        setFrameStyle(QFrame::Box | QFrame::Plain);
        setLineWidth(2);  // room for the focus ring
        setViewportMargins(0, BusyStrip::kHeight - lineWidth(), 0, 0);
        document()->setDocumentMargin(3);
        setTabChangesFocus(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        InstallLineLayout(*document());
        connect(this, &QPlainTextEdit::textChanged, this, [this] {
            if (mOwnChange) return;
            mSet.reset();
            mArea.Raise(mArea.TextChange);
        });
    }

    void Set(std::string_view text) {
        const bool showingIsDue = mSet && !mSet->shown;
        mSet = SetText{std::string(text)};
        if (!showingIsDue) QMetaObject::invokeMethod(this, &State::ShowSet, Qt::QueuedConnection);
    }

    void ShowSet() {
        if (!mSet || mSet->shown) return;
        mSet->shown = true;
        mOwnChange = true;
        mNewest.Restart();
        const QString text = ToQt(mSet->text);
        ChooseWrapping(text);
        if (text.size() <= kLongestParagraph) {
            setPlainText(text);
        } else {
            clear();
            AppendParagraphs(*document(), text);
            document()->clearUndoRedoStacks();
            moveCursor(QTextCursor::Start);
        }
        mOwnChange = false;
    }

    std::string Read() const {
        if (mSet) return mSet->text;
        return FromQt(TextBetween(*document(), 0, document()->characterCount() - 1));
    }

    void Append(const QString& text) {
        ShowSet();
        mSet.reset();
        mOwnChange = true;
        AppendParagraphs(*document(), text);
        mNewest.Keep(*document());
        mOwnChange = false;
        mAnnouncer.Announce(text);
    }

    void ScrollTo(int line) {
        ShowSet();
        verticalScrollBar()->setValue(line);
    }

    BusyStrip mBusy{*this};
    NewestOutput mNewest;

  protected:
    // What is copied or dragged out, without the line ends that stand only in the document.
    QMimeData* createMimeDataFromSelection() const override {
        const QTextCursor selection = textCursor();
        auto* copied = new QMimeData;
        copied->setText(
            TextBetween(*document(), selection.selectionStart(), selection.selectionEnd()));
        return copied;
    }
    // What is pasted or dropped is laid out as a text that was set.
    void insertFromMimeData(const QMimeData* source) override {
        if (isReadOnly() || !source->hasText()) return;
        const QString text = source->text();
        ChooseWrapping(document()->toRawText() + text);
        InsertParagraphs(textCursor(), text);
        ensureCursorVisible();
    }

    // A line end that is typed begins a line, also within a very long one.
    void keyPressEvent(QKeyEvent* event) override {
        const int paragraphs = document()->blockCount();
        QPlainTextEdit::keyPressEvent(event);
        const int added = document()->blockCount() - paragraphs;
        if (added == 1 && textCursor().atBlockStart()) BeginLine(textCursor());
    }

    // A pane that showed its end still shows it.
    void resizeEvent(QResizeEvent* event) override {
        const QScrollBar& bar = *verticalScrollBar();
        const bool atEnd = bar.value() == bar.maximum() && (bar.maximum() > 0 || isReadOnly());
        SetLineWidth(*document(), viewport()->width());
        // For another width the base class would have the layout of every paragraph allocated.
        QResizeEvent sameWidth(event->size(), {event->size().width(), event->oldSize().height()});
        QPlainTextEdit::resizeEvent(&sameWidth);
        if (atEnd) verticalScrollBar()->setValue(bar.maximum());
    }

    void focusInEvent(QFocusEvent* event) override {
        QPlainTextEdit::focusInEvent(event);
        update();
    }
    void focusOutEvent(QFocusEvent* event) override {
        QPlainTextEdit::focusOutEvent(event);
        update();
    }

    bool event(QEvent* event) override {
        ShowBeforeInput(*event);
        if (event->type() == QEvent::Paint) {
            PaintFrame();
            return true;
        }
        return QPlainTextEdit::event(event);
    }
    bool viewportEvent(QEvent* event) override {
        ShowBeforeInput(*event);
        return QPlainTextEdit::viewportEvent(event);
    }

  private:
    void ChooseWrapping(const QString& text) {
        setWordWrapMode(HasVeryLongWord(text) ? QTextOption::WrapAnywhere
                                              : QTextOption::WrapAtWordBoundaryOrAnywhere);
    }

    // The same frame as a one-line field's, with its focus ring.
    void PaintFrame() {
        QPainter painter(this);
        QStyleOptionFrame option;
        option.initFrom(this);
        option.lineWidth = 1;
        option.state |= QStyle::State_Sunken;
        style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
        mBusy.Paint(painter);
    }

    void ShowBeforeInput(const QEvent& event) {
        switch (event.type()) {
            case QEvent::KeyPress:
            case QEvent::InputMethod:
            case QEvent::MouseButtonPress:
            case QEvent::Drop:
            case QEvent::ContextMenu:
            case QEvent::FocusIn:
                ShowSet();
                break;
            default:
                break;
        }
    }

    // A text that was set, kept as it was until the user edits it or text is appended.
    struct SetText {
        std::string text;
        bool shown = false;
    };

    TextArea& mArea;
    std::optional<SetText> mSet = SetText{{}, true};
    bool mOwnChange = false;
    Announcer mAnnouncer{*this};
};

TextArea::TextArea(Window& owner, std::string name)
    : TextArea(std::move(name), new State(*this, ContentOf(owner))) {}

TextArea::TextArea(std::string name, State* state)
    : TextEdit(std::move(name), state), mState(state) {}

std::string TextArea::Text() const { return mState->Read(); }

void TextArea::Text(std::string_view text) {
    mState->Set(text);
    Raise(TextChange);
}

void TextArea::ReadOnly(bool readOnly) {
    mState->setReadOnly(readOnly);
    // Selecting and copying by keyboard.
    if (readOnly)
        mState->setTextInteractionFlags(mState->textInteractionFlags() |
                                        Qt::TextSelectableByKeyboard);
    mState->setUndoRedoEnabled(!readOnly);
}

void TextArea::Keep(int lines, int characters) {
    mState->mNewest.MostParagraphs = lines;
    mState->mNewest.MostCharacters = characters;
}

void TextArea::AppendText(std::string_view text) {
    if (!text.empty()) mState->Append(ToQt(text));
    Raise(TextChange);
}

void TextArea::ScrollPosition(std::int64_t line) {
    mState->ScrollTo(
        static_cast<int>(std::clamp<std::int64_t>(line, 0, std::numeric_limits<int>::max())));
}

bool TextArea::Busy() const { return mState->mBusy.IsBusy(); }

void TextArea::Busy(bool busy) { mState->mBusy.Busy(busy); }
