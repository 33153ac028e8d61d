#include "platform/controls/CheckBox.h"

#include <QCheckBox>

#include "platform/qt/HeldKey.h"
#include "platform/qt/Native.h"
#include "platform/qt/QtText.h"

CheckBox::CheckBox(Window& owner, std::string name)
    : RectControl(std::move(name), new PressedOnce<QCheckBox>(ContentOf(owner))) {
    Native()->setFocusPolicy(Qt::StrongFocus);
}

void CheckBox::Caption(std::string_view caption) {
    static_cast<QCheckBox*>(Native())->setText(ToQt(caption));
}

bool CheckBox::Value() const { return static_cast<QCheckBox*>(Native())->isChecked(); }
