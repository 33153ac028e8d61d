#include "platform/controls/private/Paragraphs.h"

#include <QTextBlock>
#include <QTextCursor>
#include <algorithm>

namespace {

constexpr int kContinues = 1;  // the user state of a paragraph that goes on with the one before it

bool IsLineEnd(QChar c) { return c == QChar::ParagraphSeparator || c == u'\n'; }

}  // namespace

void AppendParagraphs(QTextDocument& document, const QString& text) {
    QTextCursor cursor(&document);
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
}

QString TextBetween(const QTextDocument& document, int from, int to) {
    QString text;
    for (QTextBlock block = document.findBlock(from); block.isValid() && block.position() <= to;
         block = block.next()) {
        if (block.position() > from && block.userState() != kContinues) text += u'\n';
        const int begin = std::max(0, from - block.position());
        text += block.text().mid(begin, to - block.position() - begin);
    }
    return text.replace(QChar::LineSeparator, u'\n');
}
