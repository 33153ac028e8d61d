// What a list keeps in each cell besides its text.
#pragma once

#include <any>

// A value of any type, or none.
using Variant = std::any;

// The type of a cell that the user can edit.
inline constexpr int kEditableCell = 3;
