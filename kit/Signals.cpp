#include "kit/Signals.h"

#include <signal.h>

#include <initializer_list>

namespace {

volatile sig_atomic_t noted = 0;

extern "C" void Note(int signal) { noted = signal; }

}  // namespace

void NoteSignals() {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
        action.sa_handler = Note;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
    ::signal(SIGXFSZ, SIG_IGN);
}

void EndIfAsked() {
    if (noted != 0) throw Ended{noted};
}
