// The Qt widget behind a control.
#pragma once

#include <QWidget>
#include <memory>

#include "platform/controls/Control.h"

class Window;

struct RectControl::Native {
    std::unique_ptr<QWidget> widget;
};

inline std::unique_ptr<RectControl::Native> Owned(QWidget* widget) {
    auto native = std::make_unique<RectControl::Native>();
    native->widget.reset(widget);
    return native;
}

// As its class.
template <class W = QWidget>
W& WidgetOf(const RectControl& control) {
    return static_cast<W&>(*control.NativeSide().widget);
}

// The parent of the widgets of a window's controls.
QWidget* ContentOf(const Window& window);
