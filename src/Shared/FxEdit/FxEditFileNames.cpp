#include "Shared/FxEdit/FxEditFileNames.h"

#include "Shared/Base/Format.h"

namespace
{
constexpr size_t MaxNameLength = 200;
constexpr int MaxCounter = 100000;

bool IsForbiddenInName(char16_t c)
{
    return c < 32 || c == 0x7F || std::u16string_view(u"<>:\"/\\|?*").find(c) != std::u16string_view::npos;
}
} // namespace

std::u16string WithTrailingSeparator(std::u16string folder)
{
    if (!folder.empty() && folder.back() != u'/' && folder.back() != u'\\')
        folder += u'/';
    return folder;
}

std::u16string SanitisedAttachmentName(std::u16string_view name)
{
    const size_t slash = name.find_last_of(u"/\\");
    if (slash != std::u16string_view::npos)
        name.remove_prefix(slash + 1);
    std::u16string clean;
    for (char16_t c : name)
        if (!IsForbiddenInName(c))
            clean += c;
    const size_t first = clean.find_first_not_of(u". ");
    clean.erase(0, first == std::u16string::npos ? clean.size() : first);
    while (!clean.empty() && (clean.back() == u' ' || clean.back() == u'.'))
        clean.pop_back();
    if (clean.empty())
        return u"attachment";
    if (clean.size() > MaxNameLength)
    {
        const size_t dot = clean.rfind(u'.');
        const std::u16string extension =
            dot != std::u16string::npos && clean.size() - dot <= 16 ? clean.substr(dot) : std::u16string();
        clean = clean.substr(0, MaxNameLength - extension.size()) + extension;
    }
    return clean;
}

std::u16string FreeTempFilePath(const std::u16string& folder, const std::u16string& name,
                                const std::function<bool(const std::u16string&)>& exists)
{
    std::u16string path = folder + name;
    if (!exists(path))
        return path;
    const size_t dot = name.rfind(u'.');
    const std::u16string stem = dot == std::u16string::npos ? name : name.substr(0, dot);
    const std::u16string extension = dot == std::u16string::npos ? std::u16string() : name.substr(dot + 1);
    for (int counter = 1; counter <= MaxCounter; ++counter)
    {
        path = extension.empty() ? FormatText(u"%s%s[%d]", folder, stem, counter)
                                 : FormatText(u"%s%s[%d].%s", folder, stem, counter, extension);
        if (!exists(path))
            return path;
    }
    return {};
}
