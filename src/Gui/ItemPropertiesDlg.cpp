#include "Gui/ItemPropertiesDlg.h"

#include "Document/Item.h"
#include "Document/ItemExtendedData.h"
#include "Gui/DialogText.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
QColor FromColourRef(uint32_t colour)
{
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                  static_cast<int>((colour >> 16) & 0xFF));
}

uint32_t ToColourRef(const QColor& colour)
{
    return static_cast<uint32_t>(colour.red()) | static_cast<uint32_t>(colour.green()) << 8 |
           static_cast<uint32_t>(colour.blue()) << 16;
}

// Each entry carries its stored value; a stored value beyond the offered ones (written by a newer
// version) gets an entry of its own, so that accepting the dialog does not lose it.
void SelectValue(QComboBox* combo, int value)
{
    int index = combo->findData(value);
    if (index < 0)
    {
        combo->addItem(QString::number(value), value);
        index = combo->count() - 1;
    }
    combo->setCurrentIndex(index);
}

void PaintSwatch(QPushButton* button, std::optional<uint32_t> colour)
{
    QPixmap swatch(32, 14);
    swatch.fill(colour ? FromColourRef(*colour) : QColor(Qt::transparent));
    button->setIcon(QIcon(swatch));
    button->setIconSize(swatch.size());
}
} // namespace

QString ItemStatisticsText(const CItem& item, const CLanguageModule* language)
{
    size_t notes = 0;
    size_t folders = 0;
    item.CountItems(notes, folders, CountItemsDeep);
    QString text = LanguageText(language, u"PROPDLG_STATISTICS");
    text.replace(QStringLiteral("^n"), QLocale().toString(static_cast<qulonglong>(notes)));
    text.replace(QStringLiteral("^f"), QLocale().toString(static_cast<qulonglong>(folders)));
    return text;
}

CItemPropertiesDlg::CItemPropertiesDlg(CItem& item, bool readOnlyDocument, const CLanguageModule* language,
                                       QWidget* parent)
    : QDialog(parent), m_Item(item), m_Language(language), m_Caption(new QLineEdit), m_Icon(new QComboBox),
      m_TextColourSet(new QCheckBox(LanguageText(language, u"PROPDLG_TEXT_COLOUR_CHK"))),
      m_TextColourButton(new QPushButton(LanguageText(language, u"PROPDLG_CHOOSE_BTN"))),
      m_BackColourSet(new QCheckBox(LanguageText(language, u"PROPDLG_BACK_COLOUR_CHK"))),
      m_BackColourButton(new QPushButton(LanguageText(language, u"PROPDLG_CHOOSE_BTN"))),
      m_Priority(new QComboBox), m_Task(new QComboBox),
      m_ReadOnly(new QCheckBox(LanguageText(language, u"MENU_ITEM_READ_ONLY"))), m_Statistics(new QLabel),
      m_Size(new QLabel)
{
    setObjectName(QStringLiteral("ItemPropertiesDlg"));
    setWindowTitle(LanguageText(language, u"PROPDLG_ITEM_CAPTION", QStringLiteral("^caption"),
                                ToQString(item.GetCaption())));
    const CItemExtendedData* data = item.FindExtendedData();
    m_Caption->setText(ToQString(item.GetCaption()));
    m_Caption->setMaxLength(1000);

    m_Icon->addItem(LanguageText(language, u"PROPDLG_NONE"), 0);
    for (int i = 1; i <= IconCount; ++i)
        m_Icon->addItem(QString::number(i), i);
    SelectValue(m_Icon, data ? data->Icon() : 0);
    m_Priority->addItem(LanguageText(language, u"PROPDLG_NONE"), 0);
    for (int i = 1; i <= PriorityLevels; ++i)
        m_Priority->addItem(QString::number(i), i);
    SelectValue(m_Priority, data ? data->Priority() : 0);
    const char16_t* taskKeys[] = {u"PROPDLG_NONE", u"PROPDLG_TASK_OPEN", u"PROPDLG_TASK_DONE"};
    for (int i = 0; i < 3; ++i)
        m_Task->addItem(LanguageText(language, taskKeys[i]), i);
    SelectValue(m_Task, data ? data->TaskState() : 0);
    m_ReadOnly->setChecked(data && data->IsReadOnly());
    m_TextColour = data ? data->TextColour() : std::nullopt;
    m_BackColour = data ? data->BackColour() : std::nullopt;

    m_Statistics->setText(ItemStatisticsText(item, language));
    m_Size->setText(QLocale().formattedDataSize(static_cast<qint64>(item.EstimateMemory())));

    auto* textColour = new QHBoxLayout;
    textColour->addWidget(m_TextColourSet);
    textColour->addWidget(m_TextColourButton);
    textColour->addStretch();
    auto* backColour = new QHBoxLayout;
    backColour->addWidget(m_BackColourSet);
    backColour->addWidget(m_BackColourButton);
    backColour->addStretch();

    auto* form = new QFormLayout;
    form->addRow(LanguageText(language, u"PROPDLG_CAPTION_LABEL"), m_Caption);
    form->addRow(LanguageText(language, u"MENU_ITEM_ICON"), m_Icon);
    form->addRow(LanguageText(language, u"MENU_ITEM_COLOR"), textColour);
    form->addRow(QString(), backColour);
    form->addRow(LanguageText(language, u"MENU_ITEM_PRIORITY"), m_Priority);
    form->addRow(LanguageText(language, u"MENU_ITEM_TASK"), m_Task);
    form->addRow(QString(), m_ReadOnly);
    form->addRow(LanguageText(language, u"PROPDLG_CONTENTS_LABEL"), m_Statistics);
    form->addRow(LanguageText(language, u"PROPDLG_SIZE_LABEL"), m_Size);

    auto* buttons = new QDialogButtonBox;
    QPushButton* ok = buttons->addButton(LanguageText(language, u"OK_BUTTON"), QDialogButtonBox::AcceptRole);
    buttons->addButton(LanguageText(language, u"CANCEL_BUTTON"), QDialogButtonBox::RejectRole);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);

    // A write-protected document shows the properties without letting them change.
    for (QWidget* input : std::initializer_list<QWidget*>{
             m_Caption, m_Icon, m_TextColourSet, m_TextColourButton, m_BackColourSet, m_BackColourButton,
             m_Priority, m_Task, m_ReadOnly, ok})
        input->setEnabled(!readOnlyDocument);

    connect(buttons, &QDialogButtonBox::accepted, this, &CItemPropertiesDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_TextColourButton, &QPushButton::clicked, this, [this] { ChooseColour(true); });
    connect(m_BackColourButton, &QPushButton::clicked, this, [this] { ChooseColour(false); });
    connect(m_TextColourSet, &QCheckBox::toggled, this,
            [this](bool on)
            {
                if (!on)
                    m_TextColour.reset();
                else if (!m_TextColour)
                    m_TextColour = 0;
                ShowColours();
            });
    connect(m_BackColourSet, &QCheckBox::toggled, this,
            [this](bool on)
            {
                if (!on)
                    m_BackColour.reset();
                else if (!m_BackColour)
                    m_BackColour = 0xFFFFFF;
                ShowColours();
            });
    ShowColours();
    setMinimumWidth(380);
}

