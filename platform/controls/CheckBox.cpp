#include "platform/controls/CheckBox.h"

#include <QCheckBox>

#include "platform/qt/ControlWidget.h"
#include "platform/qt/HeldKey.h"
#include "platform/qt/QtText.h"

CheckBox::CheckBox(Window& owner, std::string name)
    : RectControl(std::move(name), Owned(new PressedOnce<QCheckBox>(ContentOf(owner)))) {
    WidgetOf(*this).setFocusPolicy(Qt::StrongFocus);
}

void CheckBox::Caption(std::string_view caption) {
    WidgetOf<QCheckBox>(*this).setText(ToQt(caption));
}

bool CheckBox::Value() const { return WidgetOf<QCheckBox>(*this).isChecked(); }
