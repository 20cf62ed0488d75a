#include "Gui/FilePropertiesDlg.h"

#include "Document/DBFolder.h"
#include "Document/DataCenter.h"
#include "Gui/DialogText.h"
#include "Gui/FilePasswordDlg.h"
#include "Gui/ItemPropertiesDlg.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

CFilePropertiesDlg::CFilePropertiesDlg(CDataCenter& center, const CLanguageModule* language, QWidget* parent)
    : QDialog(parent), m_Center(center), m_Language(language), m_Size(new QLabel), m_Statistics(new QLabel),
      m_Fragmentation(new QLabel), m_Password(new QLabel),
      m_Defragment(new QPushButton(LanguageText(language, u"PROPDLG_DEFRAGMENT_BTN"))),
      m_SetPassword(new QPushButton),
      m_RemovePassword(new QPushButton(LanguageText(language, u"PWDDLG_REMOVE_BTN")))
{
    setObjectName(QStringLiteral("FilePropertiesDlg"));
    setWindowTitle(LanguageText(language, u"PROPDLG_FILE_CAPTION"));
    auto* path = new QLabel(ToQString(center.GetFilePath()));
    path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    path->setWordWrap(true);

    auto* fragmentation = new QHBoxLayout;
    fragmentation->addWidget(m_Fragmentation, 1);
    fragmentation->addWidget(m_Defragment);
    auto* password = new QHBoxLayout;
    password->addWidget(m_Password, 1);
    password->addWidget(m_SetPassword);
    password->addWidget(m_RemovePassword);

    auto* form = new QFormLayout;
    form->addRow(LanguageText(language, u"PROPDLG_PATH_LABEL"), path);
    form->addRow(LanguageText(language, u"PROPDLG_SIZE_LABEL"), m_Size);
    form->addRow(LanguageText(language, u"PROPDLG_CONTENTS_LABEL"), m_Statistics);
    form->addRow(LanguageText(language, u"PROPDLG_FRAGMENTATION_LABEL"), fragmentation);
    form->addRow(LanguageText(language, u"PROPDLG_PASSWORD_LABEL"), password);

    auto* buttons = new QDialogButtonBox;
    buttons->addButton(LanguageText(language, u"CLOSE_BUTTON"), QDialogButtonBox::RejectRole);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_Defragment, &QPushButton::clicked, this, &CFilePropertiesDlg::Defragment);
    connect(m_SetPassword, &QPushButton::clicked, this, [this] { EditPassword(false); });
    connect(m_RemovePassword, &QPushButton::clicked, this, [this] { EditPassword(true); });
    setMinimumWidth(460);
    Refresh();
}

void CFilePropertiesDlg::Refresh()
{
    const bool writable = m_Center.IsOpen() && !m_Center.IsReadOnly();
    const QFileInfo file(ToQString(m_Center.GetFilePath()));
    m_Size->setText(QLocale().formattedDataSize(file.size()));
    m_Statistics->setText(m_Center.GetRoot() ? ItemStatisticsText(*m_Center.GetRoot(), m_Language)
                                             : QString());
    const int level = m_Center.IsOpen() ? m_Center.GetDatabase().GetDataFile().GetFragmentationLevel() : 0;
    m_Fragmentation->setText(QStringLiteral("%1 %").arg(level));
    m_Defragment->setEnabled(writable && level > 0);

    const bool protectedFile = m_Center.IsOpen() && m_Center.GetRecords().IsPasswordSet();
    m_Password->setText(
        LanguageText(m_Language, protectedFile ? u"PROPDLG_PASSWORD_SET" : u"PROPDLG_PASSWORD_NONE"));
    m_SetPassword->setText(
        LanguageText(m_Language, protectedFile ? u"PWDDLG_CHANGE_BTN" : u"PWDDLG_SET_BTN"));
    m_SetPassword->setEnabled(writable);
    m_RemovePassword->setVisible(protectedFile);
    m_RemovePassword->setEnabled(writable);
}

bool CFilePropertiesDlg::Defragment()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool done = m_Center.Save() && m_Center.GetDatabase().GetDataFile().DefragmentFull();
    QApplication::restoreOverrideCursor();
    Refresh();
    return done;
}

void CFilePropertiesDlg::EditPassword(bool remove)
{
    CFilePasswordDlg dlg(m_Center.GetRecords(), remove, m_Language, this);
    dlg.exec();
    Refresh();
}
