#include "platform/controls/private/NewestOutput.h"

#include <QTextBlock>
#include <QTextCursor>
#include <algorithm>

#include "platform/controls/private/Paragraphs.h"

void NewestOutput::Keep(QTextDocument& document) {
    const int paragraphs = document.blockCount() - MostParagraphs;
    const int characters = document.characterCount() - MostCharacters;
    if (paragraphs <= MostParagraphs / 16 && characters <= MostCharacters / 16) return;

    // What says how much is gone is the first paragraph from the first time on.
    QTextBlock dropped = document.begin();
    if (mCharactersGone > 0) dropped = dropped.next();
    const QTextBlock first = std::max(document.findBlockByNumber(std::max(paragraphs, 0)),
                                      document.findBlock(std::max(characters, 0)));
    if (first.position() == 0) return;  // a single paragraph
    for (; dropped.isValid() && dropped != first; dropped = dropped.next()) {
        mCharactersGone += dropped.length() - 1;
        mLinesGone += EndsLine(dropped) ? 1 : 0;
    }
    QTextCursor cursor(first);
    BeginLine(cursor);
    cursor.setPosition(first.position() - 1);
    cursor.setPosition(0, QTextCursor::KeepAnchor);
    cursor.insertText(QStringLiteral("[%1 earlier lines, %2 characters, are no longer shown]")
                          .arg(qint64{mLinesGone})
                          .arg(qint64{mCharactersGone}));
}
