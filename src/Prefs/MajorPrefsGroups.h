#pragma once
// The "major" preference groups: settings of the application shell that do not depend on the
// notes document (folders of skins, sounds and languages, start-up and tray behaviour, update
// checks, the recently opened files and the saved window positions).
#include "Prefs/PrefsVisitor.h"

#include <string>

struct SPathPrefs
{
    std::u16string skinPath;      // "SkinPath": skin folder, relative to the program folder
    std::u16string skinThemeName; // "SkinThemeName": empty selects the skin's own default theme
    std::u16string soundPath;     // "SoundPath": sound scheme folder, relative to the program folder
    std::u16string languagePath;  // "LanguagePath": empty until the user picks a module
    std::u16string lastAccessedFileOpenPath;
    std::u16string lastAccessedFileSavePath;

    void Visit(IPrefsVisitor& v);
};

struct SStartupPrefs
{
    bool hideWhenRunWithOsStart{};
    bool showFirstLaunchWizard{};
    bool checkFileExtAssociations{};
    bool runWithOsStart{};

    void Visit(IPrefsVisitor& v);
};

struct SSysTrayPrefs
{
    bool show{};
    bool rightClickOnly{};
    bool minimizeToTray{};
    bool closeToTray{};
    bool alwaysOnTop{};

    void Visit(IPrefsVisitor& v);
};

struct SInternetPrefs
{
    bool checkForAutoUpdate{};
    bool includeBetaWhenCheck{};

    void Visit(IPrefsVisitor& v);
};

struct SShellStatePrefs
{
    static constexpr size_t RecentFilesCount = 16;

    CRecentList recentFiles{RecentFilesCount};       // "RecentlyOpenedFile0".."RecentlyOpenedFile15"
    std::vector<SWndPlacementInfo> windowPlacements; // "WindowPlacements"

    void Visit(IPrefsVisitor& v);
};
