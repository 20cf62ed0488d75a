#include "Cli/CliEnvironment.h"

#include "Document/FileTimes.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/File.h"
#include "Shared/Base/OleDate.h"
#include "Shared/Base/TextConv.h"
#include "Shared/LanguagesMgr/SystemLanguage.h"

#include <ostream>

EMsgResult CCliEnvironment::CStreamMessageBox::Show(const std::u16string& text, EMsgIcon, EMsgButtons)
{
    m_Err << "quillarium-cli: " << Utf16ToUtf8(text) << "\n";
    return EMsgResult::Ok;
}

CCliEnvironment::CCliEnvironment(std::u16string applicationFolder, std::ostream& err)
    : m_MessageBox(err), m_Fonts(DiskFileSystem(), CFontFolderQuery::DefaultFolders()),
      m_DataCenters(DiskFileSystem(), SystemClock(), DiskFileTimes(), &m_MessageBox)
{
    const SAppServices services{std::move(applicationFolder),
                                std::u16string(),
                                UserDefaultLanguageId(),
                                DiskFileSystem(),
                                SystemClock(),
                                m_Fonts,
                                m_Documents,
                                m_RunningInstances,
                                m_DataCenters,
                                m_NewFileDialog,
                                m_MessageBox};
    m_App = std::make_unique<CQuillariumApp>(services);
    m_App->KeepPreferencesFileUnchanged();
}

CCliEnvironment::~CCliEnvironment() = default;

SFontDescription CCliEnvironment::NoteFont() const
{
    const CPreferences* preferences = m_App->Preferences();
    if (!preferences)
        return SFontDescription::Make(u"Arial", 12);
    const SEditorPrefs& editor = preferences->Editor();
    return SFontDescription::Make(editor.fontName.empty() ? u"Arial" : editor.fontName, editor.fontSize);
}

bool CCliEnvironment::Start()
{
    m_App->OpenLog();
    m_App->LoadPreferences();
    return m_App->LoadLanguageModule();
}
