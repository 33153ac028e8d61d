#include <QAccessible>
#include <QBasicTimer>
#include <QElapsedTimer>
#include <QMimeData>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStyleOptionFrame>
#include <algorithm>
#include <limits>
#include <optional>

#include "platform/controls/TextEdit.h"
#include "platform/controls/private/Paragraphs.h"
#include "platform/qt/Native.h"
#include "platform/qt/QtText.h"

// The widget shows a text that was set when the event loop comes round, or at the next input
// event: a command that is composed several times within one handler is laid out once.
struct TextArea::State : public QPlainTextEdit {
    State(TextArea& area, QWidget* parent) : QPlainTextEdit(parent), mArea(area) {
        setFrameStyle(QFrame::Box | QFrame::Plain);
        setLineWidth(2);  // room for the focus ring
        setViewportMargins(0, kStripHeight - lineWidth(), 0, 0);
        document()->setDocumentMargin(3);
        setTabChangesFocus(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
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
        return FromQt(TextBetween(*document(), 0, document()->characterCount()));
    }

    void Append(const QString& text) {
        ShowSet();
        mSet.reset();
        mOwnChange = true;
        AppendParagraphs(*document(), text);
        mOwnChange = false;
        Announce(text);
    }

    void ScrollTo(int line) {
        ShowSet();
        verticalScrollBar()->setValue(line);
    }

    void Busy(bool busy) {
        if (busy) {
            mBusySince.start();
            mStripTimer.start(50, this);
        } else {
            mBusySince.invalidate();
            mStripTimer.stop();
        }
        update();
    }
    bool IsBusy() const { return mBusySince.isValid(); }

  protected:
    // What is copied or dragged out, without the line ends that stand only in the document.
    QMimeData* createMimeDataFromSelection() const override {
        const QTextCursor selection = textCursor();
        auto* copied = new QMimeData;
        copied->setText(
            TextBetween(*document(), selection.selectionStart(), selection.selectionEnd()));
        return copied;
    }
    void insertFromMimeData(const QMimeData* source) override {
        ChooseWrapping(document()->toRawText() + source->text());
        QPlainTextEdit::insertFromMimeData(source);
    }

    // A pane that showed its end still shows it.
    void resizeEvent(QResizeEvent* event) override {
        const QScrollBar& bar = *verticalScrollBar();
        const bool atEnd = bar.value() == bar.maximum() && (bar.maximum() > 0 || isReadOnly());
        QPlainTextEdit::resizeEvent(event);
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
    void timerEvent(QTimerEvent* event) override {
        if (event->timerId() == mStripTimer.timerId())
            update(0, 0, width(), kStripHeight);
        else if (event->timerId() == mAnnounceTimer.timerId())
            AnnounceNow();
        else
            QPlainTextEdit::timerEvent(event);
    }

  private:
    static constexpr int kStripHeight = 3;
    static constexpr bool kCanAnnounce = QT_VERSION >= QT_VERSION_CHECK(6, 8, 0);

    // The same frame as a one-line field's, with its focus ring.
    void PaintFrame() {
        QPainter painter(this);
        QStyleOptionFrame option;
        option.initFrom(this);
        option.lineWidth = 1;
        option.state |= QStyle::State_Sunken;
        style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
        if (!IsBusy()) return;
        constexpr qint64 kRound = 2000;  // milliseconds
        const int bar = width() / 4;
        const auto left = static_cast<int>(mBusySince.elapsed() % kRound * width() / kRound);
        painter.fillRect(0, 0, width(), kStripHeight, palette().color(QPalette::Midlight));
        for (const int from : {left, left - width()})  // the part that leaves comes in again
            painter.fillRect(from, 0, bar, kStripHeight,
                             palette().color(QPalette::Active, QPalette::Highlight));
    }

    // Between words where it can be: to look for a place in a very long word takes Qt time by the
    // square of its length.
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
                ShowSet();
                break;
            default:
                break;
        }
    }

    // Tells a screen reader what has come, wherever the focus is: of much text its last line, and
    // no more than one line in a second. Qt reports each insertion too, but a screen reader may
    // ignore those in a control without the focus.
    void Announce(const QString& text) {
        if (!kCanAnnounce || !QAccessible::isActive()) return;
        const QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
        if (lines.isEmpty()) return;
        mToAnnounce = lines.constLast().right(200);
        if (!mAnnounceTimer.isActive()) mAnnounceTimer.start(1000, this);
    }

    void AnnounceNow() {
        mAnnounceTimer.stop();
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
        QAccessibleAnnouncementEvent event(this, mToAnnounce);
        QAccessible::updateAccessibility(&event);
#endif
    }

    // A text that was set, kept as it was until the user edits it or text is appended.
    struct SetText {
        std::string text;
        bool shown = false;
    };

    TextArea& mArea;
    std::optional<SetText> mSet = SetText{{}, true};
    bool mOwnChange = false;
    QElapsedTimer mBusySince;  // valid while busy
    QBasicTimer mStripTimer, mAnnounceTimer;
    QString mToAnnounce;
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

void TextArea::AppendText(std::string_view text) {
    if (!text.empty()) mState->Append(ToQt(text));
    Raise(TextChange);
}

void TextArea::ScrollPosition(std::int64_t line) {
    mState->ScrollTo(
        static_cast<int>(std::clamp<std::int64_t>(line, 0, std::numeric_limits<int>::max())));
}

bool TextArea::Busy() const { return mState->IsBusy(); }

void TextArea::Busy(bool busy) { mState->Busy(busy); }
