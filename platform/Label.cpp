#include "platform/Label.h"

#include <QLabel>

#include "platform/Native.h"
#include "platform/QtText.h"

Label::Label(Window& owner, std::string name)
    : RectControl(std::move(name), AsNative(new QLabel(ContentOf(owner)))) {
    auto* label = static_cast<QLabel*>(NativeWidget(*this));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setTextFormat(Qt::PlainText);
}

void Label::Text(std::string_view text) {
    static_cast<QLabel*>(NativeWidget(*this))->setText(ToQt(text));
}
