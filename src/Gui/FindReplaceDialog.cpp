#include "Gui/FindReplaceDialog.h"

#include "Gui/QtText.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace
{
QString Text(const CLanguageModule* language, const char16_t* key)
{
    return language ? ToQString(language->GetString(key)) : ToQString(key);
}
} // namespace

SFindReplaceMemory& CFindReplaceDlg::Memory()
{
    static SFindReplaceMemory memory;
    return memory;
}

CFindReplaceDlg::CFindReplaceDlg(const SFxFindReplaceRequest& request, const CLanguageModule* language,
                                 QWidget* parent)
    : QDialog(parent), m_Find(new QLineEdit), m_Replace(new QLineEdit), m_MatchCase(new QCheckBox),
      m_InSelection(new QRadioButton), m_ReplaceMode(request.replaceMode)
{
    const SFindReplaceMemory& memory = Memory();
    setWindowTitle(
        Text(language, m_ReplaceMode ? u"FINDREPLDLG_REPLACE_CAPTION" : u"FINDREPLDLG_FIND_CAPTION"));
    // A selection spanning lines is a scope, not a word to look for.
    const bool multiLine = request.findText.find_first_of(u"\r\n") != std::u16string::npos;
    m_Find->setText(ToQString(request.findText.empty() || multiLine ? memory.findLine : request.findText));
    m_Find->selectAll();
    m_Replace->setText(ToQString(memory.replaceLine));
    m_MatchCase->setText(Text(language, u"FINDREPLDLG_CASE_SENSITIVE"));
    m_MatchCase->setChecked(memory.matchCase);

    auto* fields = new QFormLayout;
    fields->addRow(Text(language, u"FINDREPLDLG_FIND_LABEL"), m_Find);
    if (m_ReplaceMode)
        fields->addRow(Text(language, u"FINDREPLDLG_REPLACE_LABEL"), m_Replace);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(m_MatchCase);

    auto* buttons = new QDialogButtonBox;
    const auto addButton = [&](const char16_t* key, int code, bool isDefault)
    {
        QPushButton* button = buttons->addButton(Text(language, key), QDialogButtonBox::ActionRole);
        button->setDefault(isDefault);
        connect(button, &QPushButton::clicked, this, [this, code] { done(code); });
        // Nothing to look for, nothing to do.
        button->setEnabled(!m_Find->text().isEmpty());
        connect(m_Find, &QLineEdit::textChanged, button,
                [button](const QString& text) { button->setEnabled(!text.isEmpty()); });
    };
    if (m_ReplaceMode)
    {
        auto* scope = new QGroupBox(Text(language, u"FINDREPLDLG_REPLACEIN_LABEL"));
        auto* whole = new QRadioButton(Text(language, u"FINDREPLDLG_REPLACEIN_WHOLETEXT"));
        m_InSelection->setText(Text(language, u"FINDREPLDLG_REPLACEIN_SELECTION"));
        (request.inSelection ? m_InSelection : whole)->setChecked(true);
        auto* scopeLayout = new QVBoxLayout(scope);
        scopeLayout->addWidget(m_InSelection);
        scopeLayout->addWidget(whole);
        layout->addWidget(scope);
        addButton(u"FINDREPLDLG_REPLACE_BTN", SFxFindReplaceRequest::ReplaceOne, true);
        addButton(u"FINDREPLDLG_REPLACE_ALL_BTN", SFxFindReplaceRequest::ReplaceAll, false);
    }
    else
        addButton(u"FINDREPLDLG_FIND_BTN", SFxFindReplaceRequest::FindNext, true);
    QPushButton* cancel = buttons->addButton(Text(language, u"CANCEL_BUTTON"), QDialogButtonBox::RejectRole);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void CFindReplaceDlg::Collect(SFxFindReplaceRequest& request) const
{
    request.result = result();
    if (request.result == SFxFindReplaceRequest::Cancelled)
        return;
    request.findText = ToU16(m_Find->text());
    request.replaceText = ToU16(m_Replace->text());
    request.matchCase = m_MatchCase->isChecked();
    request.inSelection = m_ReplaceMode && m_InSelection->isChecked();
    SFindReplaceMemory& memory = Memory();
    memory.findLine = request.findText;
    if (m_ReplaceMode)
        memory.replaceLine = request.replaceText;
    memory.matchCase = request.matchCase;
}

bool RunFindReplaceDialog(SFxFindReplaceRequest& request, const CLanguageModule* language, QWidget* parent)
{
    CFindReplaceDlg dialog(request, language, parent);
    dialog.exec();
    dialog.Collect(request);
    return request.result != SFxFindReplaceRequest::Cancelled;
}
