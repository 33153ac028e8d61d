// The widget of a TextArea.
#pragma once

#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTextCursor>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/controls/private/Announcer.h"

// Shows a text that was set in a later turn of the event loop, or before the next input event. So a
// command that one handler composes several times is laid out once.
class TextPane : public QPlainTextEdit {
  public:
    explicit TextPane(QWidget* parent);

    std::string Text() const;
    void SetText(std::string_view text);
    // Shows the text that was set, if it isn't shown yet.
    void ShowText();

    void Append(const QString& text);
    void SetLimits(int paragraphs, int characters);

    bool IsBusy() const { return mStrip != nullptr; }
    void SetBusy(bool busy);

    // The user has edited the text.
    std::function<void()> Edited;

  protected:
    QMimeData* createMimeDataFromSelection() const override;
    void insertFromMimeData(const QMimeData* source) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    void ChooseWrapping(const QString& text);
    QString Composed() const;
    void DropOldest();
    void DropComposition();
    void EndComposition();
    void PaintFrame();
    void ShowBeforeInput(const QEvent& event);

    // Keeps a text that was set until the user edits it or text is appended.
    struct TextThatWasSet {
        std::string text;
        bool isShown = false;
    };

    std::optional<TextThatWasSet> mSet = TextThatWasSet{{}, true};
    bool mOwnChange = false;  // the program changes the document
    int mMostParagraphs = 0, mMostCharacters = 0;
    QTextCursor mComposition;        // where an input method is composing, or has been
    QProgressBar* mStrip = nullptr;  // while busy; a child of this widget
    Announcer mAnnouncer{*this};
};
