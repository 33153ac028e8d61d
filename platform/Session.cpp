#include "platform/Session.h"

#include <signal.h>

#include <charconv>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#ifdef __linux__

namespace {

struct Process {
    int pid, parent, session;
    unsigned long long birth;
};

// All processes but the dead that wait for their parents.
std::vector<Process> LivingProcesses() {
    std::vector<Process> processes;
    std::error_code error;
    for (std::filesystem::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        Process process{};
        const auto number = std::from_chars(name.data(), name.data() + name.size(), process.pid);
        if (number.ec != std::errc() || number.ptr != name.data() + name.size()) continue;
        std::ifstream file(entry->path() / "stat");
        std::string
            line;  // though a name may hold line ends; empty where the process has just gone
        std::getline(file, line, '\0');
        // "pid (name) state parent group session ...", where the name may hold anything.
        const auto afterName = line.rfind(')');
        if (afterName == line.npos) continue;
        std::istringstream rest(line.substr(afterName + 1));
        char state = 0;
        std::string skipped;
        rest >> state >> process.parent >> skipped >> process.session;
        for (int i = 0; i < 15; ++i) rest >> skipped;  // its terminal, times and priority
        if (rest >> process.birth && state != 'Z') processes.push_back(process);
    }
    return processes;
}

}  // namespace

std::vector<int> Session::Processes() {
    const auto processes = LivingProcesses();
    std::set<int> members;
    const auto belongs = [&](const Process& process) {
        return process.session == mLeader || process.pid == mLeader ||
               members.contains(process.parent) || mSeen.contains({process.pid, process.birth});
    };
    for (bool grown = true; grown;) {
        grown = false;
        for (const Process& process : processes)
            if (belongs(process)) grown |= members.insert(process.pid).second;
    }
    mSeen.clear();
    for (const Process& process : processes)
        if (members.contains(process.pid)) mSeen.emplace(process.pid, process.birth);
    return {members.begin(), members.end()};
}

#else

std::vector<int> Session::Processes() {
    return kill(-mLeader, 0) == 0 ? std::vector<int>{-mLeader} : std::vector<int>{};
}

#endif

void Session::Signal(int signal) {
    for (const int process : Processes()) {
        kill(process, signal);
        kill(process, SIGCONT);
    }
}

void Session::End(int graceMilliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto politeUntil = Clock::now() + std::chrono::milliseconds(graceMilliseconds);
    const auto giveUp = politeUntil + std::chrono::seconds(1);
    while (!Processes().empty() && Clock::now() < giveUp) {
        if (Clock::now() >= politeUntil) Signal(SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}
