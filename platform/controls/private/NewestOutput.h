// Bounds an output that may never end: the oldest of it is dropped in large pieces, and one line
// at the top then says how much is gone.
#pragma once

#include <cstdint>

class QTextDocument;

class NewestOutput {
  public:
    // A new output begins.
    void Restart() { mLinesGone = mCharactersGone = 0; }

    // Call it after each addition. Once the bound is passed by a sixteenth, drops what is beyond
    // it.
    void Keep(QTextDocument& document);

    // Both bounds hold. Together they keep the program below 500 MB.
    int MostParagraphs = 1'000'000;  // lines, unless they are very long (see Paragraphs.h)
    int MostCharacters = 50'000'000;

  private:
    std::int64_t mLinesGone = 0, mCharactersGone = 0;
};
