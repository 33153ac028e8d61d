// Measures the program against baselines and prints the table, in Markdown. Each measurement runs
// in processes of its own, the two sides in turn.
#include <sys/prctl.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "bench/Median.h"

namespace {

constexpr int kLines = 1'000'000;

using Figures = std::vector<double>;

QString Beside(const char* program) {
    return QCoreApplication::applicationDirPath() + '/' + program;
}

[[noreturn]] void Die(const QString& reason) {
    std::fprintf(stderr, "bench: %s\n", qPrintable(reason));
    std::exit(1);
}

// However this process ends.
void EndsWithUs(QProcess& child) {
    child.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

// The numbers that a child prints.
Figures Child(const QStringList& arguments) {
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    EndsWithUs(child);
    child.start(Beside("bench_child"), arguments);
    if (!child.waitForFinished(600'000) || child.exitStatus() != QProcess::NormalExit ||
        child.exitCode() != 0)
        Die(arguments.join(' ') + " failed");
    Figures figures;
    for (const QByteArray& word : child.readAllStandardOutput().simplified().split(' '))
        figures.push_back(word.toDouble());
    return figures;
}

// Milliseconds from the start of a program to the first byte of its output.
double UntilFirstByte(const QString& program, const QStringList& arguments) {
    QProcess child;
    QElapsedTimer clock;
    EndsWithUs(child);
    clock.start();
    child.start(program, arguments, QIODevice::ReadOnly);
    if (!child.waitForReadyRead(60'000) && child.bytesAvailable() == 0)
        Die(program + " printed nothing");
    const double elapsed = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    child.kill();
    child.waitForFinished();
    return elapsed;
}

// Runs all sides so often, in turn, and returns the medians of each side's figures.
std::vector<Figures> Medians(int runs, const std::vector<std::function<Figures()>>& sides) {
    std::vector<std::vector<Figures>> columns(sides.size());
    for (int run = 0; run < runs; ++run)
        for (std::size_t side = 0; side < sides.size(); ++side) {
            const Figures figures = sides[side]();
            columns[side].resize(figures.size());
            for (std::size_t i = 0; i < figures.size(); ++i) columns[side][i].push_back(figures[i]);
        }
    std::vector<Figures> medians(sides.size());
    for (std::size_t side = 0; side < sides.size(); ++side)
        for (const Figures& column : columns[side]) medians[side].push_back(Median(column));
    return medians;
}

enum class Limits { Nothing, Ratio, Figure };

void Row(const char* what, double figure, double baseline, const char* unit, Limits limits,
         double limit) {
    const double ratio = figure / baseline;
    const auto digits = [](double value) { return value >= 100 ? 0 : value >= 10 ? 1 : 2; };
    std::printf("| %s | %.*f %s | %.*f %s | %.*f |", what, digits(figure), figure, unit,
                digits(baseline), baseline, unit, ratio < 0.1 ? 4 : 2, ratio);
    if (limits == Limits::Nothing)
        std::puts(" | |");
    else
        std::printf(" %g%s%s | %s |\n", limit, limits == Limits::Figure ? " " : "",
                    limits == Limits::Figure ? unit : "",
                    (limits == Limits::Ratio ? ratio : figure) <= limit ? "yes" : "**no**");
    std::fflush(stdout);
}

// The window against the same by plain Qt, and for comparison that and a window with one word
// against an empty one.
void Start(const char* platform, const QString& where) {
    const QByteArray before = qgetenv("QT_QPA_PLATFORM");
    qputenv("QT_QPA_PLATFORM", platform);
    const auto painted = [](const char* mode) {
        return [mode] { return Figures{UntilFirstByte(Beside("bench_child"), {mode})}; };
    };
    const auto medians = Medians(21, {painted("start"), painted("start-plain"),
                                      painted("start-word"), painted("start-bare")});
    qputenv("QT_QPA_PLATFORM", before);
    const double ours = medians[0][0], plain = medians[1][0];
    const double word = medians[2][0], empty = medians[3][0];
    const auto row = [&where](const char* what, double figure, double baseline, Limits limits) {
        Row(qPrintable(what + where), figure, baseline, "ms", limits, 1.15);
    };
    row("start to first paint, ", ours, plain, Limits::Ratio);
    row("that window by plain Qt, ", plain, empty, Limits::Nothing);
    row("a window with one word, ", word, empty, Limits::Nothing);
}

void Flood(const QTemporaryDir& folder) {
    const QString text = folder.filePath("flood.txt");
    QFile file(text);
    if (!file.open(QIODevice::WriteOnly)) Die("no room for " + text);
    for (int line = 0; line < kLines; ++line)
        file.write(QByteArray::number(line).rightJustified(7, '0') +
                   " written, and so is this line\n");
    file.close();
    const auto flooded = [&](const char* mode) {
        return [=] {
            Figures figures = Child({mode, text});
            if (figures.at(3) != kLines - 1) Die(QString(mode) + ": the end isn't shown");
            return figures;
        };
    };
    const auto medians = Medians(5, {flooded("flood"), flooded("flood-bare")});
    const Figures &ours = medians[0], &bare = medians[1];
    if (ours[4] < 0.98 * bare[4]) Die("the two sides keep different amounts of the output");
    Row("a million lines of output: time", ours[0], bare[0], "s", Limits::Ratio, 1.15);
    Row("peak memory", ours[1], bare[1], "MiB", Limits::Ratio, 1.1);
    Row("longest hold of the event loop", ours[2], bare[2], "ms", Limits::Ratio, 1.15);
}

void FirstLine() {
    const QString tool = Beside("bench_unflushed");
    const auto shown = [&tool] { return Child({"first-line", tool}); };
    const auto bare = [&tool] { return Figures{UntilFirstByte(tool, {})}; };
    const auto medians = Medians(5, {shown, bare});
    Row("first line of a tool that never flushes", medians[0][0], medians[1][0], "ms",
        Limits::Figure, 100);
}

// A run of 200 processes that ignore what asks them to end.
void Ends() {
    const auto child = [](const char* mode) { return [mode] { return Child({mode}); }; };
    const auto stop = Medians(5, {child("stop"), child("stop-bare")});
    Row("stop of a run: longest hold of the event loop", stop[0][0], stop[1][0], "ms",
        Limits::Figure, 30);
    const auto close = Medians(5, {child("close"), child("close-bare")});
    Row("close during a run: until the program has ended", close[0][0], close[1][0], "ms",
        Limits::Figure, 1000);
    const auto looks = Medians(5, {child("looks")});
    Row("a look at a run's processes", looks[0][0], looks[0][1], "µs", Limits::Ratio, 1.2);
}

// A child that prints both sides of the row.
void Scaled(const char* mode, const char* what, const QTemporaryDir& folder, double limit,
            std::initializer_list<int> sizes) {
    for (const int size : sizes) {
        const auto run = [&] { return Child({mode, folder.path(), QString::number(size)}); };
        const auto medians = Medians(9, {run});
        Row(qPrintable(QString(what).arg(size)), medians[0][0], medians[0][1], "µs", Limits::Ratio,
            limit);
    }
}

// A key in the command of 1000 images. The folder's name makes the command 100,000 characters long.
void Key(const QTemporaryDir& folder) {
    const QString images = folder.filePath(QString("images-").leftJustified(40, 'x'));
    if (!QDir().mkdir(images)) Die("no room for " + images);
    const auto medians = Medians(5, {[&] { return Child({"key", images, "1000"}); }});
    Row("a key in a command of 100,000 characters", medians[0][0], medians[0][1], "ms",
        Limits::Figure, 50);
}

}  // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    const QTemporaryDir folder;
    Child({"compare"});
    std::puts(
        "| what | Quillstone | baseline | ratio | at most | kept |\n|---|---|---|---|---|---|");
    if (qEnvironmentVariableIsSet("DISPLAY")) Start("xcb", "X display");
    Start("offscreen", "no display");
    Flood(folder);
    Key(folder);
    FirstLine();
    Ends();
    Scaled("command", "`MakeCommand`, %1 rows", folder, 3, {10, 100, 1000});
    Scaled("setting", "a line of a setting file with %1 `up` lines", folder, 1.5, {1000, 10000});
}
