// The text of a QTextDocument with very long lines. For the platform's own files.
//
// Qt lays out a paragraph as a whole each time that it changes. Text without line ends goes on in a
// new paragraph after kLongestParagraph characters, so that neither a tool that never ends its line
// nor a command of megabytes can hold the window. Such a paragraph is marked, and no line end
// stands for it in the text that is read or copied.
#pragma once

class QString;
class QTextDocument;

constexpr int kLongestParagraph = 8192;

// Adds text at the end of the document.
void AppendParagraphs(QTextDocument& document, const QString& text);

// The text between two positions in the document.
QString TextBetween(const QTextDocument& document, int from, int to);
