#include "Shared/LanguagesMgr/LanguagesMgr.h"

#include "Shared/Base/File.h"
#include "Shared/Log/Log.h"

CLanguagesMgr::CLanguagesMgr(const std::u16string& languagesFolder, const SAppCompatibility& app,
                             const std::u16string& builtInDescription, IFileSystem* fs)
{
    m_Modules.push_back({u"", builtInDescription});
    SearchFolder(languagesFolder, app, fs ? *fs : DiskFileSystem());
}

void CLanguagesMgr::SearchFolder(const std::u16string& languagesFolder, const SAppCompatibility& app,
                                 IFileSystem& fs)
{
    LogMessage(u"Starting search for language modules installed...");
    for (const SFolderEntry& entry : fs.ListFolder(languagesFolder, u"*.lng"))
    {
        if (entry.isFolder)
            continue;
        std::string bytes;
        int cause = 0;
        std::u16string description;
        if (ReadWholeFile(fs, JoinPath(languagesFolder, entry.name), bytes, cause) &&
            CheckLanguageModuleHeader(DecodeLanguageModuleText(bytes), entry.name, app, description))
        {
            m_Modules.push_back({entry.name, description});
            LogMessage(u"    Language module %s found.", entry.name);
        }
        else
        {
            LogMessage(u"    Info: Language module %s found, but it is incompatible with current application "
                       u"version. Skipped.",
                       entry.name);
        }
    }
    LogMessage(u"Search for language modules finished. %d language modules found.",
               static_cast<int>(m_Modules.size() - 1));
}

int CLanguagesMgr::FindByDescription(const std::u16string& description) const
{
    for (size_t i = 0; i < m_Modules.size(); ++i)
        if (m_Modules[i].description == description)
            return static_cast<int>(i);
    return -1;
}
