#include "Prefs/FontFolders.h"

#include "Shared/Base/File.h"
#include "Shared/Base/Paths.h"

#include <array>

namespace
{
// Font folders are sorted into a few levels (/usr/share/fonts/truetype/dejavu/); the limit also
// ends a walk that a symbolic link has turned into a loop.
constexpr int MaxFolderDepth = 6;

constexpr std::array<std::u16string_view, 10> FontFileEndings = {
    u".ttf", u".otf", u".ttc", u".otc", u".pfb", u".pfa", u".pcf", u".pcf.gz", u".woff", u".woff2"};

char16_t AsciiLower(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? char16_t(unit - u'A' + u'a') : unit;
}

bool EndsWithIgnoringCase(std::u16string_view name, std::u16string_view ending)
{
    if (name.size() < ending.size())
        return false;
    const std::u16string_view tail = name.substr(name.size() - ending.size());
    for (size_t i = 0; i < ending.size(); ++i)
    {
        if (AsciiLower(tail[i]) != ending[i])
            return false;
    }
    return true;
}

bool IsFontFileName(std::u16string_view name)
{
    for (std::u16string_view ending : FontFileEndings)
    {
        if (EndsWithIgnoringCase(name, ending))
            return true;
    }
    return false;
}
} // namespace

CFontFolderQuery::CFontFolderQuery(IFileSystem& fs, std::vector<std::u16string> folders)
    : m_Fs(fs), m_Folders(std::move(folders))
{
}

std::vector<std::u16string> CFontFolderQuery::DefaultFolders()
{
    return {XdgDataHome() + u"fonts/", HomeFolder() + u".fonts/", u"/usr/local/share/fonts/",
            u"/usr/share/fonts/"};
}

bool CFontFolderQuery::HasFace(std::u16string_view) const
{
    return false;
}

std::u16string CFontFolderQuery::SystemSansFace() const
{
    for (const std::u16string& folder : m_Folders)
    {
        if (HoldsFontFile(folder, 0))
            return GenericSansFace;
    }
    return {};
}

bool CFontFolderQuery::HoldsFontFile(const std::u16string& folder, int depth) const
{
    if (depth > MaxFolderDepth || !m_Fs.IsFolder(folder))
        return false;
    const std::vector<SFolderEntry> entries = m_Fs.ListFolder(folder, u"*");
    for (const SFolderEntry& entry : entries)
    {
        if (!entry.isFolder && IsFontFileName(entry.name))
            return true;
    }
    for (const SFolderEntry& entry : entries)
    {
        if (entry.isFolder && HoldsFontFile(JoinPath(folder, entry.name) + u"/", depth + 1))
            return true;
    }
    return false;
}
