#include "platform/run/private/Processes.h"

#include <dirent.h>
#include <fcntl.h>
#include <string.h>
#include <unistd.h>

#include <charconv>

#ifdef __linux__

namespace {

// `file` lists process numbers with a blank behind each.
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
    std::array<char, 32> path{"/proc/"};
    strcpy(std::to_chars(path.data() + 6, path.data() + path.size() - 6, parent).ptr, "/task");
    const int tasks = open(path.data(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (tasks < 0) return;
    alignas(dirent64) std::array<char, 2048> entries;
    for (ssize_t size = 0; (size = getdents64(tasks, entries.data(), entries.size())) > 0;) {
        for (ssize_t at = 0; at < size;) {
            const auto* thread = reinterpret_cast<const dirent64*>(entries.data() + at);
            at += thread->d_reclen;
            if (*thread->d_name == '.') continue;
            stpcpy(stpcpy(path.data(), thread->d_name), "/children");
            const int children = openat(tasks, path.data(), O_RDONLY | O_CLOEXEC);
            AddNumbers(children, list);
            close(children);
        }
    }
    close(tasks);
}

#else

void AddChildren(pid_t, ProcessList&) {}

#endif

void AddDescendants(ProcessList& list) {
    std::size_t next = list.Count();
    AddChildren(getpid(), list);
    for (; next < list.Count(); ++next) AddChildren(list[next], list);
}
