#include "platform/controls/Control.h"

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QKeyEvent>
#include <algorithm>

#include "platform/qt/ControlWidget.h"
#include "platform/qt/HeldKey.h"
#include "platform/qt/QtText.h"

namespace {

// Returns the nearest control before the widget in the tab order that the user can see and reach;
// nullptr if there is none.
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

// True when the user does something new. A modifier key alone doesn't count, since it may belong to
// the keys that stop a run; nor does a held key, since it may be the one that started the run.
bool IsNewInput(const QEvent& event) {
    if (event.type() == QEvent::MouseButtonPress) return true;
    if (event.type() != QEvent::KeyPress) return false;
    return !IsModifier(static_cast<const QKeyEvent&>(event).key()) && !KeyIsHeld();
}

}  // namespace

// Remembers that a control had the focus when it was disabled. The focus comes back unless there
// has been new input.
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

RectControl::RectControl(std::string name, std::unique_ptr<Native> native)
    : Control(std::move(name)), mNative(std::move(native)) {
    mNative->widget->setObjectName(ToQt(Name()));
}

RectControl::~RectControl() = default;

bool RectControl::Enabled() const { return mNative->widget->isEnabled(); }

void RectControl::Enabled(bool enabled) {
    QWidget& widget = *mNative->widget;
    if (!enabled && widget.window()->focusWidget() == &widget) {
        // Without such a control Qt gives the focus to the next one.
        if (QWidget* before = ControlBefore(widget)) before->setFocus();
        mFocusLoan = std::make_unique<FocusLoan>();
    }
    widget.setEnabled(enabled);
    if (enabled && mFocusLoan) {
        if (mFocusLoan->ComesBack()) widget.setFocus();
        mFocusLoan.reset();
    }
}

void RectControl::Place(const ControlPlace& place) {
    mPlace = place;
    QFont font = mNative->widget->font();
    font.setPixelSize(place.TextSize);
    mNative->widget->setFont(font);
    FollowWindow(0, 0);
}

void RectControl::AccessibleName(std::string_view name) {
    mNative->widget->setAccessibleName(ToQt(name));
}

void RectControl::AccessibleDescription(std::string_view description) {
    mNative->widget->setAccessibleDescription(ToQt(description));
}

void RectControl::HelpTag(std::string_view text) { mNative->widget->setToolTip(ToQt(text)); }

void RectControl::SetFocus() { mNative->widget->setFocus(); }

void RectControl::FollowWindow(int grownWidth, int grownHeight) {
    const auto stretch = [](bool near, bool far, int grown) { return near && far ? grown : 0; };
    const auto move = [](bool near, bool far, int grown) { return far && !near ? grown : 0; };
    const ControlPlace& p = mPlace;
    mNative->widget->setGeometry(
        p.Left + move(p.Locks.Left, p.Locks.Right, grownWidth),
        p.Top + move(p.Locks.Top, p.Locks.Bottom, grownHeight),
        std::max(0, p.Width + stretch(p.Locks.Left, p.Locks.Right, grownWidth)),
        std::max(0, p.Height + stretch(p.Locks.Top, p.Locks.Bottom, grownHeight)));
}
