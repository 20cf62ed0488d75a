#pragma once
// The core speaks UTF-16 in std::u16string; Qt's strings are UTF-16 too, so both directions
// copy the code units unchanged.
#include <QString>

#include <string>
#include <string_view>

inline QString ToQString(std::u16string_view text)
{
    return QString(reinterpret_cast<const QChar*>(text.data()), static_cast<qsizetype>(text.size()));
}

inline std::u16string ToU16(const QString& text)
{
    return std::u16string(reinterpret_cast<const char16_t*>(text.utf16()), static_cast<size_t>(text.size()));
}
