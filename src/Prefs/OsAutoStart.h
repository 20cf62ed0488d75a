#pragma once
// Starting with the operating system (the preference "StartupRunWithOSStart"). On Linux the
// program registers itself with an XDG autostart entry, "quillarium.desktop" in the autostart
// folder of the user's configuration folder, whose command passes "-autostartup" so that the
// program can start hidden in the tray.
#include <string>
#include <string_view>

class IFileSystem;

class COsAutoStart
{
public:
    // `autostartFolder` holds the entry; DefaultFolder() for the real one.
    COsAutoStart(IFileSystem& fs, std::u16string autostartFolder);

    // $XDG_CONFIG_HOME/autostart/, or ~/.config/autostart/ when it is unset.
    static std::u16string DefaultFolder();

    // Writes (or rewrites) the entry that starts `executablePath` with "-autostartup".
    // Logs "Error: Cannot open windows autorun registry key" when the folder cannot be made and
    // "Error: Cannot register autostartup registry entry" when the entry cannot be written.
    bool Register(std::u16string_view executablePath);
    // Removes the entry; true when there is none afterwards.
    bool Unregister();
    // Register or Unregister after the preference.
    bool Apply(bool runWithOsStart, std::u16string_view executablePath);

    bool IsRegistered() const;
    std::u16string EntryPath() const;

private:
    IFileSystem& m_Fs;
    std::u16string m_Folder;
};

// The text of the desktop entry (UTF-8 once written). The program path is quoted in the Exec
// key as desktop entries require; false when it holds characters an entry cannot carry
// (line breaks and other control characters).
bool MakeAutoStartEntry(std::u16string_view executablePath, std::string& entry);
