#pragma once
// The preferences store of the application shell. It reads and writes the key=value file
// "Quillarium.ini", keeps the "major" groups (shell settings) itself and leaves the
// "project-specific" groups to the derived class. Each of the two parts is loaded, saved and
// reset on its own: a failure in one is logged and does not stop the other or the program.
#include "Prefs/MajorPrefsGroups.h"
#include "Prefs/PrefsVisitor.h"

#include <string>

class CPreferencesBase
{
public:
    virtual ~CPreferencesBase() = default;
    CPreferencesBase(const CPreferencesBase&) = delete;
    CPreferencesBase& operator=(const CPreferencesBase&) = delete;

    // Reads the file and sets every value: from the file when its key is present and its value
    // passes the key's check, otherwise the default. False when the file could not be read (all
    // values are then defaults); a missing file is a fresh installation and is not logged as
    // an error.
    bool Load(const std::u16string& path);
    // Rewrites the whole file from the current values.
    bool Save(const std::u16string& path);
    // Sets every value to its default.
    void Reset();

    const SPreferencesEnvironment& Environment() const { return m_Env; }

    SPathPrefs& Paths() { return m_Paths; }
    const SPathPrefs& Paths() const { return m_Paths; }
    SStartupPrefs& Startup() { return m_Startup; }
    const SStartupPrefs& Startup() const { return m_Startup; }
    SSysTrayPrefs& SysTray() { return m_SysTray; }
    const SSysTrayPrefs& SysTray() const { return m_SysTray; }
    SInternetPrefs& Internet() { return m_Internet; }
    const SInternetPrefs& Internet() const { return m_Internet; }
    SShellStatePrefs& ShellState() { return m_ShellState; }
    const SShellStatePrefs& ShellState() const { return m_ShellState; }

protected:
    // The derived class must call Reset() at the end of its constructor: the project-specific
    // groups do not exist yet while this constructor runs.
    explicit CPreferencesBase(const SPreferencesEnvironment& env) : m_Env(env) {}

    virtual void VisitMajorPrefs(IPrefsVisitor& visitor);
    virtual void VisitProjectPrefs(IPrefsVisitor& visitor) = 0;

private:
    enum class EPart
    {
        Major,
        ProjectSpecific
    };

    // Runs one part under a guard; false after logging `failureLine` when it threw.
    bool VisitGuarded(EPart part, IPrefsVisitor& visitor, const char16_t* failureLine);
    void LoadPart(EPart part, IPrefsVisitor& loader, const char16_t* loadFailure,
                  const char16_t* resetFailure);

    SPreferencesEnvironment m_Env;
    SPathPrefs m_Paths;
    SStartupPrefs m_Startup;
    SSysTrayPrefs m_SysTray;
    SInternetPrefs m_Internet;
    SShellStatePrefs m_ShellState;
};
