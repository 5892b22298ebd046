#include "logger/ui/TableMimeData.h"

#include <new>
#include <QByteArray>

namespace zr::ui {

QString HtmlFormat()
{
#ifdef _WIN32
    return QStringLiteral("application/x-qt-windows-mime;value=\"%1\"").arg(QLatin1String(logger::kHtmlFormatName));
#else
    return QLatin1String(logger::kHtmlFormatName);
#endif
}

QStringList TableMimeData::formats() const
{
    QStringList formats;
    const bool hasHtml = !m_copy.HtmlFormat().empty();
    const bool hasPlain = !m_copy.PlainText().empty();
    if (hasHtml) {
        formats << HtmlFormat();
    }
    if (hasPlain) {
        formats << QLatin1String(kWideTextFormat);
    }
    if (hasHtml) {
        formats << QLatin1String(kHtmlMime);
    }
    if (hasPlain) {
        formats << QLatin1String(kPlainMime);
    }
    return formats;
}

bool TableMimeData::hasFormat(const QString& format) const
{
    return formats().contains(format);
}

QVariant TableMimeData::retrieveData(const QString& format, QMetaType type) const
{
    if (!hasFormat(format)) {
        return {};
    }
    try {
        return Data(format, type);
    } catch (const std::bad_alloc&) {
        // Whoever asks gets nothing, as if the format weren't there; nobody above this call is prepared for it.
        return {};
    }
}

QVariant TableMimeData::Data(const QString& format, QMetaType type) const
{
    if (format == HtmlFormat()) {
        const std::string_view text = m_copy.HtmlFormat();
        // With the zero behind it.
        return QByteArray(text.data(), static_cast<qsizetype>(text.size()) + 1);
    }
    if (format == QLatin1String(kWideTextFormat)) {
        const std::u16string_view text = m_copy.PlainText();
        return QByteArray(reinterpret_cast<const char*>(text.data()),
                          static_cast<qsizetype>((text.size() + 1) * sizeof(char16_t)));
    }
    const std::string text = format == QLatin1String(kHtmlMime) ? m_copy.TextHtml() : m_copy.TextPlain();
    return type.id() == QMetaType::QString ? QVariant(QString::fromStdString(text))
                                           : QVariant(QByteArray::fromStdString(text));
}

}  // namespace zr::ui
