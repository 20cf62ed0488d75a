#pragma once
// One loaded language module: its "KEY=Text" lines sorted for binary search, repaired against
// the application's built-in English lines so that every key the application asks for is there
// and every text keeps the format ("%" conversions, "^" tags, "|", line feeds, tabs) that its
// caller relies on.
#include "Shared/LanguagesMgr/LanguageModuleHeader.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

class IFileSystem;

class CLanguageModule
{
public:
    static constexpr size_t kCapacityStep = 5000;

    // Without a file system the disk is used.
    explicit CLanguageModule(IFileSystem* fs = nullptr);

    // Loads the module file at `path`, named after its file name. On failure (one log line)
    // the module keeps what it held before.
    bool LoadModule(const std::u16string& path, const SAppCompatibility& app,
                    std::span<const std::u16string_view> englishLines);
    // The built-in English module, for when no module file is chosen.
    void LoadBuiltIn(const std::u16string& name, std::span<const std::u16string_view> englishLines);

    // The text of `key`; empty, with a log line, when the module has no such key.
    std::u16string GetString(std::u16string_view key) const;
    // As GetString, without the log line; false when missing.
    bool FindString(std::u16string_view key, std::u16string& text) const;

    const std::u16string& Name() const { return m_Name; }
    const std::vector<std::u16string>& Lines() const { return m_Lines; }

private:
    bool LoadLines(const std::u16string& fileName, const std::u16string& text,
                   std::span<const std::u16string_view> englishLines);
    void RepairAgainstEnglish(std::vector<std::u16string>& lines, const std::u16string& moduleName,
                              std::span<const std::u16string_view> englishLines) const;

    IFileSystem& m_Fs;
    std::u16string m_Name;
    std::vector<std::u16string> m_Lines;
    bool m_Loading = false;
};
