#include "platform/Control.h"

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QKeyEvent>
#include <QWidget>
#include <algorithm>

#include "platform/Native.h"
#include "platform/QtText.h"

namespace {

// The nearest control on that side in the tab order that the user can see and reach.
QWidget* Neighbour(const QWidget& widget, QWidget* (QWidget::*step)() const) {
    const QWidget* content = widget.parentWidget();
    for (QWidget* next = (widget.*step)(); next != &widget && !next->isWindow();
         next = (next->*step)())
        if (next->parentWidget() == content && next->isEnabled() &&
            (next->focusPolicy() & Qt::TabFocus) != 0 &&
            content->rect().intersects(next->geometry()))
            return next;
    return nullptr;
}

// The first of the two keys of Ctrl+., say, which stops a run and takes the focus nowhere.
bool IsModifier(const QKeyEvent* event) {
    const int key = event->key();
    return key == Qt::Key_Control || key == Qt::Key_Shift || key == Qt::Key_Alt ||
           key == Qt::Key_Meta;
}

constexpr auto kFocusLoan = "FocusLoan";

// Child of a control that had the focus when it was disabled; ends with the user's next input.
class FocusLoan : public QObject {
  public:
    explicit FocusLoan(QWidget& lender) : QObject(&lender) {
        setObjectName(kFocusLoan);
        qApp->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonPress ||
            (event->type() == QEvent::KeyPress && !IsModifier(static_cast<QKeyEvent*>(event)))) {
            qApp->removeEventFilter(this);
            setObjectName({});
            deleteLater();
        }
        return false;
    }
};

}  // namespace

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
    if (!enabled && widget->window()->focusWidget() == widget) {
        QWidget* heir = Neighbour(*widget, &QWidget::previousInFocusChain);
        if (heir == nullptr) heir = Neighbour(*widget, &QWidget::nextInFocusChain);
        if (heir != nullptr) heir->setFocus();
        new FocusLoan(*widget);  // the widget owns it
    }
    widget->setEnabled(enabled);
    if (auto* loan = widget->findChild<QObject*>(kFocusLoan); loan != nullptr && enabled) {
        delete loan;
        widget->setFocus();
    }
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
