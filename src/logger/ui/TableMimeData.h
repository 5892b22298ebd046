// A copied table in the forms that programs ask the clipboard for.
#pragma once

#include "logger/TableCopy.h"

#include <QMimeData>

namespace zr::ui {

// UTF-16 in the machine's byte order, with a zero behind, as CF_UNICODETEXT holds it.
inline constexpr const char* kWideTextFormat = "text/plain;charset=utf-16";
inline constexpr const char* kHtmlMime = "text/html";
inline constexpr const char* kPlainMime = "text/plain";

// In this order: "HTML Format", the wide plain text, and what other desktops read, which is made when it is asked for.
// What there was no memory for isn't among them. On Windows the first two are the clipboard's own: the named format and
// CF_UNICODETEXT. UI thread only.
class TableMimeData : public QMimeData {
public:
    explicit TableMimeData(logger::TableCopy copy) : m_copy(std::move(copy)) {}

    [[nodiscard]] QStringList formats() const override;
    [[nodiscard]] bool hasFormat(const QString& format) const override;

protected:
    [[nodiscard]] QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    [[nodiscard]] QVariant Data(const QString& format, QMetaType type) const;

    logger::TableCopy m_copy;
};

// The name under which the clipboard of this desktop takes the text of that registered format.
QString HtmlFormat();

}  // namespace zr::ui
