// The very long lines of an output.
//
// Qt lays out a whole paragraph each time that it changes, so a tool that never ends its line would
// hold the window. AppendOutput therefore continues a line in a new paragraph after
// kLongestParagraph characters, and marks that paragraph by its userState(). OutputBetween puts no
// line end in front of a marked paragraph.
#pragma once

#include <QString>

class QTextDocument;

constexpr int kLongestParagraph = 8192;

// Adds text at the end of the document.
void AppendOutput(QTextDocument& document, const QString& text);

// The text between two positions in the document.
QString OutputBetween(const QTextDocument& document, int from, int to);
