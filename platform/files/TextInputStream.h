#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/files/FolderItem.h"

// Reads a text file line by line and skips a leading byte order mark. The text is UTF-8, or
// Shift_JIS if the file as a whole isn't valid UTF-8. Lines end with LF, CRLF or CR.
class TextInputStream {
  public:
    // The size of the largest file that Open accepts, in bytes.
    static constexpr std::size_t kLargestFile = 16UL * 1024 * 1024;

    // Reads the whole file. Returns nullptr if the file can't be opened or read to its end, is
    // larger than the limit, or is no regular file. Raises NilObjectException for a nullptr.
    static std::unique_ptr<TextInputStream> Open(const FolderItemRef& file);

    // The next line as UTF-8, without its line end; empty at the end of the file. `encoding` is
    // always nullptr, since the class finds the encoding itself.
    std::string ReadLine(std::nullptr_t encoding = nullptr);

    // True at the end of the file. (EOF is a macro of <cstdio>.)
    bool Eof() const { return mNext == mText.size(); }
    void Close() { mNext = mText.size(); }

  private:
    explicit TextInputStream(std::string text);

    std::string mText;
    std::size_t mNext = 0;
};
