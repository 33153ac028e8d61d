#include "platform/window/Menu.h"

#include <algorithm>

#include "platform/text/Text.h"

std::shared_ptr<MenuItem> MenuItem::Child(std::string_view name) const {
    const auto item = std::find_if(mItems.begin(), mItems.end(),
                                   [&](const auto& child) { return Equal(child->Name(), name); });
    return item == mItems.end() ? nullptr : *item;
}
