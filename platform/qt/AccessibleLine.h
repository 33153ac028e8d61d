// The text of one line, as a screen reader reads and edits it.
#pragma once

#include <QAccessible>

// A base for accessible objects. A screen reader may give any number as an offset. An edit takes an
// offset outside the text for the nearest end; a question for a part of the text finds none there.
// Qt's defaults for the parts never return for some offsets, the end of the text among them.
class AccessibleLine : public QAccessibleTextInterface, public QAccessibleEditableTextInterface {
  public:
    QString text(int start, int end) const override;
    int characterCount() const override { return static_cast<int>(WholeText().size()); }

    // Return the character, word or sentence before, after or at the offset; for lines and
    // paragraphs the whole text. An offset of -1 means the text's length. If there is no such part,
    // both ends are the text's length.
    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                             int* end) const override;
    QString textAtOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                         int* end) const override;
    QString textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                            int* end) const override;

    // The text has no attributes, so they are the same from its start to its end.
    QString attributes(int offset, int* start, int* end) const override;

    void deleteText(int start, int end) override { replaceText(start, end, {}); }
    void insertText(int at, const QString& text) override;
    // A negative end means the end of the text.
    void replaceText(int start, int end, const QString& text) override;

  protected:
    virtual QString WholeText() const = 0;
    // With `start` and `start + length` within the text.
    virtual void Replace(int start, int length, const QString& text) = 0;
};
