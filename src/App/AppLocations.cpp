#include "App/AppLocations.h"

#include "Shared/Base/File.h"
#include "Shared/Base/Paths.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

#include <cstdlib>

namespace
{
// Data file paths may still carry the separators of the system they were stored on.
std::u16string FileNamePart(const std::u16string& path)
{
    const size_t cut = path.find_last_of(u"\\/:");
    return cut == std::u16string::npos ? path : path.substr(cut + 1);
}

std::u16string WithTrailingSlash(std::u16string folder)
{
    if (!folder.empty() && folder.back() != u'/')
        folder.push_back(u'/');
    return folder;
}
} // namespace

std::u16string CXdgDocumentsFolder::PersonalDocumentsFolder() const
{
    const char* value = std::getenv("XDG_DOCUMENTS_DIR");
    if (value && value[0] == '/')
        return WithTrailingSlash(Utf8ToUtf16(value));
    return HomeFolder() + u"Documents/";
}

CAppLocations::CAppLocations(std::u16string applicationFolder, IFileSystem& fs,
                             const IDocumentsFolder& documents)
    : m_AppFolder(std::move(applicationFolder)), m_Fs(fs), m_Documents(documents)
{
}

bool CAppLocations::IsPortable()
{
    if (!m_Portable)
        m_Portable = m_Fs.Exists(m_AppFolder + kPortableMarkerFileName);
    return *m_Portable;
}

std::u16string CAppLocations::DocumentsFolder()
{
    return IsPortable() ? m_AppFolder : m_Documents.PersonalDocumentsFolder();
}

std::u16string CAppLocations::FolderBesideProgramOr(const std::u16string& perUserFolder)
{
    if (!m_AppFolder.empty() && (IsPortable() || m_Fs.IsWritableFolder(m_AppFolder)))
        return m_AppFolder;
    int cause = 0;
    m_Fs.CreateFolder(perUserFolder, cause);
    return perUserFolder;
}

std::u16string CAppLocations::LogFilePath()
{
    return FolderBesideProgramOr(XdgStateHome() + u"Quillarium/") + kLogFileName;
}

std::u16string CAppLocations::PreferencesFilePath()
{
    return FolderBesideProgramOr(XdgConfigHome() + u"Quillarium/") + kPreferencesFileName;
}

bool CAppLocations::FileExists(const std::u16string& path)
{
    return !path.empty() && (m_Fs.Exists(path) || m_Fs.IsFolder(path));
}

std::u16string CAppLocations::CorrectMovedPath(const std::u16string& path)
{
    if (FileExists(path) || path.size() < 4)
        return path;
    LogMessage(u"Warning: Cannot find file %s - file does not exists by this path.", path);
    if (m_AppFolder.empty())
        return path;
    std::u16string sameOnProgramDrive = path;
    sameOnProgramDrive[0] = m_AppFolder[0];
    if (FileExists(sameOnProgramDrive))
    {
        LogMessage(u"Info: Portable mode correction: %s file is moved to following path - %s.", path,
                   sameOnProgramDrive);
        return sameOnProgramDrive;
    }
    const std::u16string besideProgram = m_AppFolder + FileNamePart(path);
    if (FileExists(besideProgram))
    {
        LogMessage(u"Info: Portable mode correction: %s file is moved to following path - %s.", path,
                   besideProgram);
        return besideProgram;
    }
    return path;
}
