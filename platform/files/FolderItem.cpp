#include "platform/files/FolderItem.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QStandardPaths>
#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/files/FileType.h"
#include "platform/qt/QtText.h"

namespace fs = std::filesystem;

namespace {

bool PlainInShell(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("_./+,:@%=-").find(c) != std::string_view::npos;
}

// Asks the system for bytes, since a folder's name need not be valid text.
std::string FindBaseFolder() {
    std::error_code error;
    fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) program = fs::canonical(FromQt(QCoreApplication::applicationFilePath()), error);
    fs::path folder = program.parent_path();
    const fs::path link = folder.parent_path().parent_path() / "bin" / program.filename();
    if (folder.parent_path().filename() == "lib" && fs::equivalent(link, program, error))
        return fs::current_path(error).string();
#ifdef Q_OS_MACOS
    // Quillstone.app/Contents/MacOS/quillstone
    if (folder.filename() == "MacOS") folder = folder.parent_path().parent_path().parent_path();
#endif
    return folder.string();
}

std::string& ReplacedBaseFolder() {
    static std::string path;
    return path;
}

std::optional<std::uint32_t>& ReplacedUser() {
    static std::optional<std::uint32_t> user;
    return user;
}

}  // namespace

FolderItemRef FolderItem::Child(std::string_view name) const {
    if (name.empty() || name == "." || name == ".." ||
        name.find_first_of(std::string_view("/\0", 2)) != name.npos)
        return nullptr;
    const std::string folder = mPath.ends_with('/') ? mPath : mPath + '/';
    auto child = std::make_shared<const FolderItem>(folder + std::string(name));
    if (child->Exists()) return child;
    const std::string similar = SimilarName(name);
    return similar.empty() ? child : std::make_shared<const FolderItem>(folder + similar);
}

// Leaves out names that are no valid text, since different ones would look alike, and names that
// are longer than any file's: Qt's time grows by the square of the number of accents in a row.
std::string FolderItem::SimilarName(std::string_view name) const {
    constexpr std::size_t kLongestName = 1024;
    if (name.size() > kLongestName || !IsUtf8(name)) return {};
    if (!mNames) {
        mNames.emplace();
        std::error_code error;
        for (fs::directory_iterator entry(mPath, error), end; !error && entry != end;
             entry.increment(error)) {
            std::string found = entry->path().filename().string();
            if (IsUtf8(found)) mNames->emplace(CaseFolded(found), std::move(found));
        }
    }
    const auto [first, last] = mNames->equal_range(CaseFolded(name));
    const auto same = std::find_if(first, last, [composed = Composed(name)](const auto& entry) {
        return Composed(entry.second) == composed;
    });
    if (same != last) return same->second;
    return std::distance(first, last) == 1 ? first->second : std::string();
}

bool FolderItem::Exists() const {
    struct stat unused = {};
    return stat(mPath.c_str(), &unused) == 0;
}

bool FolderItem::IsFile() const {
    struct stat found = {};
    return stat(mPath.c_str(), &found) == 0 && S_ISREG(found.st_mode);
}

FolderItemRef FolderItem::TrustedChild(std::string_view name) const {
    const FolderItemRef child = Child(name);
    return child && child->Exists() && !child->MayBePlanted() ? child : nullptr;
}

bool FolderItem::MayBePlanted() const {
    struct stat entry = {};
    struct stat folder = {};
    const auto parent = Parent();
    return parent && lstat(mPath.c_str(), &entry) == 0 &&
           stat(parent->mPath.c_str(), &folder) == 0 && (folder.st_mode & S_IWOTH) != 0 &&
           entry.st_uid != 0 && entry.st_uid != ReplacedUser().value_or(geteuid());
}

std::string FolderItem::Name() const { return fs::path(mPath).filename().string(); }

std::string FolderItem::ShellPath() const {
    if (!mPath.empty() && std::all_of(mPath.begin(), mPath.end(), PlainInShell)) return mPath;
    std::string word = "'";
    for (const char c : mPath) {
        if (c == '\'')
            word += "'\\''";
        else
            word += c;
    }
    return word += '\'';
}

FolderItemRef FolderItem::Parent() const {
    const fs::path path(mPath);
    if (!path.has_relative_path()) return nullptr;
    return std::make_shared<const FolderItem>(path.parent_path().string());
}

std::string FolderItem::Type() const { return FileType::NameFor(Name()); }

FolderItemRef GetFolderItem(std::string_view path, int pathType) {
    if (!path.empty() || pathType != 0) return nullptr;
    // Asked once: after its file has been deleted, the program's path reads differently.
    static const std::string found = FindBaseFolder();
    const std::string& replaced = ReplacedBaseFolder();
    auto folder = std::make_shared<const FolderItem>(replaced.empty() ? found : replaced);
    return folder->Exists() ? folder : nullptr;
}

FolderItemRef SpecialFolder::Documents() {
    return std::make_shared<const FolderItem>(
        FromQt(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)));
}

void SetBaseFolder(std::string path) { ReplacedBaseFolder() = std::move(path); }

void SetUser(std::optional<std::uint32_t> user) { ReplacedUser() = user; }
