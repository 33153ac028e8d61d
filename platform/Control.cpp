#include "platform/Control.h"

#include <QApplication>
#include <QFont>
#include <QWidget>
#include <algorithm>
#include <utility>

#include "platform/Native.h"
#include "platform/QtText.h"

void* AsNative(QWidget* widget) { return widget; }

QWidget* NativeWidget(const RectControl& control) {
    return static_cast<QWidget*>(control.Native());
}

RectControl::RectControl(std::string name, NativeHandle native)
    : Control(std::move(name)), mNative(native) {
    NativeWidget(*this)->setObjectName(ToQt(Name()));
}

RectControl::~RectControl() { delete NativeWidget(*this); }

bool RectControl::Enabled() const { return NativeWidget(*this)->isEnabled(); }

void RectControl::Enabled(bool enabled) {
    QWidget* widget = NativeWidget(*this);
    const bool focused = widget->hasFocus();
    widget->setEnabled(enabled);
    const NativeHandle now = AsNative(QApplication::focusWidget());
    if (focused && !enabled)
        mFocusHeir = now;
    else if (enabled && mFocusHeir != nullptr && std::exchange(mFocusHeir, nullptr) == now)
        widget->setFocus();
}

void RectControl::Place(const ControlPlace& place) {
    mPlace = place;
    QFont font = NativeWidget(*this)->font();
    font.setPixelSize(place.TextSize);
    NativeWidget(*this)->setFont(font);
    FollowWindow(0, 0);
}

void RectControl::AccessibleName(std::string_view name) {
    NativeWidget(*this)->setAccessibleName(ToQt(name));
}

void RectControl::FollowWindow(int grownWidth, int grownHeight) {
    const auto stretch = [](bool near, bool far, int grown) { return near && far ? grown : 0; };
    const auto move = [](bool near, bool far, int grown) { return far && !near ? grown : 0; };
    const ControlPlace& p = mPlace;
    NativeWidget(*this)->setGeometry(
        p.Left + move(p.LockLeft, p.LockRight, grownWidth),
        p.Top + move(p.LockTop, p.LockBottom, grownHeight),
        std::max(0, p.Width + stretch(p.LockLeft, p.LockRight, grownWidth)),
        std::max(0, p.Height + stretch(p.LockTop, p.LockBottom, grownHeight)));
}
