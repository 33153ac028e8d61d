// The text of a QTextDocument with very long lines.
//
// Qt lays out a paragraph as a whole each time that it changes. Text without line ends goes on in a
// new paragraph after kLongestParagraph characters, so that neither a tool that never ends its line
// nor a command of megabytes can hold the window. Such a paragraph is marked in its format, which
// undo and redo bring back, and no line end stands for it in the text that is read or copied.
#pragma once

class QString;
class QTextBlock;
class QTextCursor;
class QTextDocument;

constexpr int kLongestParagraph = 8192;

// Inserts text where the cursor stands, in place of what it has selected, as one step of undo.
void InsertParagraphs(QTextCursor cursor, QString text);

// Adds text at the end of the document.
void AppendParagraphs(QTextDocument& document, const QString& text);

// The text between two positions in the document.
QString TextBetween(const QTextDocument& document, int from, int to);

// Whether a line ends at the end of this paragraph.
bool EndsLine(const QTextBlock& paragraph);

// Makes the cursor's paragraph the beginning of a line. Part of the last step of undo.
void BeginLine(QTextCursor cursor);

// Whether a word is so long that its lines should break anywhere: to look for a better place in it
// takes Qt time by the square of its length.
bool HasVeryLongWord(const QString& text);
