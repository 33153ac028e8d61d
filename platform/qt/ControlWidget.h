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

// Returns the control's widget. W is the class that the control has given to Owned().
template <class W = QWidget>
W& WidgetOf(const RectControl& control) {
    return static_cast<W&>(*control.NativeSide().widget);
}

// Returns the widget that is the parent of all controls' widgets.
QWidget* ContentOf(const Window& window);
