// The base of all controls. A control belongs to its window, which destroys it, and owns the widget
// behind it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

class Window;

class Control {
  public:
    explicit Control(std::string name) : mName(std::move(name)) {}
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    const std::string& Name() const { return mName; }

    // Raises the Open event of a control that has one. The window calls it once.
    virtual void RaiseOpen() {}

    // The control raises no event any more. A window detaches all of its controls before it
    // destroys the first of them.
    void DetachHandlers() { mDetached = true; }

  protected:
    // Runs the handler of an event and returns its result. Without a handler it does nothing.
    template <class Result, class Sender, class... Arguments>
    Result Raise(const std::function<Result(Sender&, Arguments...)>& handler,
                 std::type_identity_t<Arguments>... arguments) {
        if (mDetached || !handler) return Result();
        return handler(static_cast<Sender&>(*this), arguments...);
    }

  private:
    std::string mName;
    bool mDetached = false;
};

// A locked side of a control keeps its distance from the same side of the window. On an axis
// without a lock the control keeps its distance from the left or from the top.
struct Locks {
    bool Left = false, Top = false, Right = false, Bottom = false;
};

// The place of a control at the start. Lengths are device-independent pixels from the top left
// corner of the window's content. A negative place lies outside of it.
struct ControlPlace {
    int Left, Top, Width, Height;
    ::Locks Locks;
    int TabIndex;
    int TextSize;  // the font's height
};

class RectControl : public Control {
  public:
    ~RectControl() override;

    // A control that is disabled while it has the focus passes it to one that the user sees. It
    // gets the focus back when it is enabled, unless the user has pressed a key or a mouse button.
    bool Enabled() const;
    void Enabled(bool enabled);

    void Place(const ControlPlace& place);
    int TabIndex() const { return mPlace.TabIndex; }

    // A screen reader calls the control by this name, and adds the description.
    void AccessibleName(std::string_view name);
    void AccessibleDescription(std::string_view description);

    // The tooltip; empty for none.
    void HelpTag(std::string_view text);

    void SetFocus();

    // Moves and resizes the control, given how many pixels the window's content has grown since the
    // start.
    void FollowWindow(int grownWidth, int grownHeight);

    // True for a control that must stay visible and usable when another one grows over its place.
    virtual bool LiesOnTop() const { return false; }

    struct Native;  // the widget behind the control; see platform/qt/ControlWidget.h
    const Native& NativeSide() const { return *mNative; }

  protected:
    RectControl(std::string name, std::unique_ptr<Native> native);

  private:
    class FocusLoan;

    const std::unique_ptr<Native> mNative;
    std::unique_ptr<FocusLoan> mFocusLoan;  // while disabled, if the control had the focus
    ControlPlace mPlace{};
};
