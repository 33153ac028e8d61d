// The toolkit's side of controls and windows, for the platform's own files.
#pragma once

class QWidget;
class RectControl;
class Window;

// To and from the handle that a control holds.
void* AsNative(QWidget* widget);
QWidget* NativeWidget(const RectControl& control);

// The widget that a new control of the window goes into.
QWidget* ContentOf(Window& window);
