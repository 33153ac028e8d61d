#pragma once

class QWidget;
class Window;

// The widget that a new control of the window goes into.
QWidget* ContentOf(Window& window);
