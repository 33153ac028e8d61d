#include "frame/FileTypes.h"

namespace FileTypes1 {

namespace {

void Describe(FileType& type, std::string_view name, std::string_view extensions) {
    type.Name(name);
    type.Extensions(extensions);
    type.MacType("");
    type.MacCreator("");
    type.MimeType("");
    type.Imported(true);
    type.ConformsTo("");
}

}  // namespace

FileType& BinFile() {
    static FileType type;
    return type;
}

FileType& InstSet() {
    static FileType type;
    return type;
}

void Initialize() {
    Describe(BinFile(), "Bin File", "bin");
    Describe(InstSet(), "Install Setting", "csv");
    // The conversion registers them.
    static_cast<void>(std::string(BinFile()));
    static_cast<void>(std::string(InstSet()));
}

}  // namespace FileTypes1
