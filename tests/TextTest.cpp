// Texts, files and lines, below the window.
#include <fcntl.h>
#include <unistd.h>

#include "Testing.h"
#include "platform/TextInputStream.h"

namespace {

std::string OutputOf(const std::string& command) {
    std::string output;
    FILE* const pipe = popen(command.c_str(), "r");
    for (int c = 0; (c = fgetc(pipe)) != EOF;) output += static_cast<char>(c);
    return pclose(pipe) == 0 ? output : "failed";
}

}  // namespace

class TextTest : public QObject {
    Q_OBJECT
  private slots:
    // A real shell sees each name as one word, to the byte.
    void ShellSeesOneWord() {
        // clang-format off
        const std::string names[] = {
            "plain_-.+,:@%=09", "two words", "o'neil'", "\"q\" `id` $HOME ${x} $(id)", "a\nb\n",
            "-rf", "~", "*?[a]{b,c}", "a\\b\\", ";&|<>()#!^", "ファーム\u00A0é",
            "\xFF\xFE\x80.bin", "\t\r\x01"};
        // clang-format on
        const PreparedFolder folder;
        for (const std::string& name : names) {
            const FolderItemRef file = folder.Item("")->Child(name);
            QCOMPARE(file->Name(), name);
            close(open(file->NativePath().c_str(), O_CREAT | O_WRONLY, 0600));
            QCOMPARE(OutputOf("printf '<%s>' " + file->ShellPath()),
                     '<' + folder.Path().toStdString() + '/' + name + '>');
            QCOMPARE(OutputOf("rm " + file->ShellPath()), "");
        }
    }

    void FolderItems() {
        const PreparedFolder folder;
        // Names written on macOS are decomposed. The same bytes come before an equal name.
        const QString composed = "\u30AC\u00E9.bin", decomposed = "\u30AB\u3099e\u0301.bin";
        const auto child = [&folder](const QString& name) {
            return folder.Item("n")->Child(name.toStdString());
        };
        const QString path = folder.Write("n/" + decomposed, "1");
        QCOMPARE(child(composed)->NativePath(), path.toStdString());
        folder.Write("n/" + composed, "1");
        for (const QString& name : {composed, decomposed, QString("\u30AD.bin")})
            QCOMPARE(child(name)->Name(), name.toStdString());
        QFile::remove(path);
        QCOMPARE(child(decomposed)->Name(), composed.toStdString());
    }

    void Lines() {
        const auto x = [](int count) { return QByteArray(count, 'x'); };
        constexpr int block = 64 * 1024;
        // clang-format off
        const std::pair<QByteArray, QString> rows[] = {  // each line with '|' behind it
            {"", "|"}, {"a\nb\r\nc\rd", "a|b|c|d|"}, {"a\r\n", "a|"},
            {"\n\r\n\r\ra\n\r", "||||a||"}, {"\xEF\xBB\xBFup,é\n", "up,é|"}, {"\xEF\xBB\xBF", "|"},
            {"\x83\x5C\x95\x5C.bin,0\r\nb", "ソ表.bin,0|b|"},  // Shift_JIS, with a backslash byte
            {QByteArray("a\0b\nc", 5), QString("a%1b|c|").arg(QChar(0))},
            {x(block - 1) + "\r\nb", x(block - 1) + "|b|"}, {x(block) + "\r\nb", x(block) + "|b|"},
            {x(block - 1) + '\r', x(block - 1) + '|'}, {x(block - 2) + "\né", x(block - 2) + "|é|"},
            {"é\n" + x(block) + "\n\x83\x65", "ﾃｩ|" + x(block) + "|テ|"},  // Shift_JIS late
            {x(3 * block + 5) + "\nb", x(block) + "|b|"},
            {'x' + QByteArray("é").repeated(block) + "\nb",
             'x' + QString("é").repeated(block / 2 - 1) + "|b|"}};
        // clang-format on
        const PreparedFolder folder;
        for (const auto& [bytes, lines] : rows) {
            folder.Write("lines", bytes);
            const auto stream = TextInputStream::Open(folder.Item("lines"));
            std::string read;
            do read += stream->ReadLine() + '|';
            while (!stream->Eof());
            QVERIFY2(read == lines.toStdString(), bytes.left(99).constData());
        }
    }
};

QUILLSTONE_TEST(TextTest)
#include "TextTest.moc"
