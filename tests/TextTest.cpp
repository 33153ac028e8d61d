// Texts, files and lines, below the window.
#include <fcntl.h>
#include <unistd.h>

#include <QProcess>

#include "Testing.h"
#include "platform/Text.h"
#include "platform/TextInputStream.h"

namespace {

QByteArray OutputOf(const QString& program, const QStringList& arguments,
                    const QString& folder = {}) {
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    return process.waitForFinished() ? process.readAllStandardOutput() : "hangs";
}

}  // namespace

class TextTest : public QObject {
    Q_OBJECT
  private slots:
    void AShellSeesAPathAsOneWord_data() {
        const auto row = Columns<QByteArray>("name");
        row("no quotes needed", "plain_-.+,:@%=09");
        row("blank and single quotes", "two o'neil'");
        row("expansions", "\"q\" `id` $HOME ${x} $(id)");
        row("line ends", "a\nb\n");
        row("hyphen in front", "-rf");
        row("tilde", "~");
        row("patterns and operators", "*?[a]{b,c};&|<>()#!^");
        row("backslashes", "a\\b\\");
        row("no valid text", "\xFF\xFE\x80.bin");
    }
    void AShellSeesAPathAsOneWord() {
        QFETCH(const QByteArray, name);
        const PreparedFolder folder;
        const FolderItemRef file = folder.Item("")->Child(name.toStdString());
        QCOMPARE(file->Name(), name.toStdString());
        close(open(file->NativePath().c_str(), O_CREAT | O_WRONLY, 0600));
        // By a file, since a command line of Qt's holds valid text alone.
        folder.Write("command", "printf '<%s>' " + QByteArray::fromStdString(file->ShellPath()) +
                                    "; rm " + QByteArray::fromStdString(file->ShellPath()));
        QCOMPARE(OutputOf("sh", {folder.Path("command")}),
                 '<' + folder.Path().toUtf8() + '/' + name + '>');
        QVERIFY(!file->Exists());
    }

    void ANameFindsItsFile_data() {
        const QString composed = "\u30AC\u00E9.bin", decomposed = "\u30AB\u3099e\u0301.bin";
        const auto row = Columns<QStringList, QString, QString>("files", "name", "found");
        row("written on macOS", {decomposed}, composed, decomposed);
        row("written for macOS", {composed}, decomposed, composed);
        row("the same bytes come first", {composed, decomposed}, decomposed, decomposed);
        row("another letter", {composed}, "\u30AD\u00E9.bin", "");
        row("another case", {"Boot.BIN", "app.bin"}, "boot.bin", "Boot.BIN");
        row("another case beyond ASCII", {"\u00C9.bin"}, "e\u0301.BIN", "\u00C9.bin");
        row("two of another case", {"Boot.bin", "BOOT.bin"}, "boot.bin", "");
        row("the same case among others", {"Boot.bin", "boot.bin"}, "boot.bin", "boot.bin");
        row("normalised before another case", {decomposed, "\u30AC\u00C9.bin"}, composed,
            decomposed);
    }
    void ANameFindsItsFile() {
        const auto [files, name, found] =
            Row<QStringList, QString, QString>("files", "name", "found");
        const PreparedFolder folder;
        for (const QString& file : files) folder.Write(file, "1");
        const FolderItemRef child = folder.Item("")->Child(name.toStdString());
        QCOMPARE(child->Exists(), !found.isEmpty());
        QCOMPARE(child->Name(), (found.isEmpty() ? name : found).toStdString());
    }

    // A name that can't be read must not pass for another one.
    void NamesThatAreNoTextAreNotSimilar() {
        const PreparedFolder folder;
        const std::string path = folder.Path().toStdString() + "/\xFF.bin";
        close(open(path.c_str(), O_CREAT | O_WRONLY, 0600));
        for (const char* name : {"\xFE.bin", "\uFFFD.bin"})
            QVERIFY(!folder.Item("")->Child(name)->Exists());
        unlink(path.c_str());  // not every way of removing the folder can name it
    }

