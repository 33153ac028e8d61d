#include "platform/controls/Control.h"

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QKeyEvent>
#include <QWidget>
#include <algorithm>

#include "platform/qt/HeldKey.h"
#include "platform/qt/QtText.h"

namespace {

// The nearest control before it in the tab order that the user can see and reach, or nullptr.
QWidget* ControlBefore(const QWidget& widget) {
    const QWidget* content = widget.parentWidget();
    for (QWidget* other = widget.previousInFocusChain(); !other->isWindow();
         other = other->previousInFocusChain())
        if (other->parentWidget() == content && other->isEnabled() &&
            (other->focusPolicy() & Qt::TabFocus) != 0 &&
            content->rect().intersects(other->geometry()))
            return other;
    return nullptr;
}

bool IsModifier(int key) {
    return key == Qt::Key_Control || key == Qt::Key_Shift || key == Qt::Key_Alt ||
           key == Qt::Key_Meta;
}

// The user does something else. A modifier key alone may belong to the keys that stop a run, and a
// key that is held down may be the one that started it.
bool IsNewInput(const QEvent& event) {
    if (event.type() == QEvent::MouseButtonPress) return true;
    if (event.type() != QEvent::KeyPress) return false;
    return !IsModifier(static_cast<const QKeyEvent&>(event).key()) && !KeyIsHeld();
}

}  // namespace

// The focus of a control that was disabled while it had it. It comes back unless there was new
// input meanwhile.
class RectControl::FocusLoan : public QObject {
  public:
    FocusLoan() { qApp->installEventFilter(this); }

    bool ComesBack() const { return mComesBack; }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (IsNewInput(*event)) mComesBack = false;
        return false;
    }

  private:
    bool mComesBack = true;
};

RectControl::RectControl(std::string name, QWidget* native)
    : Control(std::move(name)), mNative(native) {
    mNative->setObjectName(ToQt(Name()));
}

RectControl::~RectControl() { delete mNative; }

bool RectControl::Enabled() const { return mNative->isEnabled(); }

void RectControl::Enabled(bool enabled) {
    if (!enabled && mNative->window()->focusWidget() == mNative) {
        // Where there is none, Qt gives the focus to the next one.
        if (QWidget* before = ControlBefore(*mNative)) before->setFocus();
        mFocusLoan = std::make_unique<FocusLoan>();
    }
    mNative->setEnabled(enabled);
    if (enabled && mFocusLoan) {
        if (mFocusLoan->ComesBack()) mNative->setFocus();
        mFocusLoan.reset();
    }
}

void RectControl::Place(const ControlPlace& place) {
    mPlace = place;
    QFont font = mNative->font();
    font.setPixelSize(place.TextSize);
    mNative->setFont(font);
    FollowWindow(0, 0);
}

void RectControl::AccessibleName(std::string_view name) { mNative->setAccessibleName(ToQt(name)); }

void RectControl::AccessibleDescription(std::string_view description) {
    mNative->setAccessibleDescription(ToQt(description));
}

void RectControl::HelpTag(std::string_view text) { mNative->setToolTip(ToQt(text)); }

void RectControl::SetFocus() { mNative->setFocus(); }

void RectControl::FollowWindow(int grownWidth, int grownHeight) {
    const auto stretch = [](bool near, bool far, int grown) { return near && far ? grown : 0; };
    const auto move = [](bool near, bool far, int grown) { return far && !near ? grown : 0; };
    const ControlPlace& p = mPlace;
    mNative->setGeometry(p.Left + move(p.Locks.Left, p.Locks.Right, grownWidth),
                         p.Top + move(p.Locks.Top, p.Locks.Bottom, grownHeight),
                         std::max(0, p.Width + stretch(p.Locks.Left, p.Locks.Right, grownWidth)),
                         std::max(0, p.Height + stretch(p.Locks.Top, p.Locks.Bottom, grownHeight)));
}
