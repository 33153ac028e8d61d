// quillstone-kit: makes a folder that Quillstone can flash from at once. quillstone-kit(1) tells
// all of it.
#include <unistd.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <algorithm>
#include <cstdio>

#include "flash/Speeds.h"
#include "kit/BuildFolder.h"
#include "kit/Folder.h"
#include "kit/Refusal.h"
#include "kit/Signals.h"

namespace fs = std::filesystem;

namespace {

constexpr char kUsage[] =
    "usage: quillstone-kit [--speed SPEED] [--reset RESET] [--copy] [--tool FILE] [--program] "
    "[--from BUILD] FOLDER [IMAGE ADDRESS]...";

// Prints one line. The text may hold names with line ends.
void Say(std::string text) {
    for (char& c : text)
        if (c == '\n' || c == '\r') c = '?';
    std::fprintf(stderr, "quillstone-kit: %s\n", text.c_str());
}

// Arguments go through Qt as Latin-1, which keeps every byte of a path.
std::string Bytes(const QString& argument) { return argument.toLatin1().toStdString(); }

class CommandLine {
  public:
    explicit CommandLine(const QStringList& arguments) {
        mParser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
        for (const char* name : {"copy", "program", "help"})
            mParser.addOption(QCommandLineOption(QString(name)));
        for (const char* name : {"speed", "reset", "tool", "from"})
            mParser.addOption(QCommandLineOption(QString(name), {}, "value"));
        if (mParser.parse(arguments)) return;
        if (const QStringList unknown = mParser.unknownOptionNames(); !unknown.isEmpty())
            throw Refusal("unknown option: " + Bytes(Written(arguments, unknown[0])));
        if (arguments.last().startsWith("--") && !arguments.last().contains('='))
            throw Refusal("no value after " + Bytes(arguments.last()));
        throw Refusal(Bytes(mParser.errorText()));
    }

    bool Has(const char* option) const { return mParser.isSet(option); }
    // Empty where the option isn't given.
    std::string Value(const char* option) const {
        const QString value = mParser.value(option);
        if (Has(option) && value.isEmpty())
            throw Refusal(std::string("no value after --") + option);
        if (mParser.values(option).size() > 1)
            throw Refusal(std::string("given twice: --") + option);
        return Bytes(value);
    }
    std::vector<std::string> Others() const {
        std::vector<std::string> others;
        for (const QString& other : mParser.positionalArguments()) others.push_back(Bytes(other));
        return others;
    }

  private:
    // The argument with the option of that name.
    static QString Written(const QStringList& arguments, const QString& name) {
        for (const QString& argument : arguments)
            if (argument.startsWith("-" + name) || argument.startsWith("--" + name))
                return argument;
        return name;
    }

    QCommandLineParser mParser;
};

// What belongs to the kit's own installation, or to the sources that it was built in.
struct Own {
    fs::path bridge, program;
};
Own FindOwn() {
    const fs::path home =
        fs::path(QCoreApplication::applicationFilePath().toStdString()).parent_path();
    const fs::path installed = home.parent_path() / "lib" / "quillstone";
    if (fs::is_directory(installed))
        return {installed / "bridge/esptool", installed / "quillstone"};
    return {home.parent_path() / "bridge/esptool", home / "quillstone"};
}

// The lines of the setting file.
std::string Setting(const CommandLine& line, const std::vector<Image>& images) {
    std::string setting;
    if (const std::string reset = line.Value("reset"); !reset.empty()) {
        // It goes into a shell command as it stands.
        const auto isPlain = [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                   c == '_' || c == '-';
        };
        if (reset[0] == '-' || !std::all_of(reset.begin(), reset.end(), isPlain))
            throw Refusal("not a word for a reset method: " + reset);
        setting += "cd," + reset + '\n';
    }
    if (const std::string speed = line.Value("speed"); !speed.empty()) {
        if (std::find(std::begin(kSpeeds), std::end(kSpeeds), speed) == std::end(kSpeeds))
            throw Refusal("not a speed that the window has: " + speed);
        setting += "cb," + speed + '\n';
    }
    for (const auto& [file, address] : images)
        setting += "up," + file.filename().string() + ',' + address + '\n';
    return setting;
}

void Run(const QStringList& arguments) {
    const CommandLine line(arguments);
    if (line.Has("help")) {
        std::puts(kUsage);
        return;
    }
    const std::vector<std::string> others = line.Others();
    if (others.empty() || others[0].empty()) throw Refusal(kUsage);
    if (others.size() % 2 == 0) throw Refusal("an image without an address");

    const Own own = FindOwn();
    Contents contents;
    contents.copies = line.Has("copy") || line.Has("program");
    if (line.Has("program")) {
        contents.program = own.program;
        if (!fs::is_regular_file(own.program))
            throw Refusal("no program at " + own.program.string());
    }
    contents.tool = line.Has("tool") ? fs::path(line.Value("tool")) : own.bridge;
    std::error_code ignored;
    if (!fs::is_regular_file(contents.tool, ignored) || access(contents.tool.c_str(), X_OK) != 0)
        throw Refusal("no flash tool to run at " + contents.tool.string());

    std::vector<Image> images;
    if (line.Has("from")) images = ReadBuild(line.Value("from"));
    for (std::size_t i = 1; i < others.size(); i += 2) images.push_back({others[i], others[i + 1]});
    contents.setting = Setting(line, images);
    const std::string warning = CheckImages(images, contents.copies);
    for (const Image& image : images) contents.images.push_back(image.file);
    MakeFolder(others[0], contents);
    if (!warning.empty()) Say(warning);
}

}  // namespace

int main(int count, char** words) {
    NoteSignals();
    QStringList arguments;
    for (int i = 0; i < count; ++i) arguments += QString::fromLatin1(words[i]);
    const QCoreApplication application(count, words);
    try {
        Run(arguments);
        return 0;
    } catch (const Ended& ended) {
        return 128 + ended.signal;
    } catch (const Refusal& refusal) {
        Say(refusal.what());
        return 2;
    } catch (const fs::filesystem_error& error) {
        const fs::path& path = error.path2().empty() ? error.path1() : error.path2();
        Say(error.code().message() + ": " + path.string());
    } catch (const std::exception& error) {
        Say(error.what());
    }
    return 1;
}
