#include "kit/ImageList.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "kit/Refusal.h"

namespace {

char Take(std::string_view& line) {
    const char c = line.front();
    line.remove_prefix(1);
    return c;
}

// Takes the rest of a quoted text and the quote at its end.
std::string TakeQuoted(std::string_view& line, char quote, const std::string& list) {
    std::string text;
    while (!line.empty()) {
        char c = Take(line);
        if (c == quote) return text;
        const bool escapes = quote == '"' && c == '\\';
        if (escapes && (line.starts_with('"') || line.starts_with('\\'))) c = Take(line);
        text += c;
    }
    throw Refusal("a quote without its end in " + list);
}

// Appends the words of a line. Quotes and backslashes are those of the shell.
void SplitLine(std::string_view line, const std::string& list, std::vector<std::string>& words) {
    std::optional<std::string> word;
    while (!line.empty()) {
        const char c = Take(line);
        if (c == ' ' || c == '\t' || c == '\r') {
            if (word) words.push_back(*std::exchange(word, {}));
            continue;
        }
        if (!word) word.emplace();
        if (c == '\'' || c == '"') {
            *word += TakeQuoted(line, c, list);
        } else if (c != '\\') {
            *word += c;
        } else if (!line.empty()) {
            *word += Take(line);
        } else {
            throw Refusal("nothing after a backslash in " + list);
        }
    }
    if (word) words.push_back(*word);
}

bool IsFlashOption(std::string name) {
    const std::size_t underscore = name.find('_');
    if (underscore != std::string::npos) name[underscore] = '-';
    return name == "--flash-mode" || name == "--flash-freq" || name == "--flash-size";
}

}  // namespace

std::string ReadBuildFile(const std::filesystem::path& file, std::size_t limit) {
    if (!IsReadable(file)) throw Refusal("no list to read at " + file.string());
    if (std::filesystem::file_size(file) > limit)
        throw Refusal("too large for a list of images: " + file.string());
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<Image> ReadImageList(const std::filesystem::path& list) {
    const std::string name = list.string();
    const std::string text = ReadBuildFile(list, 8192);
    std::vector<std::string> words;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        SplitLine(std::string_view(text).substr(start, end - start), name, words);
        start = end + 1;
    }

    std::vector<Image> images;
    std::string option;                  // waits for its value
    std::optional<std::string> address;  // waits for its image
    for (const std::string& word : words) {
        if (!option.empty()) {
            if (word.empty() || word[0] == '-') break;
            option.clear();
        } else if (word.starts_with('-')) {
            const std::size_t sign = word.find('=');
            if (!IsFlashOption(word.substr(0, sign)) || sign + 1 == word.size())
                throw Refusal("unknown option in " + name + (": " + word));
            if (sign == std::string::npos) option = word;
        } else if (!address) {
            ReadAddress(word);
            address = word;
        } else {
            images.push_back({list.parent_path() / word, *address});
            address.reset();
        }
    }
    if (!option.empty()) throw Refusal("no value after " + option + " in " + name);
    if (address) throw Refusal("address without a file in " + name + ": " + *address);
    if (images.empty()) throw Refusal("no image in " + name);
    return images;
}
