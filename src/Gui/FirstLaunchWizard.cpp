#include "Gui/FirstLaunchWizard.h"

#include "App/AppIdentity.h"
#include "Document/DBFolder.h"
#include "Document/DataCenter.h"
#include "Document/FolderBase.h"
#include "Gui/QtText.h"
#include "Prefs/Preferences.h"
#include "Shared/LanguagesMgr/AppFolders.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/LanguagesMgr/LanguagesMgr.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
constexpr const char16_t* kSampleCaptionKeys[] = {u"WIZARDDLG_SAMPLE_TREE_WELCOME_CAPTION",
                                                  u"WIZARDDLG_SAMPLE_TREE_TASK_CAPTION",
                                                  u"WIZARDDLG_SAMPLE_TREE_IDEA_CAPTION"};
} // namespace

std::vector<CItem*> FindSampleNotes(CDataCenter& center, const CLanguageModule& language)
{
    std::vector<CItem*> found;
    CFolderBase* root = center.GetRoot();
    if (!root)
        return found;
    for (size_t i = 0; i < root->GetChildCount(); ++i)
    {
        auto* folder = dynamic_cast<CFolderBase*>(root->GetChild(i));
        if (!folder || !folder->IsDefaultFolder() || !folder->LoadChildren(EChildKind::Any))
            continue;
        for (size_t j = 0; j < folder->GetChildCount(); ++j)
        {
            CItem* child = folder->GetChild(j);
            for (const char16_t* key : kSampleCaptionKeys)
                if (child->IsKind(EItemKind::Note) && child->GetCaption() == language.GetString(key))
                    found.push_back(child);
        }
    }
    return found;
}

CFirstLaunchWizard::CFirstLaunchWizard(CPreferences& preferences, const CLanguageModule& language,
                                       const std::u16string& applicationFolder, CDataCenter& center,
                                       QWidget* parent)
    : QDialog(parent), m_Preferences(preferences), m_Language(language), m_Center(center),
      m_Languages(new QComboBox), m_SampleNotes(new QCheckBox(Text(u"WIZARDDLG_SAMPLE_TREE_CHK")))
{
    setWindowTitle(Text(u"WIZARDDLG_CAPTION"));
    auto* intro = new QLabel(Text(u"WIZARDDLG_INTRO_TEXT"));
    intro->setWordWrap(true);

    const CLanguagesMgr modules(AppFolderPath(applicationFolder, EAppFolder::Languages), AppCompatibility(),
                                std::u16string(kDefaultLanguageModuleName));
    for (const SLanguageModuleInfo& module : modules.Modules())
    {
        m_Languages->addItem(ToQString(module.description), ToQString(module.fileName));
        if (!module.fileName.empty() && module.fileName == language.Name())
            m_Languages->setCurrentIndex(m_Languages->count() - 1);
    }
    auto* restartNote = new QLabel(Text(u"WIZARDDLG_LANGUAGE_RESTART"));
    restartNote->setWordWrap(true);
    restartNote->setEnabled(false);

    // Only a document that still holds the sample notes offers to drop them.
    const bool hasSamples = !FindSampleNotes(center, language).empty();
    m_SampleNotes->setChecked(hasSamples);
    m_SampleNotes->setEnabled(hasSamples && !center.IsReadOnly());

    auto* form = new QFormLayout;
    form->addRow(Text(u"WIZARDDLG_LANGUAGE_LABEL"), m_Languages);
    form->addRow(QString(), restartNote);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(Text(u"WIZARDDLG_FINISH_BTN"), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(intro);
    layout->addSpacing(8);
    layout->addLayout(form);
    layout->addWidget(m_SampleNotes);
    layout->addStretch();
    layout->addWidget(buttons);
    setMinimumWidth(440);
}

QString CFirstLaunchWizard::Text(const char16_t* key) const
{
    return ToQString(m_Language.GetString(key));
}

void CFirstLaunchWizard::accept()
{
    m_Preferences.Paths().languagePath = ToU16(m_Languages->currentData().toString());
    if (m_SampleNotes->isEnabled() && !m_SampleNotes->isChecked())
        for (CItem* sample : FindSampleNotes(m_Center, m_Language))
            m_Center.DeleteItem(*sample);
    QDialog::accept();
}
