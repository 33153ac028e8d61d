#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// An image and the flash address that it goes to, as the user or a build gave them.
struct Image {
    std::filesystem::path file;
    std::string address;
};

// Throws a Refusal unless the images can go into one folder and onto one chip: names that a setting
// file can hold, files that can be read, addresses of 32 bits, no overlap. One name can stand for
// one file alone; where the files are copied, two of the same bytes count as one. Returns a warning
// where the official tool won't write them all the same, else an empty text.
std::string CheckImages(const std::vector<Image>& images, bool copied);

// Throws a Refusal unless the text is a number of 32 bits: decimal, or hexadecimal behind 0x.
std::uint32_t ReadAddress(const std::string& text);

// A regular file, or a link to one, that this user may read.
bool IsReadable(const std::filesystem::path& file);
