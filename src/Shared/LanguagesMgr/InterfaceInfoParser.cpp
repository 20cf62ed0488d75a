#include "Shared/LanguagesMgr/InterfaceInfoParser.h"

#include "Shared/Config/ConfFileParser.h"
#include "Shared/Log/Log.h"

CInterfaceInfoParser::CInterfaceInfoParser(const SAppCompatibility& app, IFileSystem* fs)
    : m_App(app), m_Fs(fs)
{
}

bool CInterfaceInfoParser::Check(const std::u16string& path, int minimumBuild,
                                 std::u16string& description) const
{
    CConfFileParser info(m_Fs);
    if (!info.Load(path))
        return false;
    return Check(info, path, minimumBuild, description);
}

bool CInterfaceInfoParser::Check(const CConfFileParser& info, const std::u16string& fileName,
                                 int minimumBuild, std::u16string& description) const
{
    std::u16string signature;
    int build = 0;
    const bool hasSignature = info.GetString(u"ProjectSignature", signature);
    const bool hasBuild = info.GetInt(u"RequiredAppBuildNumber", build);
    if (!hasSignature || signature != m_App.projectSignature || !hasBuild || build < minimumBuild ||
        build > m_App.buildNumber)
    {
        LogMessage(u"Skipped %s file processing as it contains incompatible build numer %d.", fileName,
                   build);
        return false;
    }
    if (!info.GetString(u"FileDescription", description))
    {
        LogMessage(u"Skipped %s file processing as it has no desctin.", fileName);
        return false;
    }
    return true;
}
