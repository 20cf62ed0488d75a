#pragma once
// Texts of the dialogs come from the language module; without one (a dialog built on its own)
// the key itself is shown, which keeps every control findable and never leaves a blank button.
#include "Gui/QtText.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <QString>

#include <string_view>

inline QString LanguageText(const CLanguageModule* language, std::u16string_view key)
{
    if (!language)
        return ToQString(key);
    return ToQString(language->GetString(key));
}

// The language text of `key` with "^tag" replaced by `value`.
inline QString LanguageText(const CLanguageModule* language, std::u16string_view key, const QString& tag,
                            const QString& value)
{
    QString text = LanguageText(language, key);
    text.replace(tag, value);
    return text;
}
