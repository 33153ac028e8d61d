// Texts, files and lines, below the window.
#include <unistd.h>

#include <QProcess>

#include "Testing.h"
#include "platform/files/TextInputStream.h"
#include "platform/text/Text.h"

class TextTest : public QObject {
    Q_OBJECT
  private slots:
    void ANameFindsItsFile_data() {
        const auto row = Columns<QByteArrayList, QByteArray, QByteArray>("files", "name", "found");
        const QByteArray composed = "\u30AC\u00E9.bin", decomposed = "\u30AB\u3099e\u0301.bin";
        row("written on macOS", {decomposed}, composed, decomposed);
        row("another case", {"\u00C9B.bin"}, "e\u0301b.BIN", "\u00C9B.bin");
        row("two of another case", {"Boot.bin", "BOOT.bin"}, "boot.bin", "");
        row("no valid text", {"\xFF.bin"}, "\uFFFD.bin", "");
        row("the same case", {"Boot.bin", "boot.bin"}, "boot.bin", "boot.bin");
    }
    void ANameFindsItsFile() {
        const auto [files, name, found] =
            Row<QByteArrayList, QByteArray, QByteArray>("files", "name", "found");
        const PreparedFolder folder;
        const QByteArray path = folder.Path().toUtf8() + '/';
        for (const QByteArray& file : files) fclose(fopen(path + file, "w"));
        const FolderItemRef child = folder.Item("")->Child(name.toStdString());
        QCOMPARE(child->Exists(), !found.isEmpty());
        QCOMPARE(child->Name(), (found.isEmpty() ? name : found).toStdString());
        for (const QByteArray& file : files) unlink(path + file);  // Qt can't name all of them
    }

    void TheBaseFolder_data() {
        const auto row = Columns<QString, QString, QString>("program", "link", "base");
        row("installed", "p/lib/quillstone/quillstone", "p/bin/quillstone", "work");
        row("a copy in a folder lib", "p/lib/job/quillstone", "x/quillstone", "p/lib/job");
    }
    void TheBaseFolder() {
        const auto [program, link, base] =
            Row<QString, QString, QString>("program", "link", "base");
        const PreparedFolder folder;
        for (const QString& name : {QString("work/"), program, link}) folder.Write(name + "x", "");
        QVERIFY(QFile::copy(QApplication::applicationFilePath(), folder.Path(program)));
        QVERIFY(QFile::link(folder.Path(program), folder.Path(link)));
        QProcess copy;
        copy.setWorkingDirectory(folder.Path("work"));
        copy.start(folder.Path(link), {"--base-folder"});
        QVERIFY(copy.waitForFinished());
        QCOMPARE(copy.readAllStandardOutput(),
                 QFileInfo(folder.Path(base)).canonicalFilePath().toUtf8());
    }

    void LinesOfAFile_data() {
        const auto row = Columns<QByteArray, QByteArrayList>("file", "lines");
        constexpr int limit = TextInputStream::kLargestFile;
        row("every line end", "a\nb\r\nc\rd", {"a", "b", "c", "d"});
        row("empty lines", "\n\r\n\r\ra\n\r", {"", "", "", "", "a", ""});
        row("Shift_JIS with a backslash byte", "\x83\x5C\x95\x5C.bin,0\r\nb", {"ソ表.bin,0", "b"});
        row("Shift_JIS on the last line alone", "\xEF\xBB\xBFé\n\x83\x65", {"ﾃｩ", "テ"});
        row("NUL", QByteArray("a\0b\nc", 5), {QByteArray("a\0b", 3), "c"});
        row("too large", QByteArray(limit, 'x') + "\n", {});
    }
    void LinesOfAFile() {
        const auto [file, lines] = Row<QByteArray, QByteArrayList>("file", "lines");
        const PreparedFolder folder;
        folder.Write("lines", file);
        const auto stream = TextInputStream::Open(folder.Item("lines"));
        QCOMPARE(stream != nullptr, !lines.isEmpty());
        QByteArrayList read;
        while (stream && (read.isEmpty() || !stream->Eof()))
            read += QByteArray::fromStdString(stream->ReadLine());
        QCOMPARE(read, lines);
    }

    // The text is the same in whatever pieces the output arrives.
    void TextOfAnOutput_data() {
        const auto row = Columns<QByteArray, QByteArray>("output", "text");
        row("empty lines", "\na\n\n\r\nb", "\na\n\n\nb");
        row("progress with CR", "x\n\r1 %\r2 %\r\r\ny\r", "x\n1 %\n2 %\ny\n");
        row("split characters, one not to its end", "\u00E9\U0001F600\xE3\x83",
            "\u00E9\U0001F600\xE3\x83");
        row("colours", "\033[1;36mNote:\033[0m a\u009B38:5:1mb\033[m\n", "Note: ab\n");
        row("progress with CR and deletion", "1 %\r\033[K2 %\033[K\r\033[0K\n3 %\033[K!\033[J!",
            "1 %\n2 %\n3 %!!");
        row("movements of the cursor", "a\033[2Kb\033[3Dc\0338d\033[9;1He\u0084f\n\033[1A\033[2Kg",
            "a\nb\nc\nd\ne\nf\ng");
        row("modes, titles and links",
            "\033[?25l\033[ "
            "q\033(B\033=a\033]0;\u30AC\ab\033]8;;x\033\\c\033P1\u009Cd\u009D2\033\\e"
            "\033_\b\033\\\033^3\a\u0098\u00C0\a",
            "abcde");
        row("BEL and BS", "a\ab\bc\bd 1 %\b\b\b2 %", "abcd 1 %\n2 %");
        row("no sequences", "\033[3\u00E9\033[0 1m\033\033(\n\033[1\r\u00C0\u00A0",
            "\033[3\u00E9\033[0 1m\033\033(\n\033[1\n\u00C0\u00A0");
        row("strings without an end",
            "a\033]0;b\nc\a\033Pd\033[me\u009Df\u009Bmg\a\033_h\ri\a\033]\rj\a",
            "a\033]0;b\nc\033Pde\u009Dfg\033_h\ni\033]\nj");
        const QByteArray x(2045, 'x'), y(3000, 'y');
        row("long strings", "\033]" + x + "\aa\033]x" + x + "\ab\033P" + y,
            "a\033]x" + x + "b\033P" + y);
        row("part of a sequence at the end", "a\033]b\b\xE3", "a\033]b\xE3");
    }
    void TextOfAnOutput() {
        const auto [output, text] = Row<QByteArray, QByteArray>("output", "text");
        for (qsizetype size = 1; size <= output.size(); size += 1 + size / 8) {
            OutputText shown;
            QString all;
            for (qsizetype at = 0; at < output.size(); at += size)
                all += QString::fromStdString(shown.Add(output.mid(at, size).toStdString()));
            QVERIFY(QString(text).size() - all.size() <= 2048);  // held back until the end
            QCOMPARE(all + QString::fromStdString(shown.End()), QString(text));
        }
    }
};

int main(int count, char** arguments) {
    if (count == 2 && std::string_view(arguments[1]) == "--base-folder") {
        std::fputs(GetFolderItem("", 0)->NativePath().c_str(), stdout);
        return 0;
    }
    return WithProgram([=] {
        TextTest test;
        return QTest::qExec(&test, count, arguments);
    });
}
#include "TextTest.moc"
