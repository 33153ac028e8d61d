#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <algorithm>
#include <limits>

#include "platform/Native.h"
#include "platform/QtText.h"
#include "platform/TextEdit.h"

namespace {

// A paragraph is laid out as a whole each time that it grows. Appended text without line ends
// goes on in a new paragraph from here, so that a tool that never ends its line can't hold the
// window; such a paragraph is marked, and no line end stands for it in the text that is read back.
constexpr qsizetype kLongestParagraph = 8192;
constexpr int kContinues = 1;

bool IsLineEnd(QChar c) { return c == QChar::ParagraphSeparator || c == u'\n' || c == u'\r'; }

}  // namespace

// The widget shows a text that was set when the event loop comes round, or at the next input
// event: a command that is composed several times within one handler is laid out once.
struct TextArea::State : public QPlainTextEdit {
    State(TextArea& area, QWidget* parent) : QPlainTextEdit(parent), mArea(area) {
        setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        setTabChangesFocus(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        connect(this, &QPlainTextEdit::textChanged, this, [this] {
            if (mOwnChange) return;
            mIsExact = false;
            mShown = true;
            mExact = {};
            mArea.Raise(mArea.TextChange);
        });
    }

    void SetExact(std::string_view text) {
        mExact = text;
        mIsExact = true;
        if (!mShown) return;
        mShown = false;
        QMetaObject::invokeMethod(this, &State::ShowExact, Qt::QueuedConnection);
    }

    void ShowExact() {
        if (mShown) return;
        mShown = true;
        mOwnChange = true;
        const QString text = ToQt(mExact);
        ChooseWrapping(text);
        setPlainText(text);
        mOwnChange = false;
    }

    std::string Read() const {
        if (mIsExact) return mExact;
        QString text;
        for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
            if (block.blockNumber() > 0 && block.userState() != kContinues) text += u'\n';
            text += block.text();
        }
        return FromQt(text.replace(QChar::LineSeparator, u'\n'));
    }

    void Append(const QString& text) {
        ShowExact();
        mIsExact = false;
        mExact = {};
        mOwnChange = true;
        QTextCursor cursor(document());
        cursor.movePosition(QTextCursor::End);
        cursor.beginEditBlock();
        qsizetype room = kLongestParagraph - cursor.block().length();
        qsizetype from = 0;
        for (qsizetype at = 0; at < text.size(); ++at) {
            if (IsLineEnd(text[at])) {
                room = kLongestParagraph;
            } else if (--room < 0 && !text[at].isLowSurrogate()) {
                cursor.insertText(text.mid(from, at - from));
                cursor.insertBlock();
                cursor.block().setUserState(kContinues);
                from = at;
                room = kLongestParagraph - 1;
            }
        }
        cursor.insertText(from == 0 ? text : text.mid(from));
        cursor.endEditBlock();
        mOwnChange = false;
    }

    void ScrollTo(int line) {
        ShowExact();
        verticalScrollBar()->setValue(line);
    }

  protected:
    void insertFromMimeData(const QMimeData* source) override {
        ChooseWrapping(document()->toRawText() + source->text());
        QPlainTextEdit::insertFromMimeData(source);
    }
    bool event(QEvent* event) override {
        ShowBeforeInput(*event);
        return QPlainTextEdit::event(event);
    }
    bool viewportEvent(QEvent* event) override {
        ShowBeforeInput(*event);
        return QPlainTextEdit::viewportEvent(event);
    }

  private:
    // Between words where it can be: to look for a place in a very long word takes the toolkit
    // time by the square of its length.
    void ChooseWrapping(const QString& text) {
        qsizetype longest = 0;
        qsizetype length = 0;
        for (const QChar c : text) {
            length = c.isSpace() ? 0 : length + 1;
            longest = std::max(longest, length);
        }
        setWordWrapMode(longest > kLongestParagraph ? QTextOption::WrapAnywhere
                                                    : QTextOption::WrapAtWordBoundaryOrAnywhere);
    }

    void ShowBeforeInput(const QEvent& event) {
        switch (event.type()) {
            case QEvent::KeyPress:
            case QEvent::InputMethod:
            case QEvent::MouseButtonPress:
            case QEvent::Drop:
            case QEvent::ContextMenu:
            case QEvent::FocusIn:
                ShowExact();
                break;
            default:
                break;
        }
    }

    TextArea& mArea;
    std::string mExact;
    bool mIsExact = true;
    bool mShown = true;
    bool mOwnChange = false;
};

TextArea::TextArea(Window& owner, std::string name)
    : TextArea(std::move(name), new State(*this, ContentOf(owner))) {}

TextArea::TextArea(std::string name, State* state)
    : TextEdit(std::move(name), state), mState(state) {}

std::string TextArea::Text() const { return mState->Read(); }

void TextArea::Text(std::string_view text) {
    mState->SetExact(text);
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

void TextArea::AppendText(std::string_view text) {
    if (!text.empty()) mState->Append(ToQt(text));
    Raise(TextChange);
}

void TextArea::ScrollPosition(std::int64_t line) {
    mState->ScrollTo(
        static_cast<int>(std::clamp<std::int64_t>(line, 0, std::numeric_limits<int>::max())));
}