    void TheBaseFolder_data() {
        const auto row = Columns<QString, QString, QString>("program", "link", "base");
        row("installed", "p/lib/quillstone/quillstone", "p/bin/quillstone", "work");
        row("a copy in a folder lib", "p/lib/job/quillstone", "", "p/lib/job");
        row("a link to a copy", "job/quillstone", "bin/quillstone", "job");
    }
    void TheBaseFolder() {
        const auto [program, link, base] =
            Row<QString, QString, QString>("program", "link", "base");
        const PreparedFolder folder;
        folder.Write("work/x", "");
        const QString path = folder.Write(program, ""), started = folder.Path(link);
        QVERIFY(QFile::remove(path) && QFile::copy(QApplication::applicationFilePath(), path));
        if (!link.isEmpty()) {
            QDir().mkpath(QFileInfo(started).path());
            QVERIFY(QFile::link(path, started));
        }
        QCOMPARE(OutputOf(link.isEmpty() ? path : started, {"--base-folder"}, folder.Path("work")),
                 QFileInfo(folder.Path(base)).canonicalFilePath().toUtf8());
    }

    void LinesOfAFile_data() {
        const auto row = Columns<QByteArray, QStringList>("file", "lines");
        constexpr int limit = TextInputStream::kLargestFile;
        row("empty", "", {""});
        row("every line end", "a\nb\r\nc\rd", {"a", "b", "c", "d"});
        row("empty lines", "\n\r\n\r\ra\n\r", {"", "", "", "", "a", ""});
        row("byte order mark", "\xEF\xBB\xBFup,é\n", {"up,é"});
        row("Shift_JIS with a backslash byte", "\x83\x5C\x95\x5C.bin,0\r\nb", {"ソ表.bin,0", "b"});
        row("byte order mark before Shift_JIS", "\xEF\xBB\xBF\x83\x65\n", {"テ"});
        row("Shift_JIS on the last line", "é\n\x83\x65", {"ﾃｩ", "テ"});
        row("NUL", QByteArray("a\0b\nc", 5), {QString("a%1b").arg(QChar(0)), "c"});
        row("a long line", QByteArray(200'000, 'x') + "\ny", {QString(200'000, 'x'), "y"});
        row("as large as can be", QByteArray(limit - 2, 'x') + "\ny",
            {QString(limit - 2, 'x'), "y"});
        row("too large", QByteArray(limit, 'x') + "\n", {});
    }
    void LinesOfAFile() {
        const auto [file, lines] = Row<QByteArray, QStringList>("file", "lines");
        const PreparedFolder folder;
        folder.Write("lines", file);
        const auto stream = TextInputStream::Open(folder.Item("lines"));
        QCOMPARE(stream != nullptr, !lines.isEmpty());
        QStringList read;
        while (stream && (read.isEmpty() || !stream->Eof()))
            read += QString::fromStdString(stream->ReadLine());
        QVERIFY(read == lines);  // too long to be printed
    }

    // In whatever pieces it arrives.
    void TextOfAnOutput_data() {
        const auto row = Columns<QByteArray, QByteArray>("output", "text");
        row("line ends", "a\nb\r\nc\rd", "a\nb\nc\nd");
        row("empty lines", "\na\n\n\r\nb", "\na\n\n\nb");
        row("progress with CR behind", "1 %\r2 %\r\n", "1 %\n2 %\n");
        row("progress with CR in front", "x\n\r1 %\r2 %\n\ry", "x\n1 %\n2 %\ny");
        row("CR twice", "a\r\r\nb\r\rc", "a\nb\nc");
        row("CR at the end", "a\r", "a\n");
        row("split characters", "\u00E9\u30AC\U0001F600", "\u00E9\u30AC\U0001F600");
        row("part of a character at the end", "a\xE3\x83", "a\xE3\x83");
        row("no UTF-8", "\xFF\x80\x80\x80\x80z", "\xFF\x80\x80\x80\x80z");
    }
    void TextOfAnOutput() {
        const auto [output, text] = Row<QByteArray, QByteArray>("output", "text");
        for (qsizetype size = 1; size <= output.size(); ++size) {
            OutputText shown;
            std::string all;
            for (qsizetype at = 0; at < output.size(); at += size)
                all += shown.Add(output.mid(at, size).toStdString());
            QCOMPARE(all + shown.End(), text.toStdString());
        }
    }
};

int main(int count, char** arguments) {
    if (count == 2 && std::string_view(arguments[1]) == "--base-folder") {
        std::fputs(GetFolderItem("", 0)->NativePath().c_str(), stdout);
        return 0;
    }
    return RunTest<TextTest>(count, arguments);
}
#include "TextTest.moc"
