#include "platform/PushButton.h"

#include <QPushButton>

#include "platform/Native.h"
#include "platform/QtText.h"

PushButton::PushButton(Window& owner, std::string name)
    : RectControl(std::move(name), AsNative(new QPushButton(ContentOf(owner)))) {
    auto* button = static_cast<QPushButton*>(NativeWidget(*this));
    button->setFocusPolicy(Qt::StrongFocus);
    button->setAutoDefault(true);  // Return presses the focused button, as the space bar does
    QObject::connect(button, &QPushButton::clicked, button, [this, button] {
        // A press that didn't come through mouse or keyboard (a screen reader's) leaves the focus
        // where it is; taking it is what commits an open edit.
        button->setFocus();
        if (Action) Action(*this);
    });
}

void PushButton::Caption(std::string_view caption) {
    static_cast<QPushButton*>(NativeWidget(*this))->setText(ToQt(caption));
}
