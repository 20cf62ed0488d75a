#include "Prefs/MajorPrefsGroups.h"

void SPathPrefs::Visit(IPrefsVisitor& v)
{
    v.Text(u"SkinPath", skinPath, u"Skins/Default");
    v.Text(u"SkinThemeName", skinThemeName, u"");
    v.Text(u"SoundPath", soundPath, u"Sounds/Default");
    v.Text(u"LanguagePath", languagePath, u"");
    v.Text(u"LastAccessedFileOpenPath", lastAccessedFileOpenPath, u"");
    v.Text(u"LastAccessedFileSavePath", lastAccessedFileSavePath, u"");
}

void SStartupPrefs::Visit(IPrefsVisitor& v)
{
    v.Bool(u"StartupHideWhenRunWithOSStart", hideWhenRunWithOsStart, true);
    v.Bool(u"StartupShowFirstLaunchWizard", showFirstLaunchWizard, true);
    v.Bool(u"StartupCheckFileExtAssociations", checkFileExtAssociations, true);
    v.Bool(u"StartupRunWithOSStart", runWithOsStart, false);
}

void SSysTrayPrefs::Visit(IPrefsVisitor& v)
{
    v.Bool(u"SysTrayShow", show, true);
    v.Bool(u"SysTrayRightClkOnly", rightClickOnly, true);
    v.Bool(u"SysTrayMin", minimizeToTray, false);
    v.Bool(u"SysTrayClose", closeToTray, false);
    v.Bool(u"AlwaysOnTop", alwaysOnTop, false);
}

void SInternetPrefs::Visit(IPrefsVisitor& v)
{
    v.Bool(u"InternetCheckForAutoUpdate", checkForAutoUpdate, true);
    v.Bool(u"InternetIncludeBetaWhenCheck", includeBetaWhenCheck, false);
}

void SShellStatePrefs::Visit(IPrefsVisitor& v)
{
    v.NumberedList(u"RecentlyOpenedFile", recentFiles);
    v.Placements(u"WindowPlacements", windowPlacements);
}
