#include "platform/CheckBox.h"

#include <QCheckBox>

#include "platform/HeldKey.h"
#include "platform/Native.h"
#include "platform/QtText.h"

CheckBox::CheckBox(Window& owner, std::string name)
    : RectControl(std::move(name), new PressedOnce<QCheckBox>(ContentOf(owner))) {
    Native()->setFocusPolicy(Qt::StrongFocus);
}

void CheckBox::Caption(std::string_view caption) {
    static_cast<QCheckBox*>(Native())->setText(ToQt(caption));
}

bool CheckBox::Value() const { return static_cast<QCheckBox*>(Native())->isChecked(); }
