#pragma once

#include "kit/Images.h"

// The images of a list such as flash_args, with names relative to the list's folder. The words are
// split as by a shell. Options for the flash chip are left out, since the headers of the images
// hold the same. Throws a Refusal where it is no such list.
std::vector<Image> ReadImageList(const std::filesystem::path& list);

// All bytes of a file that names images. Throws a Refusal where it can't be read or has more than
// `limit`.
std::string ReadBuildFile(const std::filesystem::path& file, std::size_t limit);
