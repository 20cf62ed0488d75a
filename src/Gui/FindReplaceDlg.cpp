#include "Gui/FindReplaceDlg.h"

#include "Gui/DialogText.h"
#include "Gui/WindowPlacement.h"
#include "Prefs/Preferences.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

CFindReplaceDlg::CFindReplaceDlg(const SFxFindReplaceRequest& request, CPreferences* prefs,
                                 const CLanguageModule* language, QWidget* parent)
    : QDialog(parent), m_ReplaceMode(request.replaceMode), m_Prefs(prefs), m_Find(new QLineEdit),
      m_MatchCase(new QCheckBox(LanguageText(language, u"FINDREPLDLG_CASE_SENSITIVE")))
{
    setObjectName(QStringLiteral("FindReplaceDlg"));
    setWindowTitle(
        LanguageText(language, m_ReplaceMode ? u"FINDREPLDLG_REPLACE_CAPTION" : u"FINDREPLDLG_FIND_CAPTION"));
    setModal(true);

    const SFindReplaceMemory remembered = Remembered();
    // A selection that spans lines is a scope, not a text to look for.
    const bool useSelectedText =
        !request.findText.empty() && request.findText.find_first_of(u"\r\n") == std::u16string::npos;
    m_Find->setText(ToQString(useSelectedText ? request.findText : remembered.findLine));
    m_Find->selectAll();
    m_MatchCase->setChecked(remembered.matchCase);

    auto* form = new QFormLayout;
    form->addRow(LanguageText(language, u"FINDREPLDLG_FIND_LABEL"), m_Find);
    auto* buttons = new QVBoxLayout;
    auto* cancel = new QPushButton(LanguageText(language, u"CANCEL_BUTTON"));
    auto* grid = new QGridLayout(this);
    grid->addLayout(form, 0, 0);
    if (m_ReplaceMode)
    {
        m_Replace = new QLineEdit(ToQString(remembered.replaceLine));
        form->addRow(LanguageText(language, u"FINDREPLDLG_REPLACE_LABEL"), m_Replace);
        auto* scope = new QGroupBox(LanguageText(language, u"FINDREPLDLG_REPLACEIN_LABEL"));
        m_InSelection = new QRadioButton(LanguageText(language, u"FINDREPLDLG_REPLACEIN_SELECTION"));
        m_WholeText = new QRadioButton(LanguageText(language, u"FINDREPLDLG_REPLACEIN_WHOLETEXT"));
        (request.inSelection ? m_InSelection : m_WholeText)->setChecked(true);
        auto* scopeLayout = new QHBoxLayout(scope);
        scopeLayout->addWidget(m_InSelection);
        scopeLayout->addWidget(m_WholeText);
        grid->addWidget(m_MatchCase, 1, 0);
        grid->addWidget(scope, 2, 0);

        m_ReplaceButton = new QPushButton(LanguageText(language, u"FINDREPLDLG_REPLACE_BTN"));
        m_ReplaceAllButton = new QPushButton(LanguageText(language, u"FINDREPLDLG_REPLACE_ALL_BTN"));
        m_ReplaceButton->setDefault(true);
        buttons->addWidget(m_ReplaceButton);
        buttons->addWidget(m_ReplaceAllButton);
        connect(m_ReplaceButton, &QPushButton::clicked, this,
                [this] { done(SFxFindReplaceRequest::ReplaceOne); });
        connect(m_ReplaceAllButton, &QPushButton::clicked, this,
                [this] { done(SFxFindReplaceRequest::ReplaceAll); });
        connect(m_Find, &QLineEdit::textChanged, this, &CFindReplaceDlg::UpdateButtons);
    }
    else
    {
        grid->addWidget(m_MatchCase, 1, 0);
        m_FindButton = new QPushButton(LanguageText(language, u"FINDREPLDLG_FIND_BTN"));
        m_FindButton->setDefault(true);
        buttons->addWidget(m_FindButton);
        connect(m_FindButton, &QPushButton::clicked, this, [this] { done(SFxFindReplaceRequest::FindNext); });
        connect(m_Find, &QLineEdit::textChanged, this, &CFindReplaceDlg::UpdateButtons);
    }
    buttons->addWidget(cancel);
    buttons->addStretch();
    grid->addLayout(buttons, 0, 1, 3, 1);
    grid->setColumnStretch(0, 1);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    resize(m_ReplaceMode ? 460 : 420, sizeHint().height());
    RestoreWindowPlacement(*this, m_Prefs, m_ReplaceMode ? ReplaceSettingsKey : FindSettingsKey);
    UpdateButtons();
    m_Find->setFocus();
}

void CFindReplaceDlg::UpdateButtons()
{
    const bool haveText = !m_Find->text().isEmpty();
    for (QPushButton* button : {m_FindButton, m_ReplaceButton, m_ReplaceAllButton})
        if (button)
            button->setEnabled(haveText);
}

SFxFindReplaceRequest CFindReplaceDlg::Request() const
{
    SFxFindReplaceRequest request;
    request.replaceMode = m_ReplaceMode;
    request.findText = ToU16(m_Find->text());
    request.replaceText = m_Replace ? ToU16(m_Replace->text()) : std::u16string();
    request.matchCase = m_MatchCase->isChecked();
    request.inSelection = m_InSelection && m_InSelection->isChecked();
    request.result = result();
    return request;
}

SFindReplaceMemory& CFindReplaceDlg::Memory()
{
    static SFindReplaceMemory memory;
    return memory;
}

SFindReplaceMemory CFindReplaceDlg::Remembered() const
{
    if (!m_Prefs)
        return Memory();
    const SSearchPrefs& search = m_Prefs->Search();
    return {search.findLine, search.replaceLine, search.findMatchCase};
}

void CFindReplaceDlg::done(int result)
{
    if (result != SFxFindReplaceRequest::Cancelled)
    {
        SFindReplaceMemory remembered = Remembered();
        remembered.findLine = ToU16(m_Find->text());
        if (m_Replace)
            remembered.replaceLine = ToU16(m_Replace->text());
        remembered.matchCase = m_MatchCase->isChecked();
        if (m_Prefs)
        {
            SSearchPrefs& search = m_Prefs->Search();
            search.findLine = remembered.findLine;
            search.replaceLine = remembered.replaceLine;
            search.findMatchCase = remembered.matchCase;
        }
        else
            Memory() = remembered;
    }
    SaveWindowPlacement(*this, m_Prefs, m_ReplaceMode ? ReplaceSettingsKey : FindSettingsKey);
    QDialog::done(result);
}

bool CFindReplaceDlg::Run(SFxFindReplaceRequest& request, CPreferences* prefs,
                          const CLanguageModule* language, QWidget* parent)
{
    CFindReplaceDlg dlg(request, prefs, language, parent);
    dlg.exec();
    request = dlg.Request();
    return request.result != SFxFindReplaceRequest::Cancelled;
}
