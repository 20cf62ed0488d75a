#include "Shared/LanguagesMgr/LanguageModule.h"

#include "Shared/Base/File.h"
#include "Shared/LanguagesMgr/LanguageLineRules.h"
#include "Shared/Log/Log.h"

#include <algorithm>

namespace
{
// Sorted lines: every line that starts with `prefix` follows the lower bound of the prefix.
std::vector<std::u16string>::iterator FindByPrefix(std::vector<std::u16string>& lines,
                                                   std::u16string_view prefix)
{
    auto found = std::lower_bound(lines.begin(), lines.end(), prefix,
                                  [](const std::u16string& line, std::u16string_view p) { return line < p; });
    return found != lines.end() && found->starts_with(prefix) ? found : lines.end();
}

std::vector<std::u16string> SplitNonEmptyLines(std::u16string_view text)
{
    std::vector<std::u16string> lines;
    lines.reserve(CLanguageModule::kCapacityStep);
    size_t start = 0;
    while (start < text.size())
    {
        size_t end = text.find(u"\r\n", start);
        if (end == std::u16string_view::npos)
            end = text.size();
        if (end > start)
            lines.emplace_back(text.substr(start, end - start));
        start = end + 2;
    }
    return lines;
}

// Leaves the flag set for exactly as long as a load runs, also on early returns.
class CLoadingFlag
{
public:
    explicit CLoadingFlag(bool& flag) : m_Flag(flag) { m_Flag = true; }
    ~CLoadingFlag() { m_Flag = false; }
    CLoadingFlag(const CLoadingFlag&) = delete;
    CLoadingFlag& operator=(const CLoadingFlag&) = delete;

private:
    bool& m_Flag;
};
} // namespace

CLanguageModule::CLanguageModule(IFileSystem* fs) : m_Fs(fs ? *fs : DiskFileSystem()) {}

bool CLanguageModule::LoadModule(const std::u16string& path, const SAppCompatibility& app,
                                 std::span<const std::u16string_view> englishLines)
{
    CLoadingFlag loading(m_Loading);
    const std::u16string fileName = FileNameOf(path);
    std::string bytes;
    int cause = 0;
    if (!ReadWholeFile(m_Fs, path, bytes, cause))
    {
        LogMessage(u"Error: Cannot read language module %s, cause - %d", path, cause);
        return false;
    }
    const std::u16string text = DecodeLanguageModuleText(bytes);
    std::u16string description;
    if (!CheckLanguageModuleHeader(text, fileName, app, description))
        return false;
    return LoadLines(fileName, text, englishLines);
}

bool CLanguageModule::LoadLines(const std::u16string& fileName, const std::u16string& text,
                                std::span<const std::u16string_view> englishLines)
{
    std::vector<std::u16string> lines = SplitNonEmptyLines(text);
    if (lines.empty())
    {
        LogMessage(u"Error: Language module %s has no strings at all", fileName);
        return false;
    }
    for (std::u16string& line : lines)
        line = ApplyCharacterReplacements(line);
    std::sort(lines.begin(), lines.end());
    RepairAgainstEnglish(lines, fileName, englishLines);
    m_Name = fileName;
    m_Lines = std::move(lines);
    return true;
}

void CLanguageModule::LoadBuiltIn(const std::u16string& name,
                                  std::span<const std::u16string_view> englishLines)
{
    CLoadingFlag loading(m_Loading);
    std::vector<std::u16string> lines;
    lines.reserve(std::max(kCapacityStep, englishLines.size()));
    for (std::u16string_view line : englishLines)
        lines.push_back(ApplyCharacterReplacements(line));
    std::sort(lines.begin(), lines.end());
    m_Name = name;
    m_Lines = std::move(lines);
}

void CLanguageModule::RepairAgainstEnglish(std::vector<std::u16string>& lines,
                                           const std::u16string& moduleName,
                                           std::span<const std::u16string_view> englishLines) const
{
    bool replaced = false;
    for (auto english = englishLines.rbegin(); english != englishLines.rend(); ++english)
    {
        const std::u16string_view prefix = KeyPrefixOf(*english);
        if (prefix.empty())
            continue;
        const std::u16string englishLine = ApplyCharacterReplacements(*english);
        auto found = FindByPrefix(lines, prefix);
        if (found == lines.end())
        {
            lines.insert(std::lower_bound(lines.begin(), lines.end(), englishLine), englishLine);
            LogMessage(u"Warning: String %s is missing in language module %s", englishLine, moduleName);
            continue;
        }
        const std::u16string englishMarkings = ComputeMarkings(englishLine);
        const std::u16string localizedMarkings = ComputeMarkings(*found);
        if (!englishMarkings.empty() && englishMarkings != localizedMarkings)
        {
            LogMessage(
                u"Warning: String %s has incorrect format. Will be used English version of this string. "
                u"Language module - %s. Default markings - %s, localized markings - %s",
                *found, moduleName, englishMarkings, localizedMarkings);
            *found = englishLine;
            replaced = true;
        }
    }
    // A replaced line keeps its key, but a module holding the key twice may now be out of order.
    if (replaced)
        std::sort(lines.begin(), lines.end());
}

bool CLanguageModule::FindString(std::u16string_view key, std::u16string& text) const
{
    std::u16string prefix(key);
    prefix += u'=';
    auto found = std::lower_bound(m_Lines.begin(), m_Lines.end(), prefix);
    if (found == m_Lines.end() || !found->starts_with(prefix))
        return false;
    text = found->substr(prefix.size());
    return true;
}

std::u16string CLanguageModule::GetString(std::u16string_view key) const
{
    std::u16string text;
    if (FindString(key, text))
        return text;
    LogMessage(u"Error: Cannot find resource %s in %s language module.", key,
               m_Loading ? std::u16string(u"Unknown - data load is in progress") : m_Name);
    return {};
}
