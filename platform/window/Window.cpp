#include "platform/window/Window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLayout>
#include <QMainWindow>
#include <QMenuBar>
#include <QScreen>
#include <QShortcut>
#include <algorithm>
#include <map>
#include <stdexcept>

#include "platform/application/Application.h"
#include "platform/qt/ControlWidget.h"
#include "platform/qt/HeldKey.h"
#include "platform/qt/OpenEdit.h"
#include "platform/qt/QtText.h"
#include "platform/text/Text.h"
#include "platform/window/Menu.h"
#include "platform/window/private/NativeMenu.h"

class Window::Frame : public QMainWindow {
  public:
    explicit Frame(Window& window) : mWindow(window), mContent(*new Content(*this)) {
        setCentralWidget(&mContent);
        setWindowFlag(Qt::WindowFullscreenButtonHint, false);
        layout()->setSizeConstraint(
            QLayout::SetNoConstraint);  // only the window's own limits apply
        if (const auto menus = ApplicationMenuBar()) BuildMenuBar(*menuBar(), *menus);
    }

    QWidget* ContentWidget() const { return &mContent; }

    void ShowAtStartSize() {
        SetLimits(0);
        resize(mStartSize.width(), mStartSize.height() + menuBar()->sizeHint().height());
        show();
        // The height of the menu bar is known once the window is shown.
        const int above = height() - mContent.height();
        SetLimits(above);
        resize(mStartSize.width(), mStartSize.height() + above);
        FitIntoScreen();
    }

    QSize mStartSize, mMinimum, mMaximum;

  protected:
    bool event(QEvent* event) override {
        // The window manager adds the window decorations after show() has returned. By the time the
        // window becomes active, frameGeometry() includes them.
        if (event->type() == QEvent::WindowActivate && !std::exchange(mCameUp, true))
            FitIntoScreen();
        return QMainWindow::event(event);
    }
    void closeEvent(QCloseEvent* event) override {
        QMainWindow::closeEvent(event);
        if (mWindow.Close) mWindow.Close();
    }

  private:
    class Content : public QWidget {
      public:
        explicit Content(Frame& frame) : QWidget(&frame), mFrame(frame) {}

      protected:
        void resizeEvent(QResizeEvent*) override {
            const QSize grown = size() - mFrame.mStartSize;
            for (RectControl* control : mFrame.mWindow.VisualControls())
                control->FollowWindow(grown.width(), grown.height());
        }

      private:
        Frame& mFrame;
    };

    void FitIntoScreen() {
        const QSize around = frameGeometry().size() - size();
        resize(size().boundedTo(screen()->availableSize() - around));
    }

    void SetLimits(int above) {
        setMinimumSize(mMinimum.width(), mMinimum.height() + above);
        setMaximumSize(mMaximum.width(), mMaximum.height() + above);
    }

    Window& mWindow;
    Content& mContent;
    bool mCameUp = false;
};

QWidget* ContentOf(const Window& window) { return window.NativeFrame().ContentWidget(); }

Window::Window() : mFrame(std::make_unique<Frame>(*this)) {}

Window::~Window() {
    for (const auto& control : mControls) control->DetachHandlers();
    mFrame->hide();  // ending a run may take a moment
}

void Window::Title(std::string_view title) { mFrame->setWindowTitle(ToQt(title)); }
void Window::Width(int width) { mFrame->mStartSize.setWidth(width); }
void Window::Height(int height) { mFrame->mStartSize.setHeight(height); }
void Window::MinWidth(int width) { mFrame->mMinimum.setWidth(width); }
void Window::MinHeight(int height) { mFrame->mMinimum.setHeight(height); }
void Window::MaxWidth(int width) { mFrame->mMaximum.setWidth(width); }
void Window::MaxHeight(int height) { mFrame->mMaximum.setHeight(height); }

void Window::Show() {
    SetTabOrder();
    for (const RectControl* control : VisualControls())
        if (control->LiesOnTop()) WidgetOf(*control).raise();
    mFrame->ShowAtStartSize();
    for (const auto& control : mControls) control->RaiseOpen();
    if (Open) Open();
}

void Window::OnKeys(std::string_view keys, std::function<void()> action) {
    auto* shortcut = new QShortcut(ToQtKeys(keys), mFrame.get());
    shortcut->setContext(Qt::ApplicationShortcut);  // also while a popup menu is open
    QObject::connect(shortcut, &QShortcut::activated, mFrame.get(), [action = std::move(action)] {
        if (KeyIsHeld()) return;
        CommitOpenEdit();
        action();
    });
}

std::string Window::KeysAsShown(std::string_view keys) {
    return FromQt(QKeySequence(ToQtKeys(keys)).toString(QKeySequence::NativeText));
}

void Window::AskForAttention() { QApplication::alert(mFrame.get()); }

Control& Window::Find(std::string_view name) const {
    const auto control =
        std::find_if(mControls.begin(), mControls.end(),
                     [&](const auto& candidate) { return Equal(candidate->Name(), name); });
    if (control == mControls.end()) throw std::out_of_range("no control " + std::string(name));
    return **control;
}

std::vector<RectControl*> Window::VisualControls() const {
    std::vector<RectControl*> controls;
    for (const auto& control : mControls)
        if (auto* visual = dynamic_cast<RectControl*>(control.get())) controls.push_back(visual);
    return controls;
}

void Window::SetTabOrder() const {
    auto controls = VisualControls();
    std::erase_if(controls,
                  [](RectControl* c) { return WidgetOf(*c).focusPolicy() == Qt::NoFocus; });
    std::stable_sort(controls.begin(), controls.end(),
                     [](RectControl* a, RectControl* b) { return a->TabIndex() < b->TabIndex(); });
    for (std::size_t i = 1; i < controls.size(); ++i)
        QWidget::setTabOrder(&WidgetOf(*controls[i - 1]), &WidgetOf(*controls[i]));
}

namespace {

std::map<std::string, std::shared_ptr<Window>, std::less<>>& LiveWindows() {
    static std::map<std::string, std::shared_ptr<Window>, std::less<>> windows;
    return windows;
}

}  // namespace

std::shared_ptr<Window> Window::Live(std::string_view name) {
    const auto window = LiveWindows().find(name);
    return window == LiveWindows().end() ? nullptr : window->second;
}

void Window::Register(std::string_view name, std::shared_ptr<Window> window) {
    if (LiveWindows().empty()) AtEnd([] { LiveWindows().clear(); });
    LiveWindows().insert_or_assign(std::string(name), std::move(window));
}
