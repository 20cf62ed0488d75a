#include "Shared/LanguagesMgr/StringTemplate.h"

#include "Shared/Base/AppConnector.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/Log/Log.h"

bool ReplaceTag(std::u16string& text, std::u16string_view tag, std::u16string_view value,
                std::u16string_view key)
{
    size_t pos = text.find(tag);
    if (tag.empty() || pos == std::u16string::npos)
    {
        LogMessage(u"Error: Cannot find %s tag in the %s string resource.", tag, key);
        return false;
    }
    while (pos != std::u16string::npos)
    {
        text.replace(pos, tag.size(), value);
        pos = text.find(tag, pos + value.size());
    }
    return true;
}

std::u16string LoadLanguageString(std::u16string_view key)
{
    const CAppConnector* connector = CAppConnector::Get();
    const CLanguageModule* module = connector ? connector->GetLanguageModule() : nullptr;
    return module ? module->GetString(key) : std::u16string(key);
}

std::u16string LoadLanguageStringWithTag(std::u16string_view key, std::u16string_view tag,
                                         std::u16string_view value)
{
    std::u16string text = LoadLanguageString(key);
    ReplaceTag(text, tag, value, key);
    return text;
}
