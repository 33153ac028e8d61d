#include "platform/QtText.h"

#include <QString>

QString ToQt(std::string_view text) {
    QString converted = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    // The toolkit drops a mark at the beginning, which may be that of any piece of a text.
    if (text.starts_with("\xEF\xBB\xBF")) converted.prepend(QChar::ByteOrderMark);
    return converted;
}

std::string FromQt(const QString& text) { return text.toStdString(); }

QString ToQtKeys(std::string_view shortcut) {
    return ToQt(shortcut).replace(QLatin1String("Cmd+"), QLatin1String("Ctrl+"));
}

std::string Composed(std::string_view text) {
    return FromQt(ToQt(text).normalized(QString::NormalizationForm_C));
}
