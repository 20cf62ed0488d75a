#pragma once
// The application's preferences: the shell settings of CPreferencesBase plus the settings of
// the notes document and its tools. Every key, its default and its check is listed once in the
// groups' Visit functions (MajorPrefsGroups.cpp, ProjectPrefsGroups.cpp).
//
// Keys whose defaults and checks are our own choice:
// clang-format off
//
// Key                                          Default                       Check, meaning
// OtherPrefsAutoSaveMinutes                    3                             1..1440, else 3
// AutoClosePasswordProtectedFileMinutes        0                             0 never; 0..1440, else 0
// BackupPrefsBackupInterval                    320                           minutes; 1..527040, else 320
// BackupPrefsDelOldBackupDays                  7                             0..36600, else 7
// BackupPrefsLastBackupDate                    0 (no backup yet)             OLE date; future or NaN: 0
// PwdGenPrefsPdwsNumTogenerate                 1                             clamped to 1..1000
// PwdGenPrefsPwdLen                            10                            clamped to 1..1000
// GlobalSrchText                               empty
// FindReplDlgFindLine, ...ReplaceLine          empty
// GlobalSrchMatchCase, ...WholeWords, ...Bool  false
// FindReplDlgMatchCase                         false
// MainWndTreeWidth                             250                           pixels; 20..10000, else 250
// FolderListCardWidth                          200                           pixels; 40..4000, else 200
// FolderListCardHeight                         150                           pixels; 30..4000, else 150
// MainWndToolbarButtons                        empty (the program's choice)  command names, "," between, "-" a separator
// StartupCheckFileExtAssociations              true
// StartupRunWithOSStart                        false                         applied by COsAutoStart
// InternetIncludeBetaWhenCheck                 false
// RecentFilePath                               documents folder + data file  DefaultDataFileName
// SkinPath                                     "Skins/Default"               relative to the program folder
// SkinThemeName                                empty                         the skin's own default theme
// SoundPath                                    "Sounds/Default"              relative to the program folder
// LanguagePath                                 empty                         none chosen: by user language
// LastAccessedFileOpenPath, ...SavePath        empty
// idGeneratorState, NavigationState            empty                         owners' bytes, base-64
// WindowPlacements                             empty                         layout in WindowPlacements.h
// AIDCounter                                   0                             next alarm ID to hand out
// NCounter, FCounter                           0                             notes, folders created so far
// LastAID                                      0                             last alarm ID that has fired
//
// clang-format on
//
// "Major" groups are the shell's (paths, start-up, tray, internet, recent files, window
// placements); "project-specific" groups are the document's and its tools' (the rest).
// An empty text value is not written, so it reads back as its key's default.
#include "Prefs/PreferencesBase.h"
#include "Prefs/ProjectPrefsGroups.h"

class CPreferences : public CPreferencesBase
{
public:
    // Starts with every value at its default.
    explicit CPreferences(const SPreferencesEnvironment& env);

    SOtherPrefs& Other() { return m_Other; }
    const SOtherPrefs& Other() const { return m_Other; }
    SBackupPrefs& Backup() { return m_Backup; }
    const SBackupPrefs& Backup() const { return m_Backup; }
    SEditorPrefs& Editor() { return m_Editor; }
    const SEditorPrefs& Editor() const { return m_Editor; }
    SSearchPrefs& Search() { return m_Search; }
    const SSearchPrefs& Search() const { return m_Search; }
    SPwdGenPrefs& PwdGen() { return m_PwdGen; }
    const SPwdGenPrefs& PwdGen() const { return m_PwdGen; }
    SLayoutPrefs& Layout() { return m_Layout; }
    const SLayoutPrefs& Layout() const { return m_Layout; }
    SDocumentStatePrefs& DocumentState() { return m_DocumentState; }
    const SDocumentStatePrefs& DocumentState() const { return m_DocumentState; }

protected:
    void VisitProjectPrefs(IPrefsVisitor& visitor) override;

private:
    SOtherPrefs m_Other;
    SBackupPrefs m_Backup;
    SEditorPrefs m_Editor;
    SSearchPrefs m_Search;
    SPwdGenPrefs m_PwdGen;
    SLayoutPrefs m_Layout;
    SDocumentStatePrefs m_DocumentState;
};
