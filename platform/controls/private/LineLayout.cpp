#include "platform/controls/private/LineLayout.h"

#include <QPlainTextDocumentLayout>
#include <QTextBlock>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

namespace {

class LineLayout : public QPlainTextDocumentLayout {
  public:
    using QPlainTextDocumentLayout::QPlainTextDocumentLayout;

    void Width(int width);

    QSizeF documentSize() const override;
    QRectF blockBoundingRect(const QTextBlock& paragraph) const override;

  protected:
    void documentChanged(int from, int removed, int added) override;

  private:
    void LayOut(QTextBlock paragraph);

    int mWidth = 0;           // the base class's own isn't used
    bool mTellsSize = false;  // those who are told ask for more paragraphs
};

void LineLayout::Width(int width) {
    if (width == mWidth) return;
    mWidth = width;
    for (QTextBlock paragraph = document()->firstBlock(); paragraph.isValid();
         paragraph = paragraph.next()) {
        paragraph.clearLayout();
        paragraph.setLineCount(1);  // until it is laid out
    }
    emit update();
}

QSizeF LineLayout::documentSize() const {
    return {static_cast<qreal>(mWidth), static_cast<qreal>(document()->lineCount())};
}

QRectF LineLayout::blockBoundingRect(const QTextBlock& paragraph) const {
    if (paragraph.isValid() && paragraph.layout()->lineCount() == 0)
        const_cast<LineLayout*>(this)->LayOut(paragraph);
    return QPlainTextDocumentLayout::blockBoundingRect(paragraph);
}

void LineLayout::LayOut(QTextBlock paragraph) {
    const qreal margin = document()->documentMargin();
    QTextLayout& layout = *paragraph.layout();
    layout.setTextOption(document()->defaultTextOption());
    layout.beginLayout();
    qreal height = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(mWidth - 2 * margin);
        line.setPosition(QPointF(margin, height));
        height += line.height() + std::min(0.0, std::ceil(line.leading()));
    }
    layout.endLayout();
    if (paragraph.lineCount() == layout.lineCount()) return;
    paragraph.setLineCount(layout.lineCount());
    if (mTellsSize) return;
    mTellsSize = true;
    emit documentSizeChanged(documentSize());  // the scroll bar's range
    mTellsSize = false;
}

void LineLayout::documentChanged(int from, int removed, int added) {
    const QTextBlock last = document()->findBlock(qMax(0, from + removed + added - 1));
    QTextBlock paragraph = document()->findBlock(from);
    for (; paragraph.isValid(); paragraph = paragraph.next()) {
        paragraph.clearLayout();
        if (paragraph.lineCount() == 0) paragraph.setLineCount(1);
        if (paragraph == last) break;
    }
    emit documentSizeChanged(documentSize());
    emit update(QRectF(0, -document()->documentMargin(), 1e9, 1e9));
}

}  // namespace

void InstallLineLayout(QTextDocument& document) {
    document.setDocumentLayout(new LineLayout(&document));
}

void SetLineWidth(QTextDocument& document, int width) {
    static_cast<LineLayout*>(document.documentLayout())->Width(width);
}
