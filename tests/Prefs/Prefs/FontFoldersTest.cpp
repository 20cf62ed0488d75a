// The installed fonts as a shell without a font toolkit finds them: font files anywhere below the
// font folders give the generic sans face, and only a system without any makes the default font
// choice log that there are no fonts.
#include "Prefs/FontFolders.h"

#include "PrefsTestSupport.h"

#include <gtest/gtest.h>

namespace
{
class FontFolders : public ::testing::Test
{
protected:
    void AddFolder(const std::u16string& folder)
    {
        int cause = 0;
        ASSERT_TRUE(fs.CreateFolder(folder, cause));
    }
    // The face the default font choice makes, and the lines it logged.
    std::u16string Choose(std::vector<std::u16string>& lines)
    {
        CLogCapture log;
        const CFontFolderQuery query(fs, {u"/home/u/.local/share/fonts/", u"/usr/share/fonts/"});
        std::u16string face = ChooseDefaultFontFace(query);
        lines = log.Messages();
        return face;
    }

    CMemFileSystem fs;
};
} // namespace

TEST_F(FontFolders, FontFileInANestedFolderGivesTheGenericSansFace)
{
    AddFolder(u"/usr/share/fonts/truetype/dejavu/");
    fs.Bytes(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf") = "font";
    std::vector<std::u16string> lines;
    EXPECT_EQ(Choose(lines), u"Sans Serif");
    EXPECT_TRUE(lines.empty());
}

TEST_F(FontFolders, EveryCommonFontFormatCountsInAnyLetterCase)
{
    AddFolder(u"/home/u/.local/share/fonts/");
    for (const char16_t* name : {u"a.TTF", u"b.otf", u"c.ttc", u"d.pfb", u"e.pcf.gz", u"f.woff2"})
    {
        const std::u16string path = std::u16string(u"/home/u/.local/share/fonts/") + name;
        fs.Bytes(path) = "font";
        std::vector<std::u16string> lines;
        EXPECT_EQ(Choose(lines), u"Sans Serif") << Utf16ToUtf8(name);
        int cause = 0;
        ASSERT_TRUE(fs.Delete(path, cause));
    }
}

TEST_F(FontFolders, NoFontFilesMeansNoFontsAndTheDesignedLine)
{
    AddFolder(u"/usr/share/fonts/X11/misc/");
    fs.Bytes(u"/usr/share/fonts/X11/misc/fonts.dir") = "0";
    fs.Bytes(u"/usr/share/fonts/.uuid") = "id";
    fs.Bytes(u"/usr/share/fonts.ttf") = "beside the folder, not in it";
    std::vector<std::u16string> lines;
    EXPECT_EQ(Choose(lines), u"");
    EXPECT_EQ(lines, std::vector<std::u16string>{u"Error: Cannot find any fonts on this system!"});
}

TEST_F(FontFolders, NamedFacesAreNeverClaimed)
{
    AddFolder(u"/usr/share/fonts/");
    fs.Bytes(u"/usr/share/fonts/Tahoma.ttf") = "font";
    const CFontFolderQuery query(fs, {u"/usr/share/fonts/"});
    EXPECT_FALSE(query.HasFace(u"Tahoma"));
    EXPECT_EQ(query.SystemSansFace(), u"Sans Serif");
}

TEST(FontFolderDefaults, FontconfigsUserAndSystemFolders)
{
    const std::vector<std::u16string> folders = CFontFolderQuery::DefaultFolders();
    ASSERT_EQ(folders.size(), 4u);
    EXPECT_EQ(folders[2], u"/usr/local/share/fonts/");
    EXPECT_EQ(folders[3], u"/usr/share/fonts/");
}
