#include "Prefs/OsAutoStart.h"

#include "PrefsTestSupport.h"
#include "Shared/Base/MemFileSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

namespace
{
constexpr const char16_t* Folder = u"/home/u/.config/autostart/";
constexpr const char16_t* Entry = u"/home/u/.config/autostart/quillarium.desktop";

// Sets an environment variable for one test and puts the old value back.
class CEnvVar
{
public:
    CEnvVar(const char* name, const char* value) : m_Name(name)
    {
        if (const char* old = std::getenv(name))
            m_Old = old;
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~CEnvVar()
    {
        if (m_Old)
            setenv(m_Name, m_Old->c_str(), 1);
        else
            unsetenv(m_Name);
    }

private:
    const char* m_Name;
    std::optional<std::string> m_Old;
};
} // namespace

TEST(OsAutoStart, EntryTextQuotesTheProgramAndPassesTheFlag)
{
    std::string entry;
    ASSERT_TRUE(MakeAutoStartEntry(u"/opt/Quill arium/quillarium", entry));
    EXPECT_EQ(entry, "[Desktop Entry]\n"
                     "Type=Application\n"
                     "Name=Quillarium Organizer\n"
                     "Exec=\"/opt/Quill arium/quillarium\" -autostartup\n"
                     "Terminal=false\n"
                     "X-GNOME-Autostart-enabled=true\n");
}

TEST(OsAutoStart, ReservedCharactersAreEscapedTwiceAndControlCharactersRefused)
{
    std::string entry;
    ASSERT_TRUE(MakeAutoStartEntry(u"/a\"b$c\\d%e`f\u00E9", entry));
    EXPECT_NE(entry.find("Exec=\"/a\\\\\"b\\\\$c\\\\\\\\d%%e\\\\`f\xC3\xA9\" -autostartup\n"),
              std::string::npos);
    EXPECT_FALSE(MakeAutoStartEntry(u"/bin/x\ny", entry));
    EXPECT_FALSE(MakeAutoStartEntry(u"/bin/x\ty", entry));
}

TEST(OsAutoStart, RegisterWritesTheEntryAndUnregisterRemovesIt)
{
    CMemFileSystem fs;
    COsAutoStart autostart(fs, Folder);
    EXPECT_EQ(autostart.EntryPath(), Entry);
    EXPECT_FALSE(autostart.IsRegistered());
    EXPECT_TRUE(autostart.Unregister()); // nothing to remove is no failure

    ASSERT_TRUE(autostart.Apply(true, u"/usr/bin/quillarium"));
    EXPECT_TRUE(fs.IsFolder(Folder));
    EXPECT_NE(fs.Bytes(Entry).find("Exec=\"/usr/bin/quillarium\" -autostartup\n"), std::string::npos);

    ASSERT_TRUE(autostart.Apply(true, u"/opt/q")); // registering again rewrites the entry
    EXPECT_NE(fs.Bytes(Entry).find("Exec=\"/opt/q\" -autostartup\n"), std::string::npos);
    EXPECT_EQ(fs.Bytes(Entry).find("/usr/bin"), std::string::npos);

    ASSERT_TRUE(autostart.Apply(false, u"/opt/q"));
    EXPECT_FALSE(autostart.IsRegistered());
}

TEST(OsAutoStart, FailuresLogTheDesignedLines)
{
    CLogCapture log;
    {
        CMemFileSystem fs;
        fs.Bytes(u"/home/u/.config/autostart") = "a file in the folder's place";
        EXPECT_FALSE(COsAutoStart(fs, Folder).Register(u"/usr/bin/quillarium"));
        EXPECT_FALSE(COsAutoStart(fs, u"relative/autostart/").Register(u"/usr/bin/quillarium"));
    }
    {
        CMemFileSystem fs;
        COsAutoStart autostart(fs, Folder);
        EXPECT_FALSE(autostart.Register(u"/usr/bin/quill\narium"));
        fs.Faults().failWriteAfter = 0;
        EXPECT_FALSE(autostart.Register(u"/usr/bin/quillarium"));
    }
    EXPECT_EQ(log.Messages(),
              (std::vector<std::u16string>{u"Error: Cannot open windows autorun registry key",
                                           u"Error: Cannot open windows autorun registry key",
                                           u"Error: Cannot register autostartup registry entry",
                                           u"Error: Cannot register autostartup registry entry"}));
}

TEST(OsAutoStart, DefaultFolderHonoursXdgConfigHome)
{
    {
        CEnvVar config("XDG_CONFIG_HOME", "/tmp/cfg");
        EXPECT_EQ(COsAutoStart::DefaultFolder(), u"/tmp/cfg/autostart/");
    }
    {
        CEnvVar config("XDG_CONFIG_HOME", nullptr);
        CEnvVar home("HOME", "/home/someone");
        EXPECT_EQ(COsAutoStart::DefaultFolder(), u"/home/someone/.config/autostart/");
    }
}
