// Conversion between the logic's text (UTF-8) and Qt's. The only place where it happens.
#pragma once

#include <string>
#include <string_view>

class QString;

// Bytes that are no UTF-8 become replacement characters.
QString ToQt(std::string_view text);
std::string FromQt(const QString& text);

// A key name as the menus write it, "Cmd+Q", in Qt's form: Cmd is the command key on macOS and
// Ctrl elsewhere.
QString ToQtKeys(std::string_view shortcut);

bool IsUtf8(std::string_view text);

// From Shift_JIS. A Qt that was built without this encoding leaves the bytes as they are.
std::string FromShiftJis(std::string_view bytes);

// The canonically composed form of a name, for comparing names that were written on different
// systems. CaseFolded also folds upper and lower case.
std::string Composed(std::string_view text);
std::string CaseFolded(std::string_view text);
