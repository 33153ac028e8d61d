// A stand-in for the flash tool: it takes the options of the real one, but writes into the file
// flash.bin beside its own folder instead of a chip, at the pace that a serial line would have.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <ios>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t flashSize = 16UL * 1024 * 1024;
constexpr std::size_t blockSize = 1024;
constexpr std::size_t dotsPerLine = 80;
constexpr std::size_t noAddress = SIZE_MAX;
constexpr char erased = '\xff';

struct Image {
    std::size_t address;
    std::string file;
    std::vector<char> bytes;
};

struct Job {
    bool verbose = false;
    std::string reset = "none";
    std::string port = "none";
    unsigned long baud = 115200;
    std::vector<Image> images;
};

unsigned long number(const std::string& option, const std::string& text) {
    char* end = nullptr;
    const unsigned long value = std::strtoul(text.c_str(), &end, 0);
    // strtoul would skip leading blanks and take a negative number for a huge one.
    if (text.empty() || text.find_first_of(" \t+-") != std::string::npos || *end != '\0')
        throw std::runtime_error(option + ": not a number: \"" + text + '"');
    return value;
}

Image readImage(std::size_t address, const std::string& file) {
    const auto size = std::filesystem::file_size(file);
    if (size > flashSize || address > flashSize - size)
        throw std::runtime_error("reaches beyond the end of the flash: " + file);
    Image image{address, file, std::vector<char>(size)};
    std::ifstream in(file, std::ios::binary);
    if (!in.read(image.bytes.data(), static_cast<std::streamsize>(size)))
        throw std::runtime_error("cannot be read: " + file);
    return image;
}

// Reads the images too, so that a job that can't be done as a whole writes nothing.
Job parse(const std::vector<std::string>& words) {
    Job job;
    std::size_t address = noAddress;
    for (auto word = words.begin(); word != words.end(); ++word) {
        const std::string& option = *word;
        if (option == "-v" || option == "-vv" || option == "-vvv") {
            job.verbose = true;
            continue;
        }
        if (option != "-cd" && option != "-cb" && option != "-cp" && option != "-ca" &&
            option != "-cf")
            throw std::runtime_error("not an option: \"" + option + '"');
        if (++word == words.end()) throw std::runtime_error(option + ": the value is missing");

        if (option == "-cd") {
            job.reset = *word;
        } else if (option == "-cb") {
            job.baud = number(option, *word);
            if (job.baud == 0) throw std::runtime_error("-cb: the speed cannot be 0");
        } else if (option == "-cp") {
            job.port = *word;
        } else if (option == "-ca") {
            address = number(option, *word);
        } else {
            if (address == noAddress) throw std::runtime_error("no -ca before -cf " + *word);
            job.images.push_back(readImage(address, *word));
            address = noAddress;
        }
    }
    if (job.images.empty()) throw std::runtime_error("no image to write");
    return job;
}

// A byte takes ten bits on the line: eight of its own, a start and a stop bit.
void write(const Image& image, unsigned long baud, std::vector<char>& flash) {
    const std::size_t size = image.bytes.size();
    std::cout << "Writing " << size << " bytes of " << image.file << " at 0x" << std::hex
              << std::setfill('0') << std::setw(8) << image.address << std::dec << std::setfill(' ')
              << std::endl;

    using Clock = std::chrono::steady_clock;
    const auto blockTime = std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(10.0 * blockSize / static_cast<double>(baud)));
    const std::size_t blocks = (size + blockSize - 1) / blockSize;
    auto due = Clock::now();
    for (std::size_t block = 1; block <= blocks; ++block) {
        std::this_thread::sleep_until(due += blockTime);
        std::cout << '.';
        const std::size_t room = (dotsPerLine - block % dotsPerLine) % dotsPerLine;
        if (room == 0 || block == blocks)
            std::cout << std::string(room, ' ') << std::setw(4) << 100 * block / blocks << " %\n";
        std::cout << std::flush;
    }

    flash.resize(std::max(flash.size(), image.address + size), erased);
    std::copy(image.bytes.begin(), image.bytes.end(),
              flash.begin() + static_cast<std::ptrdiff_t>(image.address));
}

// The file gets its name when it is whole. So where the file exists, the job is done.
void save(const std::vector<char>& flash, const std::filesystem::path& file) {
    std::filesystem::path unfinished = file;
    unfinished += ".part";
    std::ofstream out(unfinished, std::ios::binary);
    out.write(flash.data(), static_cast<std::streamsize>(flash.size()));
    out.close();
    if (!out) throw std::runtime_error("cannot be written: " + unfinished.string());
    std::filesystem::rename(unfinished, file);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const auto base = std::filesystem::canonical(argv[0]).parent_path().parent_path();
        const auto file = base / "flash.bin";
        std::cout << "This is a stand-in flash tool: it writes into a file, not into a chip."
                  << std::endl;
        const Job job = parse({argv + 1, argv + argc});
        if (job.verbose)
            std::cout << "It would use port " << job.port << ", " << job.baud << " baud, reset "
                      << job.reset << '.' << std::endl;
        std::vector<char> flash;
        for (const Image& image : job.images) write(image, job.baud, flash);
        save(flash, file);
        std::cout << "Done: " << file.string() << std::endl;
    } catch (const std::exception& error) {
        std::cerr << "esptool: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
