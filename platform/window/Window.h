#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/controls/Control.h"

// A document window with title bar, close, minimise and maximise buttons, and the application's
// menu bar. Lengths are device-independent pixels of its content area, below the menu bar.
class Window {
  public:
    Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    virtual ~Window();

    void Title(std::string_view title);
    // The content's size at the start. The places of the controls refer to it.
    void Width(int width);
    void Height(int height);
    void MinWidth(int width);
    void MinHeight(int height);
    void MaxWidth(int width);
    void MaxHeight(int height);

    // Shows the window, no larger than the screen's free area. The first call raises the Open
    // events: first those of the controls, in the order of their creation, then the window's.
    void Show();

    // Runs `action` when the user presses the keys, such as "Cmd+.", anywhere in the window. Held
    // keys run it once.
    void OnKeys(std::string_view keys, std::function<void()> action);
    // Returns the names of the keys on the user's keyboard: "Ctrl+." where there is no command key.
    static std::string KeysAsShown(std::string_view keys);

    // Marks the window in the desktop's list of tasks, if it isn't in front.
    void AskForAttention();

    std::function<void()> Open;
    // The user closed the window.
    std::function<void()> Close;

    // Returns the window that was registered under this name, or nullptr. The registry keeps the
    // windows alive until EndFramework.
    static std::shared_ptr<Window> Live(std::string_view name);
    static void Register(std::string_view name, std::shared_ptr<Window> window);

    class Frame;  // the window of the desktop; see Window.cpp
    Frame& NativeFrame() const { return *mFrame; }

  protected:
    // Creates a control of this window, without a visual form, and adds it to the control list.
    template <class C>
    C& Add(std::string name) {
        return AddToList(std::make_unique<C>(*this, std::move(name)));
    }

    // The same for a visual control, which also gets its place.
    template <class C, class... Arguments>
    C& Add(std::string name, const ControlPlace& place, Arguments&&... arguments) {
        C& control = AddToList(
            std::make_unique<C>(*this, std::move(name), std::forward<Arguments>(arguments)...));
        control.Place(place);
        return control;
    }

    // The control of that name in the control list, as its class.
    template <class C>
    C& ControlNamed(std::string_view name) const {
        return dynamic_cast<C&>(Find(name));
    }

  private:
    template <class C>
    C& AddToList(std::unique_ptr<C> control) {
        mControls.push_back(std::move(control));
        return static_cast<C&>(*mControls.back());
    }

    Control& Find(std::string_view name) const;
    std::vector<RectControl*> VisualControls() const;
    void SetTabOrder() const;

    std::unique_ptr<Frame> mFrame;
    std::vector<std::unique_ptr<Control>> mControls;  // destroyed before the frame
};
