#include "Prefs/Preferences.h"

CPreferences::CPreferences(const SPreferencesEnvironment& env) : CPreferencesBase(env)
{
    Reset();
}

void CPreferences::VisitProjectPrefs(IPrefsVisitor& visitor)
{
    m_Other.Visit(visitor);
    m_Backup.Visit(visitor);
    m_Editor.Visit(visitor);
    m_Search.Visit(visitor);
    m_PwdGen.Visit(visitor);
    m_Layout.Visit(visitor);
    m_DocumentState.Visit(visitor);
}
