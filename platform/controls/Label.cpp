#include "platform/controls/Label.h"

#include <QLabel>

#include "platform/qt/Native.h"
#include "platform/qt/QtText.h"

Label::Label(Window& owner, std::string name)
    : RectControl(std::move(name), new QLabel(ContentOf(owner))) {
    auto* label = static_cast<QLabel*>(Native());
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setTextFormat(Qt::PlainText);
}

void Label::Text(std::string_view text) { static_cast<QLabel*>(Native())->setText(ToQt(text)); }

void Label::Names(const RectControl& control) {
    static_cast<QLabel*>(Native())->setBuddy(control.Native());
}
