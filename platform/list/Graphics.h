#pragma once

#include <cstdint>
#include <functional>
#include <utility>

// 0xRRGGBB.
using Color = std::uint32_t;

struct FilledRect {
    std::int64_t left, top, width, height;
    Color color;
};

// The drawing surface of one cell, valid during the event that hands it out. (0, 0) is the cell's
// top left corner; nothing is drawn outside the cell.
class Graphics {
  public:
    // `fill` draws a rectangle, given from the cell's top left corner.
    Graphics(std::int64_t width, std::int64_t height, std::function<void(const FilledRect&)> fill)
        : mWidth(width), mHeight(height), mFill(std::move(fill)) {}

    void ForeColor(Color color) { mForeColor = color; }
    std::int64_t Width() const { return mWidth; }
    std::int64_t Height() const { return mHeight; }
    void FillRect(std::int64_t left, std::int64_t top, std::int64_t width, std::int64_t height) {
        mFill({left, top, width, height, mForeColor});
    }

  private:
    std::int64_t mWidth, mHeight;
    std::function<void(const FilledRect&)> mFill;
    Color mForeColor = 0;
};
