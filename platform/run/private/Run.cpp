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

// The supervisor gives up one second after its first kill. The program waits longer, and then takes
// it that the supervisor itself hangs.
constexpr auto kGiveUpAfter = 1500ms;

// Where the supervisor was killed, the program kills instead.
constexpr auto kGiveUpOrphansAfter = 1s;
constexpr auto kKillAgainAfter = 10ms;

// At the end of the program. The supervisor kills after 300 ms.
constexpr auto kEndWithin = 700ms;

// Bytes, more than the system buffers for a terminal. So it is enough for all that the command
// itself has printed before it ended.
constexpr std::size_t kDrainBudget = 256UL * 1024;

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
    mArrival = when(mTerminal->Master(), [this] { Deliver(mTerminal->Read()); });
    mReport = when(mSupervisor->Descriptor(), [this] {
        if (mSupervisor->PollEnded())
            mSupervisor->WasKilled() ? KillOrphans() : Ended();
        else if (mPhase == Phase::Running && mSupervisor->ShellEnded())
            mSupervisor->SendOrder(Order::LetGo);
    });
}

void Run::Stop() {
    if (mPhase != Phase::Running) return;
    mPhase = Phase::Stopping;
    mSupervisor->SendOrder(Order::Terminate);
    mStep->start(kForceAfter);
}

void Run::NextStep() {
    if (mPhase == Phase::Stopping) {
        mPhase = Phase::Forced;
        mSupervisor->SendOrder(Order::Kill);
        mStep->start(kGiveUpAfter);
    } else if (mPhase == Phase::Forced) {
        Ended();
    } else if (mPhase == Phase::Orphaned) {
        KillOrphans();
    } else {
        Drain();
    }
}

// The run isn't over while one of its processes may still write to a chip.
void Run::KillOrphans() {
    const auto now = std::chrono::steady_clock::now();
    if (mPhase != Phase::Orphaned) {
        mPhase = Phase::Orphaned;
        mGiveUpAt = now + kGiveUpOrphansAfter;
        mReport->setEnabled(false);
    }
    if (mSupervisor->KillRun()) return Ended();
    if (now < mGiveUpAt) return mStep->start(kKillAgainAfter);
    mSupervisor->NoteSurvivors();
    Ended();
}

void Run::Fail(const std::string& reason) {
    mPhase = Phase::Draining;
    mFailure = "sh: " + reason + "\n";
    mStep->start(0);
}

void Run::Deliver(const std::string& bytes) {
    if (bytes.empty()) return;
    mAtLineStart = bytes.back() == '\n';
    Output(bytes);
}

// Processes that the command left in the background may go on printing, so there is a limit.
void Run::Ended() {
    mPhase = Phase::Draining;
    mArrival->setEnabled(false);
    mReport->setEnabled(false);
    mDrainBudget = kDrainBudget;
    mStep->start(0);
}

void Run::Drain() {
    const std::string portion = mTerminal && mDrainBudget > 0 ? mTerminal->Read() : std::string();
    if (portion.empty()) return Complete();
    mDrainBudget -= std::min(mDrainBudget, portion.size());
    mStep->start(0);
    Deliver(portion);
}

void Run::Complete() {
    std::string lines;
    if (mSupervisor) {
        if (mSupervisor->WasKilled()) lines += "quillstone-run was killed, which ended the run\n";
        // Without a report and an end of file the supervisor itself hangs.
        auto left = mSupervisor->Unkilled();
        if (left.empty() && !mSupervisor->PollEnded()) left.push_back(mSupervisor->Process());
        for (const pid_t process : left)
            lines += "process " + std::to_string(process) + " couldn't be ended\n";
        if (!lines.empty() && !mAtLineStart) lines.insert(0, 1, '\n');
    }
    Deliver(mFailure + lines);
    mArrival.reset();
    mReport.reset();
    mTerminal.reset();  // sends SIGHUP to processes that the command left behind
    mSupervisor.reset();
    mPhase = Phase::Over;
    Completed();
}
