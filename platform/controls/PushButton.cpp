#include "platform/controls/PushButton.h"

#include <QPushButton>

#include "platform/qt/ControlWidget.h"
#include "platform/qt/HeldKey.h"
#include "platform/qt/OpenEdit.h"
#include "platform/qt/QtText.h"

PushButton::PushButton(Window& owner, std::string name)
    : RectControl(std::move(name), Owned(new PressedOnce<QPushButton>(ContentOf(owner)))) {
    auto& button = WidgetOf<QPushButton>(*this);
    button.setFocusPolicy(Qt::StrongFocus);
    button.setAutoDefault(true);  // Return presses the focused button, as the space bar does
    QObject::connect(&button, &QPushButton::clicked, &button, [this] {
        CommitOpenEdit();
        Raise(Action);
    });
}

void PushButton::Caption(std::string_view caption) {
    WidgetOf<QPushButton>(*this).setText(ToQt(caption));
}

void PushButton::Press() { WidgetOf<QPushButton>(*this).click(); }
