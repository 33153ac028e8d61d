#include "platform/run/private/Processes.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <string_view>

#ifdef __linux__

namespace {

// Puts together a path below /proc without allocating. A path that is too long is cut off, and then
// no such file exists.
class ProcPath {
  public:
    ProcPath& Append(std::string_view part) {
        mLength += part.copy(mText.data() + mLength, mText.size() - 1 - mLength);
        return *this;
    }
    ProcPath& Append(pid_t number) {
        std::array<char, 16> digits;
        const char* end = std::to_chars(digits.begin(), digits.end(), number).ptr;
        return Append({digits.data(), static_cast<std::size_t>(end - digits.data())});
    }
    const char* Text() const { return mText.data(); }

  private:
    std::array<char, 64> mText{};  // the rest stays 0
    std::size_t mLength = 0;
};

// Reads process numbers from `file`, which has a blank after each.
void AddNumbers(int file, ProcessList& list) {
    std::array<char, 1024> text;
    pid_t number = 0;
    for (ssize_t count = 0; (count = read(file, text.data(), text.size())) > 0;) {
        for (const char* c = text.data(); c < text.data() + count; ++c) {
            if (*c >= '0' && *c <= '9') {
                number = number * 10 + (*c - '0');
            } else if (number > 0) {
                list.Add(number);
                number = 0;
            }
        }
    }
}

}  // namespace

// Each thread of a process has its own list of children.
void AddChildren(pid_t parent, ProcessList& list) {
    const auto path = ProcPath().Append("/proc/").Append(parent).Append("/task");
    const int tasks = open(path.Text(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (tasks < 0) return;
    alignas(dirent64) std::array<char, 2048> entries;
    for (ssize_t size = 0; (size = getdents64(tasks, entries.data(), entries.size())) > 0;) {
        for (ssize_t at = 0; at < size;) {
            const auto* thread = reinterpret_cast<const dirent64*>(entries.data() + at);
            at += thread->d_reclen;
            if (*thread->d_name == '.') continue;
            const auto file = ProcPath().Append(thread->d_name).Append("/children");
            const int children = openat(tasks, file.Text(), O_RDONLY | O_CLOEXEC);
            AddNumbers(children, list);
            close(children);
        }
    }
    close(tasks);
}

#else

void AddChildren(pid_t, ProcessList&) {}

#endif

void AddDescendantsOfListed(ProcessList& list) {
    for (std::size_t next = 0; next < list.Count(); ++next) AddChildren(list[next], list);
}

void AddDescendants(ProcessList& list) {
    AddChildren(getpid(), list);
    AddDescendantsOfListed(list);
}
