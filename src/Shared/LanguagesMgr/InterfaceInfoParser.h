#pragma once
// The compatibility check of skin and sound scheme descriptions ("SkinInfo.ini",
// "SoundsInfo.ini"). Unlike language modules these accept a range of builds: from the minimum
// the caller gives up to this application's build.
#include "Shared/LanguagesMgr/LanguageModuleHeader.h"

#include <string>

class CConfFileParser;
class IFileSystem;

class CInterfaceInfoParser
{
public:
    // Without a file system the disk is used.
    explicit CInterfaceInfoParser(const SAppCompatibility& app, IFileSystem* fs = nullptr);

    // Reads the file at `path` and checks it; the description is handed back on success.
    bool Check(const std::u16string& path, int minimumBuild, std::u16string& description) const;
    // The same check on a file already read.
    bool Check(const CConfFileParser& info, const std::u16string& fileName, int minimumBuild,
               std::u16string& description) const;

private:
    SAppCompatibility m_App;
    IFileSystem* m_Fs;
};
