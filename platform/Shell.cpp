#include "platform/Shell.h"

#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QProcess>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>
#include <vector>

#include "platform/QtText.h"
#include "platform/Session.h"
#include "platform/Terminal.h"
#include "platform/Text.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): some systems leave it to us

namespace {

using namespace std::chrono_literals;

// The system limits a single argument (to 128 KiB on Linux) far below all of them together.
constexpr std::size_t kLongestArgument = 100'000;

// Output is taken in such portions, so that input events come between two of them. To show a line
// costs as much as to show some tens of bytes.
constexpr std::size_t kPortion = 64UL * 1024;
constexpr std::ptrdiff_t kPortionLines = 2000;

// More than a terminal keeps for its reader: all that a command which has ended can have left.
constexpr std::size_t kRest = 256UL * 1024;

constexpr auto kForceAfter = 2s;
constexpr int kHangUpGraceMilliseconds = 300;

constexpr std::string_view kTooLong = "sh: the command line is too long\n";
constexpr std::string_view kNoShell = "sh: can't be executed\n";

std::vector<std::string> ShellArguments(std::string_view command) {
    // A command may begin with a hyphen, and is no option of the shell's for that.
    if (command.size() <= kLongestArgument) return {"sh", "-c", "--", std::string(command)};
    std::vector<std::string> arguments = {
        "sh", "-c", R"(IFS=; command_line="$*"; unset IFS; shift $#; eval " $command_line")", "sh"};
    for (; !command.empty(); command.remove_prefix(std::min(command.size(), kLongestArgument)))
        arguments.emplace_back(command.substr(0, kLongestArgument));
    return arguments;
}

// Plain text, please: no colours, no cursor movements.
std::vector<std::string> ShellEnvironment() {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable)
        if (!std::string_view(*variable).starts_with("TERM=")) variables.emplace_back(*variable);
    variables.emplace_back("TERM=dumb");
    return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    pointers.reserve(strings.size() + 1);
    for (std::string& string : strings) pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

// What there is for now, up to a portion.
std::string ReadPortion(int terminal) {
    std::string portion;
    std::array<char, 4096> part;
    for (std::ptrdiff_t lines = 0; portion.size() < kPortion && lines < kPortionLines;) {
        const auto count = read(terminal, part.data(), part.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        portion.append(part.data(), static_cast<std::size_t>(count));
        lines += std::count(part.begin(), part.begin() + count, '\n');
    }
    return portion;
}

}  // namespace

// One command. All of it happens on the main thread, between other events: the program has no
// thread of its own.
class Shell::Run : public QObject {
  public:
    Run(Shell& shell, std::string_view command) : mShell(shell) {
        if (command.find('\0') != command.npos) {
            Fail("a command with a NUL character in it can't be run");
        } else if (!mTerminal.IsOpen()) {
            Fail(std::string("no pseudo terminal: ") + std::strerror(errno));
        } else {
            Start(command);
        }
    }

    ~Run() override {
        if (!mSession) return;
        disconnect(&mProcess, nullptr, this, nullptr);
        mSession->Processes();  // before the hang-up parts those that have left it from the rest
        HangUp();
        mSession->End(kHangUpGraceMilliseconds);
        mProcess.waitForFinished(1000);
    }

    void Stop() {
        if (mStopping) return;
        mStopping = true;
        if (!mSession) return;
        mSession->Signal(SIGTERM);
        QTimer::singleShot(kForceAfter, this, [this] {
            if (mSession) mSession->End(0);
            mForced = true;
        });
    }

  private:
    void HangUp() {
        mArrival.reset();
        mTerminal.Close();
    }

    void Start(std::string_view command) {
        auto arguments = ShellArguments(command);
        auto environment = ShellEnvironment();
        // In the child, between fork and exec: system calls alone. It executes the shell itself,
        // since a command may hold bytes that are no text for the toolkit.
        mProcess.setChildProcessModifier(
            [slave = mTerminal.Slave(), argv = Pointers(arguments), envp = Pointers(environment)] {
                for (const int ending : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) signal(ending, SIG_DFL);
                setsid();
                ioctl(slave, TIOCSCTTY, 0);
                dup2(slave, STDOUT_FILENO);
                dup2(slave, STDERR_FILENO);
                execve("/bin/sh", argv.data(), envp.data());
                const std::string_view reason = errno == E2BIG ? kTooLong : kNoShell;
                _exit(write(STDERR_FILENO, reason.data(), reason.size()) < 0 ? 127 : 126);
            });
        mProcess.setStandardInputFile(QProcess::nullDevice());
        mProcess.setProcessChannelMode(QProcess::ForwardedChannels);  // no pipes

        mArrival = std::make_unique<QSocketNotifier>(mTerminal.Master(), QSocketNotifier::Read);
        connect(mArrival.get(), &QSocketNotifier::activated, this,
                [this] { Pass(ReadPortion(mTerminal.Master())); });
        connect(&mProcess, &QProcess::finished, this, &Run::Ended);
        connect(&mProcess, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
            if (error != QProcess::FailedToStart) return;
            disconnect(&mProcess, nullptr, this, nullptr);  // it may say so more than once
            Fail(FromQt(mProcess.errorString()));
        });
        mProcess.start(QStringLiteral("/bin/sh"), QStringList(), QIODevice::ReadOnly);
        if (mProcess.processId() > 0) mSession.emplace(static_cast<int>(mProcess.processId()));
    }

    void Fail(const std::string& reason) {
        mShell.mOutput += "sh: " + reason + "\n";
        QTimer::singleShot(0, this, &Run::Complete);
    }

    void Pass(const std::string& portion) {
        mShell.mOutput += mText.Add(portion);
        if (!mShell.mOutput.empty()) mShell.Raise(mShell.DataAvailable);
    }

    // The command has ended. After a stop the run isn't over before its other processes are.
    void Ended() {
        if (mStopping && !mForced && !mSession->Processes().empty())
            QTimer::singleShot(20ms, this, &Run::Ended);
        else
            TakeRest(kRest);
    }

    // What the command left in the background may go on printing, so there is a limit.
    void TakeRest(std::size_t limit) {
        mArrival.reset();
        const std::string portion = ReadPortion(mTerminal.Master());
        if (portion.empty() || portion.size() >= limit) {
            mShell.mOutput += mText.Add(portion);
            Complete();
        } else {
            QTimer::singleShot(0, this, [=, this] { TakeRest(limit - portion.size()); });
            Pass(portion);
        }
    }

    void Complete() {
        Shell& shell = mShell;
        shell.mOutput += mText.End();
        shell.mRun.release()->deleteLater();  // this object is still at work
        HangUp();
        mSession.reset();  // what ignores the hang-up goes its own way
        shell.Raise(shell.Completed);
    }

    Shell& mShell;
    Terminal mTerminal;
    OutputText mText;
    std::unique_ptr<QSocketNotifier> mArrival;  // of output
    QProcess mProcess;
    std::optional<Session> mSession;  // while the run lasts
    bool mStopping = false, mForced = false;
};

Shell::Shell(Window&, std::string name) : Control(std::move(name)) {}

Shell::~Shell() = default;

void Shell::Execute(std::string_view command) {
    if (mRun) return;
    mOutput.clear();
    mRun = std::make_unique<Run>(*this, command);
}

std::string Shell::ReadAll() { return std::exchange(mOutput, {}); }

void Shell::Stop() {
    if (mRun) mRun->Stop();
}
