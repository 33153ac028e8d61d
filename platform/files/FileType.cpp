#include "platform/files/FileType.h"

#include <algorithm>

#include "platform/text/Text.h"

namespace {

// In the order of registration. A type that is destroyed takes itself out.
std::vector<const FileType*>& Registered() {
    static std::vector<const FileType*> types;
    return types;
}

}  // namespace

// Makes the registry before the type, so that the registry is destroyed after it.
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

std::string operator+(FileType& a, FileType& b) {
    std::string sum = std::string(a) + ";" + std::string(b);
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
