#include <QLineEdit>
#include <QSignalBlocker>

#include "platform/controls/TextEdit.h"
#include "platform/qt/Native.h"
#include "platform/qt/QtText.h"

namespace {

QLineEdit* Line(const TextField& field) { return static_cast<QLineEdit*>(field.Native()); }

}  // namespace

TextField::TextField(Window& owner, std::string name)
    : TextEdit(std::move(name), new QLineEdit(ContentOf(owner))) {
    Line(*this)->setMaxLength(kLongestLine);
    QObject::connect(Line(*this), &QLineEdit::textChanged, Line(*this),
                     [this] { Raise(TextChange); });
}

std::string TextField::Text() const { return FromQt(Line(*this)->text()); }

void TextField::Text(std::string_view text) {
    {
        const QSignalBlocker quiet(Line(*this));
        Line(*this)->setText(ToQt(text));
    }
    Raise(TextChange);
}
