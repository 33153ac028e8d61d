#include "platform/qt/QtText.h"

#include <QString>
#include <QStringDecoder>
#include <QUtf8StringView>

namespace {

qsizetype QtSize(std::string_view text) { return static_cast<qsizetype>(text.size()); }

}  // namespace

QString ToQt(std::string_view text) {
    QString converted = QString::fromUtf8(text.data(), QtSize(text));
    // Qt drops a leading byte order mark. `text` may be a piece from the middle of a longer text,
    // where U+FEFF is a character as any other.
    if (text.starts_with("\xEF\xBB\xBF")) converted.prepend(QChar::ByteOrderMark);
    return converted;
}

std::string FromQt(const QString& text) { return text.toStdString(); }

QString ToQtKeys(std::string_view shortcut) {
    return ToQt(shortcut).replace(QLatin1String("Cmd+"), QLatin1String("Ctrl+"));
}

bool IsUtf8(std::string_view text) {
    return QUtf8StringView(text.data(), QtSize(text)).isValidUtf8();
}

std::string FromShiftJis(std::string_view bytes) {
    QStringDecoder decoder("Shift_JIS");
    if (!decoder.isValid()) return std::string(bytes);
    const QString text = decoder(QByteArrayView(bytes.data(), QtSize(bytes)));
    return FromQt(text);
}

std::string Composed(std::string_view text) {
    return FromQt(ToQt(text).normalized(QString::NormalizationForm_C));
}

std::string CaseFolded(std::string_view text) {
    return FromQt(ToQt(text).normalized(QString::NormalizationForm_C).toCaseFolded());
}
