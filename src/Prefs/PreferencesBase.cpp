#include "Prefs/PreferencesBase.h"

#include "Prefs/PrefsVisitors.h"
#include "Shared/Base/File.h"
#include "Shared/Config/ConfFileParser.h"
#include "Shared/Log/Log.h"

namespace
{
constexpr const char16_t* MajorLoadFailure = u"Error: General exception caught on loading major preferences";
constexpr const char16_t* MajorSaveFailure = u"Error: General exception caught on saving major preferences";
constexpr const char16_t* MajorResetFailure =
    u"Error: General exception caught on reseting major preferences";
constexpr const char16_t* ProjectLoadFailure =
    u"Error: General exception caught on loading project-specific preferences";
constexpr const char16_t* ProjectSaveFailure =
    u"Error: General exception caught on saving project-specific preferences";
constexpr const char16_t* ProjectResetFailure =
    u"Error: General exception caught on reseting project-specific preferences";
} // namespace

bool CPreferencesBase::Load(const std::u16string& path)
{
    CConfFileParser parser(&m_Env.fileSystem);
    bool read = false;
    if (m_Env.fileSystem.Exists(path))
        read = parser.Load(path);
    else
        LogMessage(u"Info: Preferences file %s not found, default preferences are used.", path);
    CPrefsLoader loader(parser, m_Env);
    LoadPart(EPart::Major, loader, MajorLoadFailure, MajorResetFailure);
    LoadPart(EPart::ProjectSpecific, loader, ProjectLoadFailure, ProjectResetFailure);
    return read;
}

bool CPreferencesBase::Save(const std::u16string& path)
{
    CConfFileParser parser(&m_Env.fileSystem);
    parser.SetPath(path);
    CPrefsSaver saver(parser, m_Env);
    VisitGuarded(EPart::Major, saver, MajorSaveFailure);
    VisitGuarded(EPart::ProjectSpecific, saver, ProjectSaveFailure);
    return parser.Save();
}

void CPreferencesBase::Reset()
{
    CPrefsResetter resetter(m_Env);
    VisitGuarded(EPart::Major, resetter, MajorResetFailure);
    VisitGuarded(EPart::ProjectSpecific, resetter, ProjectResetFailure);
}

void CPreferencesBase::VisitMajorPrefs(IPrefsVisitor& visitor)
{
    m_Paths.Visit(visitor);
    m_Startup.Visit(visitor);
    m_SysTray.Visit(visitor);
    m_Internet.Visit(visitor);
    m_ShellState.Visit(visitor);
}

bool CPreferencesBase::VisitGuarded(EPart part, IPrefsVisitor& visitor, const char16_t* failureLine)
{
    try
    {
        if (part == EPart::Major)
            VisitMajorPrefs(visitor);
        else
            VisitProjectPrefs(visitor);
        return true;
    }
    catch (...)
    {
        LogMessage(failureLine);
        return false;
    }
}

// A part that failed half-way would hold a mix of stored values and values from before the
// load, so it falls back to its defaults as a whole.
void CPreferencesBase::LoadPart(EPart part, IPrefsVisitor& loader, const char16_t* loadFailure,
                                const char16_t* resetFailure)
{
    if (VisitGuarded(part, loader, loadFailure))
        return;
    CPrefsResetter resetter(m_Env);
    VisitGuarded(part, resetter, resetFailure);
}
