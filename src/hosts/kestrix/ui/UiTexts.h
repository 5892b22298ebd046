// The desktop's texts for Qt.
#pragma once

#include "hosts/kestrix/DesktopIds.h"
#include "platform/ui/UiText.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"

#include <initializer_list>
#include <QString>
#include <QTextDocument>

namespace zr::desktop {

inline QString LoadText(unsigned id)
{
    ZRBasicString text;
    return ui::ToQt(ZRLoadString(id, text).Text());
}

// With its placeholders filled.
inline QString FilledText(unsigned id, std::initializer_list<TextArgument> arguments)
{
    ZRBasicString text;
    return ui::ToQt(FormatText(ZRLoadString(id, text).Text(), arguments).Text());
}

inline QString ToQt(const ZRBasicString& text)
{
    return ui::ToQt(text.Text());
}

inline ZRBasicString FromQt(const QString& text)
{
    return {ui::FromQt(text)};
}

// A tool tip that shows the text as it stands: names and texts of devices are no markup.
inline QString PlainTip(const QString& text)
{
    return Qt::mightBeRichText(text)
               ? QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(text.toHtmlEscaped())
               : text;
}

}  // namespace zr::desktop
