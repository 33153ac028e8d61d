#include "platform/controls/PushButton.h"

#include <QApplication>
#include <QInputMethod>
#include <QPushButton>

#include "platform/qt/HeldKey.h"
#include "platform/qt/Native.h"
#include "platform/qt/QtText.h"

namespace {

// Commits what the user is still editing: the composition of an input method, and the text in an
// editor inside a control of `content`. A press by mouse or by a key on the button itself has done
// so already, by moving the focus.
void CommitOpenEdit(const QWidget* content) {
    QGuiApplication::inputMethod()->commit();
    QWidget* control = QApplication::focusWidget();
    while (control != nullptr && control->parentWidget() != content)
        control = control->parentWidget();
    if (control != nullptr) control->setFocus();
}

}  // namespace

PushButton::PushButton(Window& owner, std::string name)
    : RectControl(std::move(name), new PressedOnce<QPushButton>(ContentOf(owner))) {
    auto* button = static_cast<QPushButton*>(Native());
    button->setFocusPolicy(Qt::StrongFocus);
    button->setAutoDefault(true);  // Return presses the focused button, as the space bar does
    QObject::connect(button, &QPushButton::clicked, button, [this, button] {
        CommitOpenEdit(button->parentWidget());
        Raise(Action);
    });
}

void PushButton::Caption(std::string_view caption) {
    static_cast<QPushButton*>(Native())->setText(ToQt(caption));
}

void PushButton::Press() { static_cast<QPushButton*>(Native())->click(); }
