#pragma once
// The list of language modules the user can choose from: the built-in English module first,
// then every "*.lng" file of the languages folder whose header fits this build.
#include "Shared/LanguagesMgr/LanguageModuleHeader.h"

#include <string>
#include <vector>

class IFileSystem;

struct SLanguageModuleInfo
{
    std::u16string fileName; // empty for the built-in module
    std::u16string description;
};

class CLanguagesMgr
{
public:
    // Searches `languagesFolder` at once; without a file system the disk is used.
    CLanguagesMgr(const std::u16string& languagesFolder, const SAppCompatibility& app,
                  const std::u16string& builtInDescription, IFileSystem* fs = nullptr);

    const std::vector<SLanguageModuleInfo>& Modules() const { return m_Modules; }
    // Index of the module with this description, or -1.
    int FindByDescription(const std::u16string& description) const;

private:
    void SearchFolder(const std::u16string& languagesFolder, const SAppCompatibility& app, IFileSystem& fs);

    std::vector<SLanguageModuleInfo> m_Modules;
};
