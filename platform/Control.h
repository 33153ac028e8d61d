// The base of all controls. A control belongs to its window, which destroys it; it owns the
// toolkit's widget behind it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

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

  private:
    std::string mName;
};

// Design-time place of a control. Lengths are device-independent pixels from the top left corner
// of the window's content; a negative place lies outside it.
struct ControlPlace {
    int Left, Top, Width, Height;
    // A locked side keeps its distance from the same side of the window. On an axis with no lock
    // the control keeps its left or top distance.
    bool LockLeft, LockTop, LockRight, LockBottom;
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

    // What a screen reader calls the control.
    void AccessibleName(std::string_view name);

    // The control's place once the content has grown by so much from its design size.
    void FollowWindow(int grownWidth, int grownHeight);

    using NativeHandle = void*;  // the toolkit's widget
    NativeHandle Native() const { return mNative; }

  protected:
    RectControl(std::string name, NativeHandle native);

  private:
    NativeHandle mNative;
    ControlPlace mPlace{};
};
