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
        std::string line;
        std::getline(file, line);
        // "pid (name) state parent group session ...", where the name may hold anything.
        const auto afterName = line.rfind(')');
        if (afterName == line.npos) continue;
        std::istringstream rest(line.substr(afterName + 1));
        char state = 0;
        int group = 0;
        if (rest >> state >> process.parent >> group >> process.session && state != 'Z')
            processes.push_back(process);
    }
    return processes;
}

}  // namespace

std::vector<int> SessionProcesses(int leader) {
    const auto processes = LivingProcesses();
    std::set<int> members;
    for (bool grown = true; grown;) {
        grown = false;
        for (const Process& process : processes)
            if (process.session == leader || process.pid == leader ||
                members.contains(process.parent))
                grown |= members.insert(process.pid).second;
    }
    return {members.begin(), members.end()};
}

#else

std::vector<int> SessionProcesses(int leader) {
    return kill(-leader, 0) == 0 ? std::vector<int>{-leader} : std::vector<int>{};
}

#endif

void SignalSession(int leader, int signal) {
    for (const int process : SessionProcesses(leader)) {
        kill(process, signal);
        kill(process, SIGCONT);
    }
}

void EndSession(int leader, int graceMilliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto politeUntil = Clock::now() + std::chrono::milliseconds(graceMilliseconds);
    const auto giveUp = politeUntil + std::chrono::seconds(1);
    while (!SessionProcesses(leader).empty() && Clock::now() < giveUp) {
        if (Clock::now() >= politeUntil) SignalSession(leader, SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}
