#include "platform/controls/private/Paragraphs.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>

namespace {

constexpr int kContinues = QTextFormat::UserProperty;  // goes on with the paragraph before it

bool IsLineEnd(QChar c) { return c == QChar::ParagraphSeparator || c == u'\n'; }

bool Continues(const QTextBlock& paragraph) {
    return paragraph.blockFormat().boolProperty(kContinues);
}

void InsertParagraph(QTextCursor& cursor, bool continues) {
    QTextBlockFormat format;
    if (continues) format.setProperty(kContinues, true);
    cursor.insertBlock(format);
}

}  // namespace

void InsertParagraphs(QTextCursor cursor, QString text) {
    if (text.contains(u'\r')) text.replace("\r\n", "\n").replace(u'\r', u'\n');
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    // The paragraphs of lines that are inserted at once get the format of the first.
    bool continues = Continues(cursor.block());
    qsizetype room = kLongestParagraph - cursor.positionInBlock() - 1;
    qsizetype from = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (IsLineEnd(text[at])) {
            room = kLongestParagraph;
            if (!continues) continue;
            cursor.insertText(text.mid(from, at - from));
            InsertParagraph(cursor, continues = false);
            from = at + 1;
        } else if (--room < 0 && !text[at].isLowSurrogate()) {
            cursor.insertText(text.mid(from, at - from));
            InsertParagraph(cursor, continues = true);
            from = at;
            room = kLongestParagraph - 1;
        }
    }
    cursor.insertText(from == 0 ? text : text.mid(from));
    cursor.endEditBlock();
}

void AppendParagraphs(QTextDocument& document, const QString& text) {
    QTextCursor cursor(&document);
    cursor.movePosition(QTextCursor::End);
    InsertParagraphs(cursor, text);
}

QString TextBetween(const QTextDocument& document, int from, int to) {
    // One copy of the whole, which is faster than asking each block: on X11 every selection is
    // read.
    QString text = document.toRawText().mid(from, to - from);
    QTextBlock block = document.findBlock(from).next();
    int format = -1;  // of the last block: comparing the index is faster than reading the format
    bool continues = false;
    QChar* const begin = text.data();
    QChar* kept = begin;
    for (const QChar c : text) {
        if (c == QChar::ParagraphSeparator) {
            if (block.blockFormatIndex() != format) continues = Continues(block);
            format = block.blockFormatIndex();
            block = block.next();
            if (continues) continue;
        }
        *kept++ = c == QChar::ParagraphSeparator || c == QChar::LineSeparator ? u'\n' : c;
    }
    text.truncate(kept - begin);
    return text;
}

bool EndsLine(const QTextBlock& paragraph) {
    return paragraph.next().isValid() && !Continues(paragraph.next());
}

void BeginLine(QTextCursor cursor) {
    if (!Continues(cursor.block())) return;
    cursor.joinPreviousEditBlock();
    cursor.setBlockFormat({});
    cursor.endEditBlock();
}

bool HasVeryLongWord(const QString& text) {
    qsizetype length = 0;
    for (const QChar c : text) {
        length = c.isSpace() ? 0 : length + 1;
        if (length > kLongestParagraph) return true;
    }
    return false;
}
