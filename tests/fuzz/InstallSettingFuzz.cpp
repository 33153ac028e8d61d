// Reads any bytes as an install setting file, line by line, and splits the lines into fields.
#include <QString>
#include <QTemporaryDir>
#include <fstream>

#include "Fuzzing.h"
#include "platform/files/TextInputStream.h"
#include "platform/qt/QtText.h"
#include "platform/text/Text.h"

namespace {

void ExpectFields(const std::string& line, const std::string& separator) {
    std::string joined = NthField(line, separator, 1);
    std::int64_t number = 1;
    for (auto at = line.find(separator); at != line.npos; at = line.find(separator, at + 1))
        joined += separator + NthField(line, separator, ++number);
    Expect(joined == line, "the fields and their separators are the line");
    Expect(NthField(line, separator, number + 1).empty(), "there is no further field");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const QTemporaryDir folder("/dev/shm/quillstone-XXXXXX");  // in memory: a disk is slow
    static const std::string path = folder.filePath("x.csv").toStdString();

    FuzzedDataProvider input(data, size);
    const std::string separator(1, input.ConsumeIntegral<char>());
    const std::string bytes = input.ConsumeRemainingBytesAsString();
    std::ofstream(path, std::ios::binary) << bytes;

    const auto stream = TextInputStream::Open(std::make_shared<FolderItem>(path));
    std::string lines;
    while (!stream->Eof()) {
        const std::string line = stream->ReadLine();
        lines += line + '\n';
        Expect(IsUtf8(line) && line.find_first_of("\r\n") == line.npos, "a line is one of text");
        ExpectFields(line, separator);
    }
    QString text = ToQt(bytes).replace("\r\n", "\n").replace('\r', '\n');
    if (text.startsWith(QChar::ByteOrderMark)) text.remove(0, 1);
    if (!text.isEmpty() && !text.endsWith('\n')) text += '\n';
    Expect(!IsUtf8(bytes) || text == ToQt(lines), "the lines are the file's");
    return 0;
}
