#pragma once

#include "platform/files/FileType.h"

// The types of file that the program knows.
namespace FileTypes1 {
FileType& BinFile();
FileType& InstSet();

// Describes and registers all types. Call it once, before the window exists.
void Initialize();
}  // namespace FileTypes1
