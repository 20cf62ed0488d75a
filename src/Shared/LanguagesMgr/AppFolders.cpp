#include "Shared/LanguagesMgr/AppFolders.h"

#include "Shared/Base/File.h"

namespace
{
const char16_t* FolderName(EAppFolder folder)
{
    switch (folder)
    {
    case EAppFolder::Skins:
        return u"Skins/";
    case EAppFolder::Dictionaries:
        return u"Dictionaries/";
    case EAppFolder::Languages:
        return u"Languages/";
    case EAppFolder::Sounds:
        return u"Sounds/";
    }
    return u"";
}
} // namespace

std::u16string AppFolderPath(const std::u16string& appFolder, EAppFolder folder)
{
    return JoinPath(appFolder, FolderName(folder));
}
