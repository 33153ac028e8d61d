#include "platform/run/private/Spawn.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/run/private/SupervisorProcess.h"
#include "platform/run/private/Terminal.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): some systems leave it to us

namespace {

// The system has a limit for a single argument (128 KiB on Linux), far below that for all of them.
constexpr std::size_t kLongestArgument = 100'000;

constexpr std::string_view kTooLong = "sh: the command line is too long\n";
constexpr std::string_view kNoShell = "sh: can't be executed\n";
constexpr std::string_view kNoProcess = "sh: no process can be started\n";

std::vector<std::string> ShellArguments(std::string_view command) {
    // After "--" the shell doesn't take a command that begins with a hyphen for an option.
    if (command.size() <= kLongestArgument) return {"sh", "-c", "--", std::string(command)};
    std::vector<std::string> arguments = {
        "sh", "-c", R"(IFS=; command_line="$*"; unset IFS; shift $#; eval " $command_line")", "sh"};
    for (; !command.empty(); command.remove_prefix(std::min(command.size(), kLongestArgument)))
        arguments.emplace_back(command.substr(0, kLongestArgument));
    return arguments;
}

// TERM=dumb asks the tool for plain text: no colours, no cursor movements. Some tools look at
// NO_COLOR alone. A value that the user has set stays, also an empty one.
std::vector<std::string> ShellEnvironment() {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable)
        if (!std::string_view(*variable).starts_with("TERM=")) variables.emplace_back(*variable);
    variables.emplace_back("TERM=dumb");
    if (std::getenv("NO_COLOR") == nullptr) variables.emplace_back("NO_COLOR=1");
    return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    pointers.reserve(strings.size() + 1);
    for (std::string& string : strings) pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

// The functions below, up to the end of the namespace, run in a forked child of a program that may
// have threads. So they make only calls that are safe in a signal handler.

void Print(std::string_view message) {
    if (write(STDERR_FILENO, message.data(), message.size()) < 0) return;  // nobody reads it
}

// Leaves the supervisor the socket as descriptor 0 and the terminal as 1 and 2, nothing else: a
// port or a display that it kept would stay open for as long as the run lasts.
void KeepOnly(int program, int terminal) {
    program = fcntl(program, F_DUPFD, 3);
    terminal = fcntl(terminal, F_DUPFD, 3);
    dup2(program, STDIN_FILENO);
    dup2(terminal, STDOUT_FILENO);
    dup2(terminal, STDERR_FILENO);
#ifdef __GLIBC__
    closefrom(3);
#else
    for (int other = getdtablesize() - 1; other > 2; --other) close(other);
#endif
}

// When memory runs out, the kernel kills the process with the highest score, which runs up to 1000.
// Raise the run's by 500, so that the supervisor outlives it.
void BeKilledBeforeSupervisor() {
#ifdef __linux__
    const int file = open("/proc/self/oom_score_adj", O_RDWR | O_CLOEXEC);
    std::array<char, 16> text{};
    int adjustment = 0;
    const auto count = read(file, text.data(), text.size());
    if (count > 0) std::from_chars(text.data(), text.data() + count, adjustment);
    adjustment = std::min(adjustment + 500, 1000);
    const char* end = std::to_chars(text.data(), text.data() + text.size(), adjustment).ptr;
    // A failure doesn't matter to the run.
    if (pwrite(file, text.data(), static_cast<std::size_t>(end - text.data()), 0) < 0) errno = 0;
    close(file);
#endif
}

[[noreturn]] void ExecuteShell([[maybe_unused]] pid_t supervisor, char* const* arguments,
                               char* const* environment) {
#ifdef __linux__
    // If the supervisor is killed, the shell dies with it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != supervisor) _exit(127);
#endif
    // The program may have been started with signals ignored or blocked.
    for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);

    BeKilledBeforeSupervisor();
    setsid();
    ioctl(STDOUT_FILENO, TIOCSCTTY, 0);
    close(STDIN_FILENO);
    open("/dev/null", O_RDONLY);  // becomes the standard input, the lowest free file descriptor
    execve("/bin/sh", arguments, environment);
    Print(errno == E2BIG ? kTooLong : kNoShell);
    _exit(126);
}

[[noreturn]] void BecomeSupervisor(int program, int terminal, char* const* arguments,
                                   char* const* environment) {
    setsid();  // out of reach of the keys and job control of the program's own terminal
#ifdef __linux__
    prctl(PR_SET_NAME, "quillstone-run");  // "killall quillstone" spares it
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    prctl(PR_SET_PDEATHSIG, SIGCONT);  // wakes a stopped supervisor when the program ends
#endif
    KeepOnly(program, terminal);
    WakeOnChildEnd();
    const pid_t supervisor = getpid();
    const pid_t shell = fork();
    if (shell < 0) {
        Print(kNoProcess);
        EndSupervisor(STDIN_FILENO);
    }
    if (shell == 0) ExecuteShell(supervisor, arguments, environment);
    Supervise(STDIN_FILENO, shell);
}

}  // namespace

pid_t Spawn(std::string_view command, const Terminal& terminal, int& supervisor) {
    auto arguments = ShellArguments(command);
    auto environment = ShellEnvironment();
    const auto argumentPointers = Pointers(arguments);
    const auto environmentPointers = Pointers(environment);
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) return -1;
    const auto [ours, theirs] = ends;
    fcntl(ours, F_SETFD, FD_CLOEXEC);
    fcntl(theirs, F_SETFD, FD_CLOEXEC);
    fcntl(ours, F_SETFL, O_NONBLOCK);

    // No handler of the program's may run in the child.
    sigset_t before;
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t child = fork();
    if (child == 0) {
        // KeepOnly needs two free descriptors, also where the process is at its limit.
        close(ours);
        close(terminal.Master());
        BecomeSupervisor(theirs, terminal.Slave(), argumentPointers.data(),
                         environmentPointers.data());
    }
    const int reason = errno;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    close(theirs);
    if (child < 0) close(ours);
    supervisor = child < 0 ? -1 : ours;
    errno = reason;
    return child;
}
