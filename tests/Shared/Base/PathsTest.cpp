#include "Shared/Base/Paths.h"
#include "Shared/Base/File.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace
{
// Sets an environment variable for one test and puts the old value back.
class CEnvOverride
{
public:
    CEnvOverride(const char* name, const char* value) : m_Name(name)
    {
        if (const char* old = std::getenv(name))
            m_Old = old;
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~CEnvOverride()
    {
        if (m_Old)
            setenv(m_Name.c_str(), m_Old->c_str(), 1);
        else
            unsetenv(m_Name.c_str());
    }

private:
    std::string m_Name;
    std::optional<std::string> m_Old;
};
} // namespace

TEST(Paths, ProgramFolderHoldsThisTestProgram)
{
    const std::u16string folder = ProgramFolder();
    ASSERT_FALSE(folder.empty());
    EXPECT_EQ(u'/', folder.front());
    EXPECT_EQ(u'/', folder.back());
    EXPECT_TRUE(DiskFileSystem().Exists(folder + u"test_Shared_Base"));
    EXPECT_EQ(ProgramPath(), folder + u"test_Shared_Base");
}

TEST(Paths, XdgFoldersUseAbsoluteVariablesOrFallBackUnderHome)
{
    CEnvOverride home("HOME", "/home/tester");
    {
        CEnvOverride state("XDG_STATE_HOME", "/var/state");
        CEnvOverride config("XDG_CONFIG_HOME", "/etc/cfg/");
        CEnvOverride data("XDG_DATA_HOME", "/srv/data");
        EXPECT_EQ(u"/var/state/", XdgStateHome());
        EXPECT_EQ(u"/etc/cfg/", XdgConfigHome());
        EXPECT_EQ(u"/srv/data/", XdgDataHome());
    }
    {
        CEnvOverride state("XDG_STATE_HOME", "relative/state");
        CEnvOverride config("XDG_CONFIG_HOME", nullptr);
        CEnvOverride data("XDG_DATA_HOME", "share");
        EXPECT_EQ(u"/home/tester/", HomeFolder());
        EXPECT_EQ(u"/home/tester/.local/share/", XdgDataHome());
        EXPECT_EQ(u"/home/tester/.local/state/", XdgStateHome());
        EXPECT_EQ(u"/home/tester/.config/", XdgConfigHome());
    }
}
