#include "platform/qt/HeldKey.h"

#include <QKeyEvent>

namespace {

struct {
    int releasedKey = 0;
    quint64 releasedAt = 0;  // 0: unknown
    bool isHeld = false;
} keyboard;

}  // namespace

void WatchForHeldKey(const QEvent& event) {
    const auto type = event.type();
    const bool release = type == QEvent::KeyRelease;
    // Qt sends a ShortcutOverride before the KeyPress.
    if (!release && type != QEvent::KeyPress && type != QEvent::ShortcutOverride) return;
    const auto& key = static_cast<const QKeyEvent&>(event);
    if (release) {
        keyboard.releasedKey = key.key();
        keyboard.releasedAt = key.timestamp();
        return;
    }
    // On X11 a repeat is a release and a press with the same time.
    keyboard.isHeld =
        key.isAutoRepeat() || (key.timestamp() != 0 && key.timestamp() == keyboard.releasedAt &&
                               key.key() == keyboard.releasedKey);
}

bool KeyIsHeld() { return keyboard.isHeld; }

bool IsModifier(int key) {
    return key == Qt::Key_Control || key == Qt::Key_Shift || key == Qt::Key_Alt ||
           key == Qt::Key_AltGr || key == Qt::Key_Meta;
}
