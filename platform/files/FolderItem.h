#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

class FolderItem;
// Fields, cell tags and dialogs share a FolderItem.
using FolderItemRef = std::shared_ptr<const FolderItem>;

// A reference to a file or folder, which need not exist. The path is absolute and has exactly the
// bytes that the file system has.
class FolderItem {
  public:
    explicit FolderItem(std::string path) : mPath(std::move(path)) {}

    // The entry of that name in this folder, existing or not. Where no entry has exactly these
    // bytes, one that is equal after Unicode normalisation serves, or else the only one that is
    // equal without regard to case. nullptr for a name that is no entry's: empty, ".", "..", or
    // with a path separator or a NUL in it.
    FolderItemRef Child(std::string_view name) const;
    // The same, but nullptr also for an entry that doesn't exist, or that a stranger may have put
    // there: this folder lets every user write, and the entry (of a link the link itself) belongs
    // neither to the user nor to root. Linux has the same rule for opening files
    // (fs.protected_regular). A group that can write to the folder counts as trusted.
    FolderItemRef TrustedChild(std::string_view name) const;

    bool Exists() const;
    // A regular file, or a link to one.
    bool IsFile() const;
    std::string Name() const;
    std::string NativePath() const { return mPath; }

    // The path as exactly one word of a POSIX shell.
    std::string ShellPath() const;

    // nullptr for the root.
    FolderItemRef Parent() const;

    // Name of the registered FileType whose extensions match, else empty.
    std::string Type() const;

  private:
    using Names = std::multimap<std::string, std::string, std::less<>>;

    std::string SimilarName(std::string_view name) const;
    bool MayBePlanted() const;

    // The folder's names by their case-folded form. SimilarName reads them when it first needs
    // them, so that a search for many missing names reads the folder once.
    mutable std::optional<Names> mNames;
    std::string mPath;
};

// An empty path and path type 0 give the base folder, or nullptr if that folder is gone. The logic
// asks for no other. The base folder is the one that holds the running program (on macOS, its
// bundle). An installed program, which lies in PREFIX/lib/quillstone with a link in PREFIX/bin,
// takes the folder in which it was started.
FolderItemRef GetFolderItem(std::string_view path, int pathType);

namespace SpecialFolder {
FolderItemRef Documents();
}

// Replaces the base folder, for tests that prepare one of their own. An empty path ends that.
void SetBaseFolder(std::string path);

// Replaces the user that TrustedChild trusts, for tests. No value ends that.
void SetUser(std::optional<std::uint32_t> user);
