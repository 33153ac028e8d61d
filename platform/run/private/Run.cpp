#include "platform/run/private/Run.h"

#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

namespace {

using namespace std::chrono_literals;

constexpr auto kForceAfter = 2s;

// Without a supervisor.
constexpr auto kGiveUpOrphansAfter = 1s;
constexpr auto kKillAgainAfter = 10ms;

// The supervisor gives up one second after its first kill. Wait longer: it may hang itself.
constexpr auto kGiveUpAfter = 1500ms;

// The supervisor kills after 300 ms.
constexpr auto kEndWithin = 700ms;

// More than a terminal keeps for its reader: all that a command which has ended can have left.
constexpr std::size_t kMostRest = 256UL * 1024;

}  // namespace

Run::Run() : mStep(std::make_unique<QTimer>()) {
    mStep->setSingleShot(true);
    QObject::connect(mStep.get(), &QTimer::timeout, [this] { NextStep(); });
}

Run::~Run() {
    mArrival.reset();
    mReport.reset();
    mTerminal.reset();
    if (mSupervisor) mSupervisor->End(kEndWithin);
}

void Run::Start(std::string_view command) {
    mPhase = Phase::Starting;
    mAtLineStart = false;
    mFailure.clear();
    if (command.find('\0') != command.npos)
        return Fail("a command with a NUL character in it can't be run");
    if (!mTerminal.emplace().IsOpen())
        return Fail(std::string("no pseudo terminal: ") + std::strerror(errno));
    if (!mSupervisor.emplace(command, *mTerminal).Started()) return Fail(std::strerror(errno));
    mPhase = Phase::Running;

    const auto when = [](int readable, auto handler) {
        auto notifier = std::make_unique<QSocketNotifier>(readable, QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, handler);
        return notifier;
    };
    mArrival = when(mTerminal->Master(), [this] { Pass(mTerminal->Read()); });
    mReport = when(mSupervisor->Descriptor(), [this] {
        if (mSupervisor->Hear())
            mSupervisor->WasKilled() ? KillOrphans() : Ended();
        else if (mPhase == Phase::Running && mSupervisor->ShellEnded())
            mSupervisor->Give(Order::LetGo);
    });
}

void Run::Stop() {
    if (mPhase != Phase::Running) return;
    mPhase = Phase::Stopping;
    mSupervisor->Give(Order::Terminate);
    mStep->start(kForceAfter);
}

void Run::NextStep() {
    if (mPhase == Phase::Stopping) {
        mPhase = Phase::Forced;
        mSupervisor->Give(Order::Kill);
        mStep->start(kGiveUpAfter);
    } else if (mPhase == Phase::Forced) {
        Ended();
    } else if (mPhase == Phase::Orphaned) {
        KillOrphans();
    } else {
        Drain();
    }
}

// Nobody must be told that a run is over while a process of it still writes to a chip.
void Run::KillOrphans() {
    const auto now = std::chrono::steady_clock::now();
    if (mPhase != Phase::Orphaned) {
        mPhase = Phase::Orphaned;
        mGiveUpAt = now + kGiveUpOrphansAfter;
        mReport->setEnabled(false);
    }
    if (mSupervisor->KillRun()) return Ended();
    if (now < mGiveUpAt) return mStep->start(kKillAgainAfter);
    mSupervisor->GiveUp();
    Ended();
}

void Run::Fail(const std::string& reason) {
    mPhase = Phase::Draining;
    mFailure = "sh: " + reason + "\n";
    mStep->start(0);
}

void Run::Pass(const std::string& bytes) {
    if (bytes.empty()) return;
    mAtLineStart = bytes.back() == '\n';
    Output(bytes);
}

// What the command left in the background may go on printing, so there is a limit.
void Run::Ended() {
    mPhase = Phase::Draining;
    mArrival->setEnabled(false);
    mReport->setEnabled(false);
    mRest = kMostRest;
    mStep->start(0);
}

void Run::Drain() {
    const std::string portion = mTerminal && mRest > 0 ? mTerminal->Read() : std::string();
    if (portion.empty()) return Complete();
    mRest -= std::min(mRest, portion.size());
    mStep->start(0);
    Pass(portion);
}

void Run::Complete() {
    std::string lines;
    if (mSupervisor) {
        if (mSupervisor->WasKilled()) lines += "quillstone-run was killed, which ended the run\n";
        // Neither a report nor an end of file: the supervisor itself hangs.
        auto left = mSupervisor->Unkilled();
        if (left.empty() && !mSupervisor->Hear()) left.push_back(mSupervisor->Process());
        for (const pid_t process : left)
            lines += "process " + std::to_string(process) + " couldn't be ended\n";
        if (!lines.empty() && !mAtLineStart) lines.insert(0, 1, '\n');
    }
    Pass(mFailure + lines);
    mArrival.reset();
    mReport.reset();
    mTerminal.reset();  // hangs up what the command left behind, which goes its own way
    mSupervisor.reset();
    mPhase = Phase::Over;
    Completed();
}
