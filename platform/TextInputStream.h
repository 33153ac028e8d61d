#pragma once

#include <cstddef>
#include <fstream>
#include <memory>
#include <string>

#include "platform/FolderItem.h"

// Reads a text file line by line. The text is UTF-8, a leading byte order mark skipped, or
// Shift_JIS where the file as a whole isn't valid UTF-8. Lines end with LF, CRLF or CR.
class TextInputStream {
  public:
    // Of a longer line only so many bytes are read: text controls can't show more.
    static constexpr std::size_t kLongestLine = 64UL * 1024;

    // nil for a file that can't be opened, or that is no regular file. Raises NilObjectException
    // for a nil argument.
    static std::unique_ptr<TextInputStream> Open(const FolderItemRef& file);
    ~TextInputStream();

    // The next line as UTF-8, without its line end; empty at the end. The encoding of the file is
    // found as said above; nil asks for no other.
    std::string ReadLine(std::nullptr_t encoding = nullptr);

    // True when nothing is left to read, also after an error. (The plain name is a macro of C's.)
    bool Eof() const { return mNext == mBuffer.size(); }
    void Close() { mFile.close(); }

  private:
    explicit TextInputStream(std::ifstream file);
    bool Fill();

    std::ifstream mFile;
    std::string mBuffer;  // holds something to read, from mNext on, until the end of the file
    std::size_t mNext = 0;
    struct Decoder;
    std::unique_ptr<Decoder> mDecoder;  // of a file that isn't UTF-8
};
