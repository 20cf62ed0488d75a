#pragma once
// The installed fonts of a Linux system as a shell without a font toolkit sees them (the
// command-line tool): the folders fontconfig reads by default are searched for font files. The
// files do not say which families they hold without parsing them, so no named face is claimed;
// when there is any font file, the system's default sans face is fontconfig's generic family
// "Sans Serif", which every fontconfig-based text layer resolves to the configured default.
#include "Prefs/FontQuery.h"

#include <string>
#include <vector>

class IFileSystem;

class CFontFolderQuery : public IFontQuery
{
public:
    static constexpr char16_t GenericSansFace[] = u"Sans Serif";

    CFontFolderQuery(IFileSystem& fs, std::vector<std::u16string> folders);

    // $XDG_DATA_HOME/fonts/, ~/.fonts/, /usr/local/share/fonts/ and /usr/share/fonts/.
    static std::vector<std::u16string> DefaultFolders();

    bool HasFace(std::u16string_view face) const override;
    // GenericSansFace when a font file lies in one of the folders or below them, else empty.
    std::u16string SystemSansFace() const override;

private:
    bool HoldsFontFile(const std::u16string& folder, int depth) const;

    IFileSystem& m_Fs;
    std::vector<std::u16string> m_Folders;
};
