#include "platform/controls/TextArea.h"

#include <QScrollBar>
#include <algorithm>
#include <limits>

#include "platform/controls/private/TextPane.h"
#include "platform/qt/ControlWidget.h"
#include "platform/qt/QtText.h"

TextArea::TextArea(Window& owner, std::string name)
    : TextEdit(std::move(name), Owned(new TextPane(ContentOf(owner)))) {
    Pane().Edited = [this] { Raise(TextChange); };
}

TextPane& TextArea::Pane() const { return WidgetOf<TextPane>(*this); }

std::string TextArea::Text() const { return Pane().Text(); }

void TextArea::Text(std::string_view text) {
    Pane().SetText(text);
    Raise(TextChange);
}

void TextArea::ReadOnly(bool readOnly) {
    Pane().setReadOnly(readOnly);
    // The user can still select and copy by keyboard.
    if (readOnly)
        Pane().setTextInteractionFlags(Pane().textInteractionFlags() |
                                       Qt::TextSelectableByKeyboard);
    Pane().setUndoRedoEnabled(!readOnly);
}

void TextArea::AppendText(std::string_view text) {
    if (!text.empty()) Pane().Append(ToQt(text));
    Raise(TextChange);
}

void TextArea::SetLimits(int lines, int characters) { Pane().SetLimits(lines, characters); }

void TextArea::ScrollPosition(std::int64_t line) {
    Pane().ShowText();
    Pane().verticalScrollBar()->setValue(
        static_cast<int>(std::clamp<std::int64_t>(line, 0, std::numeric_limits<int>::max())));
}

bool TextArea::Busy() const { return Pane().IsBusy(); }

void TextArea::Busy(bool busy) { Pane().SetBusy(busy); }
