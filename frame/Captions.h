#pragma once

#include <string>
#include <string_view>

// The captions that can be translated. An empty language means that of the user.
namespace Module1 {
std::string kConnect(std::string_view language);
std::string kDisconnect(std::string_view language);
std::string kScan(std::string_view language);
std::string kSelect(std::string_view language);
std::string kDelete(std::string_view language);
}  // namespace Module1
