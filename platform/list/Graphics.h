#pragma once

#include <cstdint>

class QPainter;

// 0xRRGGBB.
using Color = std::uint32_t;

// The drawing surface of one cell, valid during the event that hands it out. (0, 0) is the cell's
// top left corner; nothing is drawn outside the cell.
class Graphics {
  public:
    // The painter's origin is the cell's corner.
    Graphics(QPainter* painter, std::int64_t width, std::int64_t height)
        : mPainter(painter), mWidth(width), mHeight(height) {}

    void ForeColor(Color color) { mForeColor = color; }
    std::int64_t Width() const { return mWidth; }
    std::int64_t Height() const { return mHeight; }
    void FillRect(std::int64_t left, std::int64_t top, std::int64_t width, std::int64_t height);

  private:
    QPainter* mPainter;
    std::int64_t mWidth, mHeight;
    Color mForeColor = 0;
};
