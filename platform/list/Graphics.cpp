#include "platform/list/Graphics.h"

#include <QColor>
#include <QPainter>

void Graphics::FillRect(std::int64_t left, std::int64_t top, std::int64_t width,
                        std::int64_t height) {
    const QRect rect(static_cast<int>(left), static_cast<int>(top), static_cast<int>(width),
                     static_cast<int>(height));
    mPainter->fillRect(rect, QColor::fromRgb(mForeColor));
}
