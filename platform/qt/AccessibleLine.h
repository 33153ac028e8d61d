// The text of one line, as a screen reader reads and edits it.
#pragma once

#include <QAccessible>

// A base for accessible objects. A screen reader may give any numbers as offsets: those outside the
// text stand for its nearest end in an edit, and there is no part of the text at them. Qt's
// defaults for the parts never return for some offsets, such as that of the end of the text.
class AccessibleLine : public QAccessibleTextInterface, public QAccessibleEditableTextInterface {
  public:
    QString text(int start, int end) const override;
    int characterCount() const override { return static_cast<int>(WholeText().size()); }

    // The character, word or sentence that is at the offset, or the one before or after that; for
    // lines and paragraphs the text as a whole. Where there is none, both ends are the text's
    // length. -1 stands for that length.
    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                             int* end) const override;
    QString textAtOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                         int* end) const override;
    QString textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                            int* end) const override;

    // The whole text has the same ones, which are none.
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
