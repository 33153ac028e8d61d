#include "kit/Images.h"

#include <unistd.h>

#include <QUtf8StringView>
#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>

#include "kit/Folder.h"
#include "kit/Refusal.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t kFlashEnd = std::uint64_t{1} << 32;
constexpr std::uint64_t kSector = 4096;  // flash is erased in sectors

// An image's bytes on the chip are those from `start` to before `stop`.
struct Place {
    const fs::path* file;
    std::string name;
    std::uint64_t start, stop;
};

void CheckName(const std::string& name) {
    const std::string hold = "a setting file can't hold a name with ";
    if (name.find(',') != std::string::npos) throw Refusal(hold + "a comma: " + name);
    if (name.find_first_of("\r\n") != std::string::npos)
        throw Refusal(hold + "a line end: " + name);
    if (!QUtf8StringView(name).isValidUtf8())
        throw Refusal(hold + "bytes that are no UTF-8: " + name);
    if (name == kSettingName) throw Refusal(name + " is the name of the setting file");
}

bool SameBytes(const fs::path& a, const fs::path& b) {
    using Bytes = std::istreambuf_iterator<char>;
    std::ifstream first(a, std::ios::binary);
    std::ifstream second(b, std::ios::binary);
    return fs::file_size(a) == fs::file_size(b) && std::equal(Bytes(first), Bytes(), Bytes(second));
}

}  // namespace

bool IsReadable(const fs::path& file) {
    std::error_code ignored;
    return file.native().find('\0') == std::string::npos && fs::is_regular_file(file, ignored) &&
           access(file.c_str(), R_OK) == 0;
}

std::uint32_t ReadAddress(const std::string& text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const char* const digits = text.data() + (hexadecimal ? 2 : 0);
    const char* const end = text.data() + text.size();
    std::uint64_t number = 0;
    const auto [stop, error] = std::from_chars(digits, end, number, hexadecimal ? 16 : 10);
    // A leading 0 means base 8 to some tools.
    const bool octal = !hexadecimal && text.size() > 1 && text[0] == '0';
    if (octal || stop != end || error == std::errc::invalid_argument)
        throw Refusal("not a number such as 65536 or 0x10000: " + text);
    if (error != std::errc() || number >= kFlashEnd)
        throw Refusal("address beyond 32 bits: " + text);
    return static_cast<std::uint32_t>(number);
}

std::string CheckImages(const std::vector<Image>& images, bool copied) {
    std::string warning;
    std::vector<Place> taken;
    for (const auto& [file, address] : images) {
        const std::string name = file.filename().string();
        CheckName(name);
        if (!IsReadable(file)) throw Refusal("no image to read at " + file.string());
        const std::uint64_t start = ReadAddress(address);
        const std::uint64_t stop = start + fs::file_size(file);
        for (const Place& other : taken)
            if (other.name == name && !fs::equivalent(*other.file, file) &&
                !(copied && SameBytes(*other.file, file)))
                throw Refusal("two images with the name " + name);
        if (stop > kFlashEnd) throw Refusal(name + " ends beyond 32 bits");
        for (const Place& other : taken) {
            if (start == stop || other.start == other.stop) continue;
            if (start < other.stop && other.start < stop)
                throw Refusal(other.name + " and " + name + " overlap");
            if (start / kSector <= (other.stop - 1) / kSector &&
                other.start / kSector <= (stop - 1) / kSector)
                warning = other.name + " and " + name + " share a sector of 4096 bytes: the " +
                          "official tool won't write them";
        }
        taken.push_back({&file, name, start, stop});
    }
    return warning;
}