void CItemPropertiesDlg::ShowColours()
{
    const QSignalBlocker blockText(m_TextColourSet);
    const QSignalBlocker blockBack(m_BackColourSet);
    m_TextColourSet->setChecked(m_TextColour.has_value());
    m_BackColourSet->setChecked(m_BackColour.has_value());
    PaintSwatch(m_TextColourButton, m_TextColour);
    PaintSwatch(m_BackColourButton, m_BackColour);
}

void CItemPropertiesDlg::SetTextColour(std::optional<uint32_t> colour)
{
    m_TextColour = colour;
    ShowColours();
}

void CItemPropertiesDlg::SetBackColour(std::optional<uint32_t> colour)
{
    m_BackColour = colour;
    ShowColours();
}

void CItemPropertiesDlg::ChooseColour(bool text)
{
    const std::optional<uint32_t> current = text ? m_TextColour : m_BackColour;
    const QColor chosen = QColorDialog::getColor(
        current ? FromColourRef(*current) : QColor(text ? Qt::black : Qt::white), this);
    if (!chosen.isValid())
        return;
    if (text)
        SetTextColour(ToColourRef(chosen));
    else
        SetBackColour(ToColourRef(chosen));
}

void CItemPropertiesDlg::accept()
{
    const QString caption = m_Caption->text().trimmed();
    if (!caption.isEmpty())
        m_Item.SetCaption(ToU16(caption));

    const CItemExtendedData* old = m_Item.FindExtendedData();
    CItemExtendedData wanted;
    if (old)
        wanted.SetBytes(old->Bytes());
    wanted.SetIcon(m_Icon->currentData().toInt());
    wanted.SetTextColour(m_TextColour);
    wanted.SetBackColour(m_BackColour);
    wanted.SetPriority(m_Priority->currentData().toInt());
    wanted.SetTaskState(m_Task->currentData().toInt());
    wanted.SetReadOnly(m_ReadOnly->isChecked());
    const bool changed = old ? old->Bytes() != wanted.Bytes() : !wanted.IsAllZero();
    if (changed)
    {
        if (CItemExtendedData* data = m_Item.GetExtendedData(true))
        {
            data->SetBytes(wanted.Bytes());
            m_Item.NotifyChange(EItemChange::Content);
        }
    }
    QDialog::accept();
}
