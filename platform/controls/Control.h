// The base of all controls. A control belongs to its window, which destroys it; it owns the Qt
// widget behind it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

class QWidget;
class Window;

class Control {
  public:
    explicit Control(std::string name) : mName(std::move(name)) {}
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    const std::string& Name() const { return mName; }

    // Raises the control's Open event, where it has one. Called once, by the window.
    virtual void RaiseOpen() {}

    // From now on the control raises no event. A window detaches all of its controls before it
    // destroys the first of them.
    void DetachHandlers() { mDetached = true; }

  protected:
    // Runs an event's handler, where there is one, and returns its result.
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

// The sides of a control that keep their distance from the same side of the window. On an axis
// with no lock the control keeps its left or top distance.
struct Locks {
    bool Left = false, Top = false, Right = false, Bottom = false;
};

// Place of a control at the start. Lengths are device-independent pixels from the top left corner
// of the window's content; a negative place lies outside it.
struct ControlPlace {
    int Left, Top, Width, Height;
    ::Locks Locks;
    int TabIndex;
    int TextSize;  // height of the font
};

class RectControl : public Control {
  public:
    ~RectControl() override;

    // The focus of a control that is disabled goes to one that the user sees, and comes back when
    // it is enabled, unless the user has pressed a key or a mouse button meanwhile.
    bool Enabled() const;
    void Enabled(bool enabled);

    void Place(const ControlPlace& place);
    int TabIndex() const { return mPlace.TabIndex; }

    // What a screen reader calls the control, and what it says of it besides.
    void AccessibleName(std::string_view name);
    void AccessibleDescription(std::string_view description);

    // The tooltip; empty for none.
    void HelpTag(std::string_view text);

    void SetFocus();

    // Moves and resizes the control for a content that has grown by so many pixels since the start.
    void FollowWindow(int grownWidth, int grownHeight);

    QWidget* Native() const { return mNative; }

  protected:
    // Takes ownership of the widget.
    RectControl(std::string name, QWidget* native);

  private:
    class FocusLoan;

    QWidget* mNative;
    std::unique_ptr<FocusLoan> mFocusLoan;  // while disabled, if the control had the focus
    ControlPlace mPlace{};
};
