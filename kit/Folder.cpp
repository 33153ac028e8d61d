#include "kit/Folder.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <set>

#include "kit/Refusal.h"
#include "kit/Signals.h"

namespace fs = std::filesystem;

namespace {

// The parts of a prepared folder.
constexpr const char* kTool = "esptool";
constexpr const char* kProgram = "quillstone";
constexpr const char* kImages = "bin";

// The folder in which the parts are made. It goes with this object, whatever is in it.
class WorkFolder {
  public:
    explicit WorkFolder(fs::path path) : mPath(std::move(path)) {
        if (!fs::create_directory(mPath))
            throw fs::filesystem_error("mkdir", mPath,
                                       std::make_error_code(std::errc::file_exists));
    }
    ~WorkFolder() {
        std::error_code ignored;
        fs::remove_all(mPath, ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const fs::path& Path() const { return mPath; }

  private:
    const fs::path mPath;
};

bool IsEntry(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }
bool IsFolder(const fs::path& path) { return fs::is_directory(fs::symlink_status(path)); }

// The names of the images, as a setting file with the kit's mark tells them; without the mark none,
// not even the file's own.
std::set<std::string> NamesIn(const fs::path& setting) {
    std::set<std::string> names;
    std::ifstream stream(setting, std::ios::binary);
    std::string line;
    if (!fs::is_regular_file(fs::symlink_status(setting)) || !std::getline(stream, line) ||
        line != kSettingMark)
        return names;
    names.insert(kSettingName);
    while (std::getline(stream, line))
        if (line.starts_with("up,")) names.insert(line.substr(3, line.find(',', 3) - 3));
    return names;
}

// Throws a Refusal if the folder holds an entry that the kit hasn't made.
void CheckOwn(const fs::path& folder) {
    const auto check = [&folder](const fs::path& entry, bool own) {
        if (!own)
            throw Refusal("neither an empty folder nor one by quillstone-kit: " + folder.string() +
                          ", because of " + entry.lexically_relative(folder).string());
    };
    const std::set<std::string> names = NamesIn(folder / kImages / kSettingName);
    for (const fs::path& entry : fs::directory_iterator(folder)) {
        const fs::path name = entry.filename();
        if (name == kProgram) {
            check(entry, !IsFolder(entry));
            continue;
        }
        check(entry, (name == kTool || name == kImages) && IsFolder(entry));
        for (const fs::path& inside : fs::directory_iterator(entry))
            check(inside, !IsFolder(inside) &&
                              (name == kTool ? inside.filename() == kTool
                                             : names.contains(inside.filename().string())));
    }
    // Without them there is nothing to know it by.
    for (const fs::path& part : {fs::path(kTool) / kTool, fs::path(kImages) / kSettingName})
        if (!IsEntry(folder / part))
            throw Refusal("neither an empty folder nor one by quillstone-kit: " + folder.string() +
                          " has no " + part.string());
}

// The file's whole path, without links on the way. The file itself may be a link, which the build
// may lead elsewhere.
fs::path WholePath(const fs::path& file) {
    return fs::canonical(file.has_parent_path() ? file.parent_path() : ".") / file.filename();
}

// A link into the folder would lead to itself when the parts are exchanged. The file may lie there,
// or be a link to a file there.
void CheckOutside(const fs::path& file, const fs::path& folder) {
    const fs::path top = fs::canonical(folder);
    for (const fs::path& path : {WholePath(file), fs::canonical(file)})
        if (std::mismatch(top.begin(), top.end(), path.begin(), path.end()).first == top.end())
            throw Refusal(file.string() + " lies in " + folder.string() + ": use --copy");
}

void Copy(const fs::path& file, const fs::path& to) {
    EndIfAsked();
    fs::copy_file(file, to);
}

void Link(const fs::path& file, const fs::path& to, const fs::path& folder) {
    EndIfAsked();
    std::error_code error;
    fs::create_symlink(WholePath(file), to, error);
    if (error == std::errc::operation_not_permitted || error == std::errc::operation_not_supported)
        throw Refusal("no link can be made in " + folder.string() + ": use --copy");
    if (error) throw fs::filesystem_error("symlink", to, error);
}

void MakeParts(const fs::path& work, const Contents& contents, const fs::path& folder) {
    const auto put = [&](const fs::path& file, const fs::path& to) {
        if (contents.copies)
            Copy(file, to);
        else
            Link(file, to, folder);
    };
    EndIfAsked();
    fs::create_directory(work / kImages);
    EndIfAsked();
    fs::create_directory(work / kTool);
    EndIfAsked();
    const fs::path setting = work / kImages / kSettingName;
    std::ofstream stream(setting, std::ios::binary);
    stream << kSettingMark << '\n' << contents.setting;
    stream.close();
    if (!stream)
        throw fs::filesystem_error("write", setting,
                                   std::error_code(errno, std::generic_category()));
    std::set<fs::path> names;
    for (const fs::path& image : contents.images)
        if (names.insert(image.filename()).second) put(image, work / kImages / image.filename());
    put(contents.tool, work / kTool / kTool);
    if (!contents.program.empty()) Copy(contents.program, work / kProgram);
    EndIfAsked();
}

// Exchanges two entries, either of which may be missing. `spare` is a free name. Where the file
// system can't do it in one step, one of them is away for a moment.
void Exchange(const fs::path& a, const fs::path& b, const fs::path& spare) {
    if (!IsEntry(a) && !IsEntry(b)) return;
    if (!IsEntry(b)) return fs::rename(a, b);
    if (!IsEntry(a)) return fs::rename(b, a);
#ifdef RENAME_EXCHANGE
    if (renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0) return;
    if (errno != EINVAL && errno != ENOSYS)
        throw fs::filesystem_error("rename", b, std::error_code(errno, std::generic_category()));
#endif
    fs::rename(b, spare);
    std::error_code error;
    fs::rename(a, b, error);
    if (error) {
        fs::rename(spare, b);
        throw fs::filesystem_error("rename", b, error);
    }
    fs::rename(spare, a);
}

// Exchanges the parts of the two folders: all of them, or none.
void ExchangeParts(const fs::path& work, const fs::path& folder) {
    std::vector<const char*> done;
    try {
        for (const char* part : {kTool, kProgram, kImages}) {
            Exchange(work / part, folder / part, work / "old");
            done.push_back(part);
        }
    } catch (...) {
        for (const char* part : done) Exchange(work / part, folder / part, work / "old");
        throw;
    }
}

}  // namespace

void MakeFolder(fs::path folder, const Contents& contents) {
    if (!folder.has_filename() && folder.has_relative_path()) folder = folder.parent_path();
    const std::string ending = ".quillstone-kit." + std::to_string(getpid());
    if (!fs::is_directory(folder)) {
        if (IsEntry(folder)) throw Refusal("not a folder: " + folder.string());
        const fs::path parent = folder.has_parent_path() ? folder.parent_path() : ".";
        if (!fs::is_directory(parent))
            throw Refusal("no folder " + parent.string() + " to make it in");
        const WorkFolder work(folder.string() + ending);
        MakeParts(work.Path(), contents, folder);
        fs::rename(work.Path(), folder);
        return;
    }

    if (!fs::is_empty(folder)) CheckOwn(folder);
    if (!contents.copies) {
        for (const fs::path& image : contents.images) CheckOutside(image, folder);
        CheckOutside(contents.tool, folder);
    }
    const WorkFolder work(folder / ending);
    MakeParts(work.Path(), contents, folder);
    ExchangeParts(work.Path(), folder);
}
