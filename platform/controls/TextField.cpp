#include "platform/controls/TextField.h"

#include <QSignalBlocker>

#include "platform/qt/ControlWidget.h"
#include "platform/qt/LineEdit.h"
#include "platform/qt/QtText.h"

TextField::TextField(Window& owner, std::string name)
    : TextEdit(std::move(name), Owned(new LineEdit(ContentOf(owner)))) {
    auto& line = WidgetOf<LineEdit>(*this);
    QObject::connect(&line, &QLineEdit::textChanged, &line, [this] { Raise(TextChange); });
}

std::string TextField::Text() const { return FromQt(WidgetOf<LineEdit>(*this).text()); }

void TextField::Text(std::string_view text) {
    auto& line = WidgetOf<LineEdit>(*this);
    {
        const QSignalBlocker quiet(&line);
        line.setText(ToQt(text));
    }
    Raise(TextChange);
}
