#pragma once

#include "platform/FileType.h"

// The two types of file that the program knows.
namespace FileTypes1 {
FileType& BinFile();
FileType& InstSet();

// Sets and registers both. Once, before the window exists.
void Initialize();
}  // namespace FileTypes1
