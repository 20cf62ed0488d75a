#include "Shared/LanguagesMgr/LanguageModuleHeader.h"

#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

std::u16string DecodeLanguageModuleText(std::string_view bytes)
{
    if (bytes.size() >= 2 && static_cast<uint8_t>(bytes[0]) == 0xFF && static_cast<uint8_t>(bytes[1]) == 0xFE)
        bytes.remove_prefix(2);
    std::u16string text = Utf16LeBytesToText(bytes);
    const size_t end = text.find(u'\0');
    if (end != std::u16string::npos)
        text.resize(end);
    return text;
}

bool FindHeaderValue(std::u16string_view text, std::u16string_view tag, std::u16string& value)
{
    size_t start = 0;
    while (start < text.size())
    {
        size_t end = text.find(u"\r\n", start);
        if (end == std::u16string_view::npos)
            end = text.size();
        const std::u16string_view line = text.substr(start, end - start);
        if (line.starts_with(tag))
        {
            value.assign(line.substr(tag.size()));
            return true;
        }
        start = end + 2;
    }
    return false;
}

namespace
{
bool FindNonEmptyHeader(std::u16string_view text, std::u16string_view tag, std::u16string& value)
{
    return FindHeaderValue(text, tag, value) && !value.empty();
}
} // namespace

bool CheckLanguageModuleHeader(std::u16string_view text, std::u16string_view fileName,
                               const SAppCompatibility& app, std::u16string& description)
{
    std::u16string value;
    if (!FindNonEmptyHeader(text, kFileDescriptionTag, value))
    {
        LogMessage(u"Error: Language module %s has no %s tag", fileName, kFileDescriptionTag);
        return false;
    }
    description = value;
    if (!FindNonEmptyHeader(text, kRequiredBuildTag, value))
    {
        LogMessage(u"Error: Language module %s has no %s tag", fileName, kRequiredBuildTag);
        return false;
    }
    const std::u16string expectedBuild = ToU16(app.buildNumber);
    if (value != expectedBuild)
    {
        LogMessage(u"Error: Language module %s has wrong version - %s instead of %s", fileName, value,
                   expectedBuild);
        return false;
    }
    if (!FindNonEmptyHeader(text, kProjectSignatureTag, value))
    {
        LogMessage(u"Error: Language module %s is missing signature tag %s", fileName, kProjectSignatureTag);
        return false;
    }
    if (value != app.projectSignature)
    {
        LogMessage(u"Error: Language module %s has wrong signature tag - %s instead of %s", fileName, value,
                   app.projectSignature);
        return false;
    }
    return true;
}
