#include "platform/CheckBox.h"

#include <QCheckBox>

#include "platform/Native.h"
#include "platform/QtText.h"

CheckBox::CheckBox(Window& owner, std::string name)
    : RectControl(std::move(name), AsNative(new QCheckBox(ContentOf(owner)))) {
    NativeWidget(*this)->setFocusPolicy(Qt::StrongFocus);
}

void CheckBox::Caption(std::string_view caption) {
    static_cast<QCheckBox*>(NativeWidget(*this))->setText(ToQt(caption));
}

bool CheckBox::Value() const { return static_cast<QCheckBox*>(NativeWidget(*this))->isChecked(); }
