// The reader of install setting files: any bytes as a file, read line by line and taken apart.
#include <QString>
#include <QTemporaryDir>
#include <QUtf8StringView>
#include <fstream>

#include "Fuzzing.h"
#include "platform/QtText.h"
#include "platform/Text.h"
#include "platform/TextInputStream.h"

namespace {

bool IsUtf8(const std::string& text) {
    return QUtf8StringView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8();
}

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
    static const QTemporaryDir folder("/dev/shm/quillstone-XXXXXX");  // a disk would be waited for
    static const std::string path = folder.filePath("x.csv").toStdString();

    FuzzedDataProvider input(data, size);
    const std::string separator(1, input.ConsumeIntegral<char>());
    // Brings the rest, now and then, to where a block or the longest line ends.
    const bool filled = input.ConsumeIntegral<std::uint8_t>() == 1;
    const auto filler = TextInputStream::kLongestLine - input.ConsumeIntegral<std::uint8_t>();
    const bool longLine = filled && input.ConsumeBool();
    const std::string bytes = std::string(filled ? filler : 0, 'x') +
                              (filled && !longLine ? "\r" : "") +
                              input.ConsumeRemainingBytesAsString();
    std::ofstream(path, std::ios::binary) << bytes;

    const auto stream = TextInputStream::Open(std::make_shared<FolderItem>(path));
    std::string lines;
    while (!stream->Eof()) {
        const std::string line = stream->ReadLine();
        lines += line + '\n';
        Expect(IsUtf8(line) && line.find_first_of("\r\n") == line.npos, "a line is one of text");
        ExpectFields(line, ",");
        if (!filled) ExpectFields(line, separator);  // takes the square of the fields
    }
    QString text = ToQt(bytes).replace("\r\n", "\n").replace('\r', '\n');
    if (text.startsWith(QChar::ByteOrderMark)) text.remove(0, 1);
    if (!text.isEmpty() && !text.endsWith('\n')) text += '\n';
    Expect(!IsUtf8(bytes) || longLine || text == ToQt(lines), "the lines are the file's");
    return 0;
}
