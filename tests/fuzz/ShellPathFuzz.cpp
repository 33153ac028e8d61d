// Hands paths of any bytes to /bin/sh as words, and reads them back.
#include <QTemporaryDir>
#include <fstream>
#include <sstream>

#include "Fuzzing.h"
#include "platform/files/FolderItem.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const QTemporaryDir folder("/dev/shm/quillstone-XXXXXX");
    const std::string place = folder.path().toStdString();
    const std::string paths = std::string(reinterpret_cast<const char*>(data), size) + '\0';
    // The shell would execute text that escapes its quotes. So it runs in a folder of its own, and
    // finds no programs. A NUL ends each word, since no path contains one.
    std::string command = "cd " + place + " && PATH=/ && exec >words && printf '%s\\0'";
    for (std::size_t from = 0; from < paths.size(); from = paths.find('\0', from) + 1)
        command += ' ' + FolderItem(paths.c_str() + from).ShellPath();
    Expect(std::system(command.c_str()) == 0, "the command is whole");

    std::ostringstream words;
    words << std::ifstream(place + "/words", std::ios::binary).rdbuf();
    Expect(words.str() == paths, "each path is one word of the shell");
    return 0;
}
