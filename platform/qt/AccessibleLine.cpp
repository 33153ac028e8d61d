#include "platform/qt/AccessibleLine.h"

#include <QTextBoundaryFinder>
#include <algorithm>
#include <optional>

namespace {

struct Part {
    int start, end;
};

// Returns nothing for the types that mean the whole line.
std::optional<QTextBoundaryFinder::BoundaryType> FinderType(QAccessible::TextBoundaryType type) {
    switch (type) {
        case QAccessible::CharBoundary:
            return QTextBoundaryFinder::Grapheme;
        case QAccessible::WordBoundary:
            return QTextBoundaryFinder::Word;
        case QAccessible::SentenceBoundary:
            return QTextBoundaryFinder::Sentence;
        default:
            return {};
    }
}

// The characters between two words are a part too.
Part PartAt(const QString& text, int offset, QAccessible::TextBoundaryType type) {
    const int size = static_cast<int>(text.size());
    if (offset == -1) offset = size;
    if (offset < 0 || offset > size) return {size, size};
    const auto finderType = FinderType(type);
    if (!finderType) return {0, size};
    if (offset == size) return {size, size};

    QTextBoundaryFinder finder(*finderType, text);
    const auto isEdge = [&] {
        const qsizetype at = finder.position();
        return at <= 0 || at >= size ||
               finder.boundaryReasons().testAnyFlags(QTextBoundaryFinder::StartOfItem |
                                                     QTextBoundaryFinder::EndOfItem);
    };
    finder.setPosition(offset);
    while (!isEdge()) finder.toPreviousBoundary();
    const auto start = static_cast<int>(finder.position());
    do finder.toNextBoundary();
    while (!isEdge());
    return {start, static_cast<int>(finder.position())};
}

QString Tell(const QString& text, Part part, int* start, int* end) {
    *start = part.start;
    *end = part.end;
    return text.mid(part.start, part.end - part.start);
}

}  // namespace

QString AccessibleLine::text(int start, int end) const {
    const QString whole = WholeText();
    const int size = static_cast<int>(whole.size());
    start = std::clamp(start, 0, size);
    return whole.mid(start, std::clamp(end, start, size) - start);
}

QString AccessibleLine::textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                                         int* end) const {
    const QString whole = WholeText();
    const int size = static_cast<int>(whole.size());
    const int before = offset > size ? 0 : PartAt(whole, offset, type).start;
    return Tell(whole, before > 0 ? PartAt(whole, before - 1, type) : Part{size, size}, start, end);
}

QString AccessibleLine::textAtOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                                     int* end) const {
    const QString whole = WholeText();
    return Tell(whole, PartAt(whole, offset, type), start, end);
}

QString AccessibleLine::textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                                        int* end) const {
    const QString whole = WholeText();
    const int size = static_cast<int>(whole.size());
    const int after = PartAt(whole, offset, type).end;
    return Tell(whole, after < size ? PartAt(whole, after, type) : Part{size, size}, start, end);
}

QString AccessibleLine::attributes(int, int* start, int* end) const {
    *start = 0;
    *end = characterCount();
    return {};
}

void AccessibleLine::insertText(int at, const QString& text) {
    at = std::max(at, 0);
    replaceText(at, at, text);
}

void AccessibleLine::replaceText(int start, int end, const QString& text) {
    const int size = characterCount();
    start = std::clamp(start, 0, size);
    end = end < 0 ? size : std::clamp(end, start, size);
    Replace(start, end - start, text);
}
