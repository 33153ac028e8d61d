// Conversion between the logic's text (UTF-8) and the toolkit's. The only place where it happens.
#pragma once

#include <string>
#include <string_view>

class QString;

// Bytes that are no UTF-8 become replacement characters.
QString ToQt(std::string_view text);
std::string FromQt(const QString& text);

// A key name as the menus write it, "Cmd+Q", in the toolkit's form: Cmd is the command key on
// macOS and Ctrl elsewhere.
QString ToQtKeys(std::string_view shortcut);

// The canonically composed form of a name, for comparing names written on different systems.
std::string Composed(std::string_view text);
