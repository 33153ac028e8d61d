#include "platform/controls/private/LongLines.h"

#include <QTextBlock>
#include <QTextCursor>

namespace {

constexpr int kShort = 100'000;  // characters
constexpr int kContinues = 1;    // the state of a paragraph that continues the line before it

}  // namespace

void AppendOutput(QTextDocument& document, const QString& text) {
    QTextCursor cursor(&document);
    cursor.movePosition(QTextCursor::End);
    cursor.beginEditBlock();
    qsizetype room = kLongestParagraph - cursor.positionInBlock();
    qsizetype from = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] == u'\n' || text[at] == QChar::ParagraphSeparator) {
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
}

// On X11 every change of the selection comes here. Asking each paragraph is slow for a long text,
// copying the whole text for a short one.
QString OutputBetween(const QTextDocument& document, int from, int to) {
    QString text;
    if (to - from < kShort) {
        QTextCursor selection(document.findBlock(from));
        selection.setPosition(from);
        selection.setPosition(to, QTextCursor::KeepAnchor);
        text = selection.selectedText();
    } else {
        text = document.toRawText().mid(from, to - from);
    }
    QTextBlock paragraph = document.findBlock(from);
    QChar* const begin = text.data();
    QChar* kept = begin;
    for (const QChar c : std::as_const(text)) {
        if (c == QChar::ParagraphSeparator) {
            paragraph = paragraph.next();
            if (paragraph.userState() == kContinues) continue;
        }
        *kept++ = c == QChar::ParagraphSeparator ? u'\n' : c;
    }
    text.truncate(kept - begin);
    return text;
}
