// The layout of a document of very many lines. It lays out a paragraph when it comes into view, as
// its base class does, but keeps nothing for the others: when the width changes, the base class
// allocates the layout of every paragraph, 300 MB for a million of them.
#pragma once

#include <QPlainTextDocumentLayout>

class LineLayout : public QPlainTextDocumentLayout {
  public:
    using QPlainTextDocumentLayout::QPlainTextDocumentLayout;

    // The width of the viewport. The base class's own width isn't used: a QPlainTextEdit must not
    // be told of a new one (see TextArea.cpp).
    void Width(int width);

    QSizeF documentSize() const override;
    QRectF blockBoundingRect(const QTextBlock& paragraph) const override;

  protected:
    void documentChanged(int from, int removed, int added) override;

  private:
    void LayOut(QTextBlock paragraph);

    int mWidth = 0;
    bool mTellsSize = false;  // those who are told ask for more paragraphs
};
