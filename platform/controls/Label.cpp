#include "platform/controls/Label.h"

#include <QLabel>

#include "platform/qt/ControlWidget.h"
#include "platform/qt/QtText.h"

Label::Label(Window& owner, std::string name)
    : RectControl(std::move(name), Owned(new QLabel(ContentOf(owner)))) {
    auto& label = WidgetOf<QLabel>(*this);
    label.setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label.setTextFormat(Qt::PlainText);
}

void Label::Text(std::string_view text) { WidgetOf<QLabel>(*this).setText(ToQt(text)); }

void Label::Names(const RectControl& control) {
    WidgetOf<QLabel>(*this).setBuddy(&WidgetOf(control));
}
