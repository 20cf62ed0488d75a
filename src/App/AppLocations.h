#pragma once
// Where this run of the program keeps its files: the program folder, portable mode, the user's
// documents folder, the log and the preferences file, and the correction of data file paths
// that went stale because the program was moved to another drive or folder.
#include <optional>
#include <string>

class IFileSystem;

// The user's personal documents folder. The GUI answers it from its toolkit; CXdgDocumentsFolder
// is the answer without one.
class IDocumentsFolder
{
public:
    virtual ~IDocumentsFolder() = default;
    // A folder path ending with '/'.
    virtual std::u16string PersonalDocumentsFolder() const = 0;
};

// $XDG_DOCUMENTS_DIR when it holds an absolute path, otherwise ~/Documents/.
class CXdgDocumentsFolder : public IDocumentsFolder
{
public:
    std::u16string PersonalDocumentsFolder() const override;
};

inline constexpr char16_t kPortableMarkerFileName[] = u"Portable.sig";
inline constexpr char16_t kLogFileName[] = u"Quillarium.log";
inline constexpr char16_t kPreferencesFileName[] = u"Quillarium.ini";

class CAppLocations
{
public:
    // `applicationFolder` ends with '/' (ProgramFolder() for the running executable).
    CAppLocations(std::u16string applicationFolder, IFileSystem& fs, const IDocumentsFolder& documents);

    const std::u16string& ApplicationFolder() const { return m_AppFolder; }
    // Whether "Portable.sig" lies in the application folder. Asked once: creating or removing
    // the marker while the program runs takes effect at the next start.
    bool IsPortable();
    // The application folder when portable, otherwise the user's documents folder.
    std::u16string DocumentsFolder();

    // "Quillarium.log" and "Quillarium.ini" stay beside the program when it is portable or its
    // folder is writable; otherwise they go to the per-user state and configuration folders
    // ($XDG_STATE_HOME/Quillarium/, $XDG_CONFIG_HOME/Quillarium/), created when missing.
    std::u16string LogFilePath();
    std::u16string PreferencesFilePath();

    // A file exists when it or a folder of that name is there.
    bool FileExists(const std::u16string& path);
    // `path` itself when it exists; else the same path on the application folder's drive, or
    // the file name in the application folder, whichever exists first; else `path`.
    std::u16string CorrectMovedPath(const std::u16string& path);

private:
    std::u16string FolderBesideProgramOr(const std::u16string& perUserFolder);

    std::u16string m_AppFolder;
    IFileSystem& m_Fs;
    const IDocumentsFolder& m_Documents;
    std::optional<bool> m_Portable;
};
