#pragma once

#include <string>
#include <string_view>

// Captions that can be translated; the empty language is the user's.
namespace Module1 {
std::string kConnect(std::string_view language);
std::string kDisconnect(std::string_view language);
std::string kScan(std::string_view language);
std::string kSelect(std::string_view language);
std::string kDelete(std::string_view language);
}  // namespace Module1
