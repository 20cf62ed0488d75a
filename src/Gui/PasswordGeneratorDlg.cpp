#include "Gui/PasswordGeneratorDlg.h"

#include "Gui/DialogText.h"
#include "Prefs/Preferences.h"

#include <QCheckBox>
#include <QClipboard>
#include <QCursor>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include <chrono>

uint32_t CQtPasswordEntropySource::TickCountMs() const
{
    using namespace std::chrono;
    return static_cast<uint32_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

void CQtPasswordEntropySource::CursorPosition(int32_t& x, int32_t& y) const
{
    const QPoint pos = QCursor::pos();
    x = pos.x();
    y = pos.y();
}

namespace
{
QColor FromColorRef(uint32_t colour)
{
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                  static_cast<int>((colour >> 16) & 0xFF));
}

// An empty or unreadable field counts as 0 and is clamped like any other number.
int ReadCount(const QLineEdit* edit)
{
    bool ok = false;
    const int value = edit->text().toInt(&ok);
    return ClampPasswordCount(ok ? value : 0);
}
} // namespace

CPasswordGeneratorDlg::CPasswordGeneratorDlg(CPreferences& prefs, const CLanguageModule* language,
                                             SInsertTarget target, const IPasswordEntropySource* source,
                                             QWidget* parent)
    : QDialog(parent), m_Prefs(prefs), m_Language(language), m_Target(std::move(target)),
      m_Source(source ? *source : m_PlatformSource)
{
    setObjectName(QStringLiteral("PasswordGeneratorDlg"));
    setWindowTitle(LanguageText(language, u"PWDGEN_DLG_CAPTION"));

    const SPwdGenPrefs& settings = m_Prefs.PwdGen();
    static constexpr const char16_t* setKeys[5] = {u"PWDGEN_DLG_LOWERCASE_CHK", u"PWDGEN_DLG_UPPERCASE_CHK",
                                                   u"PWDGEN_DLG_NUMBERS_CHK", u"PWDGEN_DLG_PUNCTUAT_CHK",
                                                   u"PWDGEN_DLG_NOSIMILAR_CHK"};
    const bool setValues[5] = {settings.allowLowercase, settings.allowUppercase, settings.allowNumeric,
                               settings.allowPunctuation, settings.noSimilarChars};
    auto* sets = new QGroupBox(LanguageText(language, u"PWDGEN_DLG_CHAR_LABEL"));
    auto* setsLayout = new QVBoxLayout(sets);
    for (int i = 0; i < 5; ++i)
    {
        m_Sets[i] = new QCheckBox(LanguageText(language, setKeys[i]));
        m_Sets[i]->setChecked(setValues[i]);
        setsLayout->addWidget(m_Sets[i]);
        connect(m_Sets[i], &QCheckBox::toggled, this, &CPasswordGeneratorDlg::SettingsChanged);
    }

    // Up to five digits may be typed, so that an out-of-range count is seen and clamped rather
    // than refused key by key.
    const auto* digits =
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,5}")), this);
    m_Length = new QLineEdit(QString::number(settings.passwordLength));
    m_Count = new QLineEdit(QString::number(settings.passwordsToGenerate));
    for (QLineEdit* edit : {m_Length, m_Count})
    {
        edit->setValidator(digits);
        edit->setMaximumWidth(80);
        connect(edit, &QLineEdit::textChanged, this, &CPasswordGeneratorDlg::SettingsChanged);
        connect(edit, &QLineEdit::editingFinished, this, &CPasswordGeneratorDlg::ShowClampedCounts);
    }
    m_Strength = new QLabel;
    m_Strength->setObjectName(QStringLiteral("StrengthLabel"));
    auto* form = new QFormLayout;
    form->addRow(LanguageText(language, u"PWDGEN_DLG_PWD_LENGHT_LABEL"), m_Length);
    form->addRow(LanguageText(language, u"PWDGEN_DLG_NUM_PWD_LABEL"), m_Count);
    form->addRow(LanguageText(language, u"PWDGEN_DLG_PWD_STREGTH_LABEL"), m_Strength);

    m_Passwords = new QListWidget;
    m_Passwords->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_Generate = new QPushButton(LanguageText(language, u"PWDGEN_DLG_GENERATE_BTN"));
    m_Generate->setDefault(true);
    m_Copy = new QPushButton(LanguageText(language, u"PWDGEN_DLG_COPY_BTN"));
    m_Insert = new QPushButton(LanguageText(language, u"PWDGEN_DLG_INSERT_BTN"));
    auto* close = new QPushButton(LanguageText(language, u"CLOSE_BUTTON"));
    connect(m_Generate, &QPushButton::clicked, this, &CPasswordGeneratorDlg::Generate);
    connect(m_Copy, &QPushButton::clicked, this, &CPasswordGeneratorDlg::CopySelected);
    connect(m_Insert, &QPushButton::clicked, this, &CPasswordGeneratorDlg::InsertSelected);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_Passwords, &QListWidget::itemDoubleClicked, this, &CPasswordGeneratorDlg::CopySelected);

    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {m_Generate, m_Copy, m_Insert})
        buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(close);

    auto* grid = new QGridLayout(this);
    grid->addWidget(sets, 0, 0);
    grid->addLayout(form, 1, 0);
    grid->addWidget(new QLabel(LanguageText(language, u"PWDGEN_DLG_GENERATED_PWD_LABEL")), 2, 0);
    grid->addWidget(m_Passwords, 3, 0);
    grid->addLayout(buttons, 0, 1, 4, 1);
    grid->setRowStretch(3, 1);

    setTabOrder(m_Sets[4], m_Length);
    setTabOrder(m_Length, m_Count);
    setTabOrder(m_Count, m_Passwords);
    setTabOrder(m_Passwords, m_Generate);
    SettingsChanged();
    resize(480, 460);
}

