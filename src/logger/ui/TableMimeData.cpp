#include "logger/ui/TableMimeData.h"

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
    return {HtmlFormat(), QLatin1String(kWideTextFormat), QLatin1String(kHtmlMime), QLatin1String(kPlainMime)};
}

bool TableMimeData::hasFormat(const QString& format) const
{
    return formats().contains(format);
}

QVariant TableMimeData::retrieveData(const QString& format, QMetaType type) const
{
    if (format == HtmlFormat()) {
        const std::string_view text = m_copy.HtmlFormat();
        // With the zero behind it.
        return text.empty() ? QVariant() : QVariant(QByteArray(text.data(), static_cast<qsizetype>(text.size()) + 1));
    }
    if (format == QLatin1String(kWideTextFormat)) {
        const std::u16string_view text = m_copy.PlainText();
        return QByteArray(reinterpret_cast<const char*>(text.data()),
                          static_cast<qsizetype>((text.size() + 1) * sizeof(char16_t)));
    }
    const bool isHtml = format == QLatin1String(kHtmlMime);
    if (!isHtml && format != QLatin1String(kPlainMime)) {
        return {};
    }
    const std::string text = isHtml ? m_copy.TextHtml() : m_copy.TextPlain();
    return type.id() == QMetaType::QString ? QVariant(QString::fromStdString(text))
                                           : QVariant(QByteArray::fromStdString(text));
}

}  // namespace zr::ui
