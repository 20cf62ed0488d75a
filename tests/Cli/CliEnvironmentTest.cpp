// quillarium-cli's start-up: it writes to the program's log, reads its preferences without
// writing them back and loads the language module the preferences name.
#include "Cli/CliEnvironment.h"
#include "Cli/CliCommand.h"
#include "Prefs/FontFolders.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/File.h"
#include "Shared/Base/OleDate.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

namespace
{
class CNoFonts : public IFontQuery
{
public:
    bool HasFace(std::u16string_view) const override { return false; }
    std::u16string SystemSansFace() const override { return {}; }
};

std::string ReadBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The log is UTF-16LE; ASCII text is looked for with its zero bytes.
std::string Utf16Le(const std::string& ascii)
{
    std::string bytes;
    for (const char c : ascii)
        bytes += {c, '\0'};
    return bytes;
}

bool FileExists(const std::string& path)
{
    return std::ifstream(path).good();
}
} // namespace

TEST(CliEnvironment, LinesGoToTheProgramLogAndPreferencesStayUnwritten)
{
    CTempFolder app;
    std::ostringstream err;
    {
        CCliEnvironment environment(app.Path16() + u"/", err);
        ASSERT_TRUE(environment.Start()) << err.str();
        std::istringstream in;
        std::ostringstream out;
        EXPECT_EQ(RunCli({"info", app.Path() + "/missing.ddb"}, in, out, err), CliFailure);
    }
    // The data center's message box text comes from the language module, printed, not shown.
    EXPECT_NE(err.str().find("quillarium-cli: "), std::string::npos);
    const std::string log = ReadBytes(app.Path() + "/Quillarium.log");
    EXPECT_NE(log.find(Utf16Le("Error: Cannot load file ")), std::string::npos);
    EXPECT_NE(log.find(Utf16Le("missing.ddb - file does not exists.")), std::string::npos);
    EXPECT_FALSE(FileExists(app.Path() + "/Quillarium.ini"));
    // Without a stored font the default face is chosen from the system's font folders, so the
    // "no fonts" line appears only on a system that has none.
    const bool systemHasFonts =
        !CFontFolderQuery(DiskFileSystem(), CFontFolderQuery::DefaultFolders()).SystemSansFace().empty();
    EXPECT_EQ(log.find(Utf16Le("Cannot find any fonts")) == std::string::npos, systemHasFonts);
}

TEST(CliEnvironment, AMissingLanguageModuleStopsTheTool)
{
    CTempFolder app;
    const std::u16string ini = app.Path16() + u"/Quillarium.ini";
    {
        CNoFonts fonts;
        CPreferences prefs({DiskFileSystem(), SystemClock(), fonts, false, app.Path16() + u"/"});
        prefs.Paths().languagePath = u"Missing.lng";
        ASSERT_TRUE(prefs.Save(ini));
    }
    const std::string before = ReadBytes(app.Path() + "/Quillarium.ini");
    std::ostringstream err;
    {
        CCliEnvironment environment(app.Path16() + u"/", err);
        EXPECT_FALSE(environment.Start());
    }
    EXPECT_NE(err.str().find("Cannot load default language module"), std::string::npos) << err.str();
    EXPECT_NE(err.str().find("Missing.lng"), std::string::npos);
    EXPECT_EQ(ReadBytes(app.Path() + "/Quillarium.ini"), before) << "the tool never rewrites the preferences";
}
