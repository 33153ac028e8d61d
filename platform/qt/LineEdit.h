// A one-line text of the window: a field or the editor of a cell.
#pragma once

#include <QClipboard>
#include <QLineEdit>

// Whatever comes in (by a paste, a drop, a middle click, an input method or a screen reader) has
// blanks in place of line ends. A QLineEdit shows blanks too, but keeps the line ends in its text,
// and the shell would take one for the end of the command.
class LineEdit : public QLineEdit {
  public:
    // Characters of the longest text. Qt takes time by the length of a line.
    static constexpr int kLongest = 64 * 1024;

    explicit LineEdit(QWidget* parent);

    // Replaces the selection, as one step of undo.
    void Insert(const QString& text);
    void Paste(QClipboard::Mode mode = QClipboard::Clipboard);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void EndComposition();
    void EndStepOfUndo();

    QString mComposed;  // what an input method is composing
};

// The text with a blank in place of each line end.
QString OneLine(QString text);
