// A tool that prints a line, leaves it to the library when that is written, and goes on working.
#include <chrono>
#include <cstdio>
#include <thread>

int main() {
    std::puts("Connecting");
    std::this_thread::sleep_for(std::chrono::seconds(2));
}
