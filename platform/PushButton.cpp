#include "platform/PushButton.h"

#include <QPushButton>

#include "platform/Native.h"
#include "platform/QtText.h"

PushButton::PushButton(Window& owner, std::string name)
    : RectControl(std::move(name), new QPushButton(ContentOf(owner))) {
    auto* button = static_cast<QPushButton*>(Native());
    button->setFocusPolicy(Qt::StrongFocus);
    button->setAutoDefault(true);  // Return presses the focused button, as the space bar does
    QObject::connect(button, &QPushButton::clicked, button, [this, button] {
        // A press that didn't come through mouse or keyboard (a screen reader's) leaves the focus
        // where it is; taking it is what commits an open edit.
        button->setFocus();
        Raise(Action);
    });
}

void PushButton::Caption(std::string_view caption) {
    static_cast<QPushButton*>(Native())->setText(ToQt(caption));
}
