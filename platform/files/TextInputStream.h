#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/files/FolderItem.h"

// Reads a text file line by line. A leading byte order mark is skipped. The text is UTF-8, or
// Shift_JIS where the file as a whole isn't valid UTF-8. Lines end with LF, CRLF or CR.
class TextInputStream {
  public:
    // Bytes of the largest file that is read.
    static constexpr std::size_t kLargestFile = 16UL * 1024 * 1024;

    // Reads the whole file. nullptr for one that can't be opened or read to its end, that is larger
    // than the limit, or that is no regular file. Raises NilObjectException for a nullptr.
    static std::unique_ptr<TextInputStream> Open(const FolderItemRef& file);

    // The next line as UTF-8, without its line end; empty at the end. `encoding` is always nullptr:
    // the file's own is found as said above.
    std::string ReadLine(std::nullptr_t encoding = nullptr);

    // True when nothing is left to read. (EOF is a macro of <cstdio>.)
    bool Eof() const { return mNext == mText.size(); }
    void Close() { mNext = mText.size(); }

  private:
    explicit TextInputStream(std::string text);

    std::string mText;
    std::size_t mNext = 0;
};
