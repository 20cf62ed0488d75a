#include "Shared/Base/Paths.h"

#include "Shared/Base/File.h"
#include "Shared/Base/TextConv.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace
{
std::u16string AsFolder(std::u16string path)
{
    if (!path.empty() && path.back() != u'/')
        path.push_back(u'/');
    return path;
}

// An XDG variable counts only when it holds an absolute path.
std::u16string XdgFolder(const char* variable, std::u16string_view fallbackUnderHome)
{
    const char* value = std::getenv(variable);
    if (value && value[0] == '/')
        return AsFolder(Utf8ToUtf16(value));
    return HomeFolder() + std::u16string(fallbackUnderHome);
}
} // namespace

std::u16string ProgramPath()
{
    std::vector<char> buffer(4096);
    for (;;)
    {
        const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
        if (length < 0)
            return {};
        if (static_cast<size_t>(length) < buffer.size())
            return Utf8ToUtf16(std::string_view(buffer.data(), static_cast<size_t>(length)));
        buffer.resize(buffer.size() * 2);
    }
}

std::u16string ProgramFolder()
{
    return FolderOf(ProgramPath());
}

std::u16string HomeFolder()
{
    const char* home = std::getenv("HOME");
    if (home && *home)
        return AsFolder(Utf8ToUtf16(home));
    if (const passwd* entry = ::getpwuid(::getuid()); entry && entry->pw_dir)
        return AsFolder(Utf8ToUtf16(entry->pw_dir));
    return u"/";
}

std::u16string XdgStateHome()
{
    return XdgFolder("XDG_STATE_HOME", u".local/state/");
}

std::u16string XdgConfigHome()
{
    return XdgFolder("XDG_CONFIG_HOME", u".config/");
}

std::u16string XdgDataHome()
{
    return XdgFolder("XDG_DATA_HOME", u".local/share/");
}