void CPasswordGeneratorDlg::SettingsChanged()
{
    SPwdGenPrefs& settings = m_Prefs.PwdGen();
    settings.allowLowercase = m_Sets[0]->isChecked();
    settings.allowUppercase = m_Sets[1]->isChecked();
    settings.allowNumeric = m_Sets[2]->isChecked();
    settings.allowPunctuation = m_Sets[3]->isChecked();
    settings.noSimilarChars = m_Sets[4]->isChecked();
    settings.passwordLength = ReadCount(m_Length);
    settings.passwordsToGenerate = ReadCount(m_Count);

    const SPasswordStrength strength = RatePasswordStrength(settings);
    m_Strength->setText(LanguageText(m_Language, strength.labelKey));
    QFont font = m_Strength->font();
    font.setBold(strength.emphasis);
    m_Strength->setFont(font);
    QPalette palette = this->palette();
    if (strength.colour != SPasswordStrength::DefaultColour)
        palette.setColor(QPalette::WindowText, FromColorRef(strength.colour));
    m_Strength->setPalette(palette);
    UpdateButtons();
}

void CPasswordGeneratorDlg::ShowClampedCounts()
{
    m_Length->setText(QString::number(m_Prefs.PwdGen().passwordLength));
    m_Count->setText(QString::number(m_Prefs.PwdGen().passwordsToGenerate));
}

void CPasswordGeneratorDlg::UpdateButtons()
{
    m_Generate->setEnabled(CanGeneratePasswords(m_Prefs.PwdGen()));
    const bool havePassword = m_Passwords->count() > 0;
    m_Copy->setEnabled(havePassword);
    m_Insert->setEnabled(havePassword && m_Target.canInsert && m_Target.canInsert());
}

void CPasswordGeneratorDlg::Generate()
{
    SettingsChanged();
    ShowClampedCounts();
    m_Passwords->clear();
    for (const std::u16string& password : GeneratePasswords(m_Prefs.PwdGen(), m_Source))
        m_Passwords->addItem(ToQString(password));
    if (m_Passwords->count() > 0)
        m_Passwords->setCurrentRow(0);
    UpdateButtons();
}

QString CPasswordGeneratorDlg::SelectedPassword() const
{
    const QListWidgetItem* item = m_Passwords->currentItem();
    if (!item && m_Passwords->count() > 0)
        item = m_Passwords->item(0);
    return item ? item->text() : QString();
}

void CPasswordGeneratorDlg::CopySelected()
{
    const QString password = SelectedPassword();
    if (!password.isEmpty())
        QGuiApplication::clipboard()->setText(password);
}

void CPasswordGeneratorDlg::InsertSelected()
{
    const QString password = SelectedPassword();
    if (password.isEmpty() || !m_Target.canInsert || !m_Target.canInsert() || !m_Target.insert)
        return;
    m_Target.insert(password);
}
