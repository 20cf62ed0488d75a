#include "Gui/FilePasswordDlg.h"

#include "Document/ItemRecords.h"
#include "Gui/DialogText.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

CFilePasswordDlg::CFilePasswordDlg(CItemRecords& records, bool remove, const CLanguageModule* language,
                                   QWidget* parent)
    : QDialog(parent), m_Records(records), m_Language(language), m_Mode(!records.IsPasswordSet() ? EMode::Set
                                                                        : remove ? EMode::Remove
                                                                                 : EMode::Change),
      m_Error(new QLabel)
{
    setObjectName(QStringLiteral("FilePasswordDlg"));
    setWindowTitle(LanguageText(language, m_Mode == EMode::Set      ? u"PWDDLG_SET_CAPTION"
                                          : m_Mode == EMode::Change ? u"PWDDLG_CHANGE_CAPTION"
                                                                    : u"PWDDLG_REMOVE_CAPTION"));
    const auto makeEdit = []
    {
        auto* edit = new QLineEdit;
        edit->setEchoMode(QLineEdit::Password);
        edit->setMinimumWidth(220);
        return edit;
    };
    auto* form = new QFormLayout;
    if (m_Mode != EMode::Set)
    {
        m_Old = makeEdit();
        form->addRow(LanguageText(language, u"PWDDLG_OLD_LABEL"), m_Old);
    }
    if (m_Mode != EMode::Remove)
    {
        m_New = makeEdit();
        m_Confirm = makeEdit();
        form->addRow(LanguageText(language, u"PWDDLG_NEW_LABEL"), m_New);
        form->addRow(LanguageText(language, u"PWDDLG_CONFIRM_LABEL"), m_Confirm);
    }
    QPalette palette = m_Error->palette();
    palette.setColor(QPalette::WindowText, QColor(0xC8, 0x1E, 0x1E));
    m_Error->setPalette(palette);
    m_Error->setWordWrap(true);
    m_Error->hide();

    auto* buttons = new QDialogButtonBox;
    buttons->addButton(LanguageText(language, u"OK_BUTTON"), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(LanguageText(language, u"CANCEL_BUTTON"), QDialogButtonBox::RejectRole);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_Error);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &CFilePasswordDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void CFilePasswordDlg::ShowError(const char16_t* key)
{
    m_Error->setText(LanguageText(m_Language, key));
    m_Error->show();
}

void CFilePasswordDlg::accept()
{
    const std::u16string oldPassword = m_Old ? ToU16(m_Old->text()) : std::u16string();
    const std::u16string newPassword = m_New ? ToU16(m_New->text()) : std::u16string();
    // The records accept an empty text as matching any password, so it is refused here.
    if (m_Old && (oldPassword.empty() || !m_Records.CheckPassword(oldPassword)))
    {
        ShowError(u"PWDDLG_WRONG_OLD");
        m_Old->selectAll();
        m_Old->setFocus();
        return;
    }
    if (m_New && newPassword.empty())
    {
        ShowError(u"PWDDLG_EMPTY_NEW");
        m_New->setFocus();
        return;
    }
    if (m_Confirm && m_Confirm->text() != m_New->text())
    {
        ShowError(u"PWDDLG_MISMATCH");
        m_Confirm->selectAll();
        m_Confirm->setFocus();
        return;
    }
    if (!m_Records.SetPassword(oldPassword, newPassword))
    {
        ShowError(u"PWDDLG_NOT_SAVED");
        return;
    }
    QDialog::accept();
}
