#include "platform/files/FileType.h"

#include <algorithm>

#include "platform/text/Text.h"

namespace {

// In the order of registration. The types live as long as the program or take themselves out.
std::vector<const FileType*>& Registered() {
    static std::vector<const FileType*> types;
    return types;
}

}  // namespace

// The registry outlives every type: it is there before the first of them.
FileType::FileType() { Registered(); }

void FileType::Set(std::string& property, std::string_view value) {
    Unregister();
    property = value;
}

void FileType::Register() {
    Unregister();
    Registered().push_back(this);
}

void FileType::Unregister() { std::erase(Registered(), this); }

FileType::operator std::string() {
    Register();
    return mName;
}

std::string operator+(FileType& a, FileType& b) { return std::string(a) + b; }

std::string operator+(const std::string& filter, FileType& type) {
    std::string sum = filter + ";" + std::string(type);
    for (auto at = sum.find(";;"); at != sum.npos; at = sum.find(";;", at)) sum.erase(at, 1);
    return sum;
}

std::string FileType::NameFor(std::string_view fileName) {
    const auto dot = fileName.rfind('.');
    if (dot == fileName.npos) return {};
    const auto extension = fileName.substr(dot + 1);
    for (const FileType* type : Registered())
        if (Equal(type->mExtensions, extension)) return type->mName;
    return {};
}

std::vector<std::string> FileType::ExtensionsIn(std::string_view filter) {
    std::vector<std::string> extensions;
    for (const FileType* type : Registered()) {
        bool named = false;
        for (std::int64_t n = 1; !named && n <= std::count(filter.begin(), filter.end(), ';') + 1;
             ++n)
            named = Equal(NthField(filter, ";", n), type->mName);
        if (named) extensions.push_back(type->mExtensions);
    }
    return extensions;
}
