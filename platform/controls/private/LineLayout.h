// The layout of a document of very many lines. It lays out a paragraph when it comes into view, as
// that of a QPlainTextEdit does, but keeps nothing for the others: when the width changes, Qt's
// allocates the layout of every paragraph, 300 MB for a million of them.
#pragma once

class QTextDocument;

// Gives the document such a layout, which it owns.
void InstallLineLayout(QTextDocument& document);

// The width of the viewport that the document is shown in. The QPlainTextEdit itself must not be
// told of a new one (see TextArea.cpp).
void SetLineWidth(QTextDocument& document, int width);
