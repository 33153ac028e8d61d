#pragma once

// What ends the kit when a signal asks for it. The folder that it has begun goes with it.
struct Ended {
    int signal;
};

// From now on SIGHUP, SIGINT and SIGTERM are noted, and no longer end the process by themselves.
// One that was ignored, as by nohup, stays so. A limit on the size of files becomes an error of the
// write.
void NoteSignals();

// Throws Ended if a signal has been noted.
void EndIfAsked();
