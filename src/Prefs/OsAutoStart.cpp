#include "Prefs/OsAutoStart.h"

#include "Shared/Base/File.h"
#include "Shared/Base/Paths.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

namespace
{
constexpr char16_t EntryFileName[] = u"quillarium.desktop";

bool IsAbsoluteFolder(std::u16string_view folder)
{
    return !folder.empty() && folder.front() == u'/';
}

// Inside a quoted Exec argument '"', '`', '$' and '\' take a backslash; the string escaping of
// the value then doubles every backslash (so '$' becomes "\\$" and '\' four backslashes), and
// '%' is doubled because it starts field codes.
bool QuoteExecArgument(std::u16string_view argument, std::u16string& quoted)
{
    quoted = u"\"";
    for (char16_t ch : argument)
    {
        if (ch < 0x20 || ch == 0x7F)
            return false;
        if (ch == u'"' || ch == u'`' || ch == u'$')
            quoted += u"\\\\";
        else if (ch == u'\\')
            quoted += u"\\\\\\";
        else if (ch == u'%')
            quoted += u'%';
        quoted += ch;
    }
    quoted += u'"';
    return true;
}
} // namespace

bool MakeAutoStartEntry(std::u16string_view executablePath, std::string& entry)
{
    std::u16string program;
    if (!QuoteExecArgument(executablePath, program))
        return false;
    entry = "[Desktop Entry]\n"
            "Type=Application\n"
            "Name=Quillarium Organizer\n"
            "Exec=" +
            Utf16ToUtf8(program) +
            " -autostartup\n"
            "Terminal=false\n"
            "X-GNOME-Autostart-enabled=true\n";
    return true;
}

COsAutoStart::COsAutoStart(IFileSystem& fs, std::u16string autostartFolder)
    : m_Fs(fs), m_Folder(std::move(autostartFolder))
{
}

std::u16string COsAutoStart::DefaultFolder()
{
    return XdgConfigHome() + u"autostart/";
}

std::u16string COsAutoStart::EntryPath() const
{
    return JoinPath(m_Folder, EntryFileName);
}

bool COsAutoStart::IsRegistered() const
{
    return m_Fs.Exists(EntryPath());
}

bool COsAutoStart::Register(std::u16string_view executablePath)
{
    int cause = 0;
    if (!IsAbsoluteFolder(m_Folder) || (!m_Fs.IsFolder(m_Folder) && !m_Fs.CreateFolder(m_Folder, cause)))
    {
        LogMessage(u"Error: Cannot open windows autorun registry key");
        return false;
    }
    std::string entry;
    if (!MakeAutoStartEntry(executablePath, entry) || !WriteWholeFile(m_Fs, EntryPath(), entry, cause))
    {
        LogMessage(u"Error: Cannot register autostartup registry entry");
        return false;
    }
    return true;
}

bool COsAutoStart::Unregister()
{
    int cause = 0;
    if (!IsRegistered() || m_Fs.Delete(EntryPath(), cause))
        return true;
    LogMessage(u"Error: Cannot register autostartup registry entry");
    return false;
}

bool COsAutoStart::Apply(bool runWithOsStart, std::u16string_view executablePath)
{
    return runWithOsStart ? Register(executablePath) : Unregister();
}
