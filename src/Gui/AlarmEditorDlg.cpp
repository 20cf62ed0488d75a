#include "Gui/AlarmEditorDlg.h"

#include "Document/Item.h"
#include "Gui/DialogText.h"
#include "Gui/OleDateQt.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTimeEdit>
#include <QVBoxLayout>

namespace
{
constexpr const char16_t* TypeKeys[] = {u"ALARME_TYPE_ONCE",
                                        u"ALARME_TYPE_DAILY",
                                        u"ALARME_TYPE_WEEKLY",
                                        u"ALARME_TYPE_MONTHLY_BY_DATE",
                                        u"ALARME_TYPE_MONTHLY_BY_WEEKDAY",
                                        u"ALARME_TYPE_YEARLY"};
constexpr const char16_t* UnitKeys[] = {u"",
                                        u"ALARMDLG_INTERVAL_DAYS",
                                        u"ALARMDLG_INTERVAL_WEEKS",
                                        u"ALARMDLG_INTERVAL_MONTHS",
                                        u"ALARMDLG_INTERVAL_MONTHS",
                                        u"ALARMDLG_INTERVAL_YEARS"};
constexpr int TypeCount = 6;

bool IsKnownType(int32_t type)
{
    return type >= 0 && type < TypeCount;
}
} // namespace

CAlarmEditorDlg::CAlarmEditorDlg(CItem& item, const IClock& clock, const CLanguageModule* language,
                                 QWidget* parent)
    : QDialog(parent), m_Item(item), m_Clock(clock), m_Language(language), m_List(new QListWidget),
      m_Add(new QPushButton(LanguageText(language, u"ALARMDLG_ADD_BTN"))),
      m_Remove(new QPushButton(LanguageText(language, u"ALARMDLG_REMOVE_BTN"))), m_Fields(new QWidget),
      m_Enabled(new QCheckBox(LanguageText(language, u"ALARMDLG_ENABLED_CHK"))), m_Type(new QComboBox),
      m_Interval(new QSpinBox), m_IntervalUnit(new QLabel), m_Start(new QDateEdit),
      m_HasEnd(new QCheckBox(LanguageText(language, u"ALARMDLG_END_CHK"))), m_End(new QDateEdit),
      m_Time(new QTimeEdit), m_Description(new QLineEdit), m_Sound(new QLineEdit)
{
    setObjectName(QStringLiteral("AlarmEditorDlg"));
    setWindowTitle(LanguageText(language, u"ALARMDLG_CAPTION", QStringLiteral("^caption"),
                                ToQString(item.GetCaption())));
    if (const CAlarmsArray* alarms = item.FindAlarms())
        m_Alarms = *alarms;

    for (const char16_t* key : TypeKeys)
        m_Type->addItem(LanguageText(language, key));
    m_Interval->setRange(1, 999);
    for (QDateEdit* edit : {m_Start, m_End})
    {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QLocale().dateFormat(QLocale::ShortFormat));
    }
    m_Time->setDisplayFormat(QStringLiteral("HH:mm"));

    const QStringList dayNames = LanguageText(language, u"ALARMDLG_WEEKDAYS").split(u'|');
    auto* weekDays = new QHBoxLayout;
    weekDays->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < 7; ++i)
    {
        m_WeekDays[i] = new QCheckBox(i < dayNames.size() ? dayNames[i] : QString::number(i + 1));
        weekDays->addWidget(m_WeekDays[i]);
        connect(m_WeekDays[i], &QCheckBox::toggled, this, &CAlarmEditorDlg::ReadControls);
    }
    auto* interval = new QHBoxLayout;
    interval->setContentsMargins(0, 0, 0, 0);
    interval->addWidget(m_Interval);
    interval->addWidget(m_IntervalUnit, 1);
    auto* end = new QHBoxLayout;
    end->setContentsMargins(0, 0, 0, 0);
    end->addWidget(m_HasEnd);
    end->addWidget(m_End, 1);
    auto* browse = new QPushButton(LanguageText(language, u"ALARMDLG_BROWSE_BTN"));
    auto* sound = new QHBoxLayout;
    sound->setContentsMargins(0, 0, 0, 0);
    sound->addWidget(m_Sound, 1);
    sound->addWidget(browse);

    auto* form = new QFormLayout(m_Fields);
    form->addRow(m_Enabled);
    form->addRow(LanguageText(language, u"ALARMDLG_DESCRIPTION_LABEL"), m_Description);
    form->addRow(LanguageText(language, u"ALARMDLG_TYPE_LABEL"), m_Type);
    form->addRow(LanguageText(language, u"ALARMDLG_INTERVAL_LABEL"), interval);
    form->addRow(LanguageText(language, u"ALARMDLG_WEEKDAYS_LABEL"), weekDays);
    form->addRow(LanguageText(language, u"ALARMDLG_START_LABEL"), m_Start);
    form->addRow(QString(), end);
    form->addRow(LanguageText(language, u"ALARMDLG_TIME_LABEL"), m_Time);
    form->addRow(LanguageText(language, u"ALARMDLG_SOUND_LABEL"), sound);

    auto* listButtons = new QHBoxLayout;
    listButtons->addWidget(m_Add);
    listButtons->addWidget(m_Remove);
    auto* left = new QVBoxLayout;
    left->addWidget(m_List, 1);
    left->addLayout(listButtons);
    auto* top = new QHBoxLayout;
    top->addLayout(left, 2);
    top->addWidget(m_Fields, 3);

    auto* buttons = new QDialogButtonBox;
    buttons->addButton(LanguageText(language, u"OK_BUTTON"), QDialogButtonBox::AcceptRole);
    buttons->addButton(LanguageText(language, u"CANCEL_BUTTON"), QDialogButtonBox::RejectRole);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &CAlarmEditorDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_Add, &QPushButton::clicked, this, &CAlarmEditorDlg::AddAlarm);
    connect(m_Remove, &QPushButton::clicked, this, &CAlarmEditorDlg::RemoveAlarm);
    connect(m_List, &QListWidget::currentRowChanged, this, &CAlarmEditorDlg::ShowAlarm);
    connect(m_Enabled, &QCheckBox::toggled, this, &CAlarmEditorDlg::ReadControls);
    connect(m_Type, &QComboBox::currentIndexChanged, this, &CAlarmEditorDlg::ReadControls);
    connect(m_Interval, &QSpinBox::valueChanged, this, &CAlarmEditorDlg::ReadControls);
    connect(m_Start, &QDateEdit::dateChanged, this, &CAlarmEditorDlg::ReadControls);
    connect(m_HasEnd, &QCheckBox::toggled, this, &CAlarmEditorDlg::ReadControls);
    connect(m_End, &QDateEdit::dateChanged, this, &CAlarmEditorDlg::ReadControls);
    connect(m_Time, &QTimeEdit::timeChanged, this, &CAlarmEditorDlg::ReadControls);
    connect(m_Description, &QLineEdit::textChanged, this, &CAlarmEditorDlg::ReadControls);
    connect(m_Sound, &QLineEdit::textChanged, this, &CAlarmEditorDlg::ReadControls);
    connect(browse, &QPushButton::clicked, this,
            [this]
            {
                const QString file = QFileDialog::getOpenFileName(this, QString(), m_Sound->text());
                if (!file.isEmpty())
                    m_Sound->setText(file);
            });

    for (const CAlarmInfo& alarm : m_Alarms)
        m_List->addItem(RowText(alarm));
    if (m_List->count() > 0)
        m_List->setCurrentRow(0);
    else
        ShowAlarm(-1);
    resize(680, 420);
}

QString CAlarmEditorDlg::RowText(const CAlarmInfo& alarm) const
{
    const QString when = DayFractionToQTime(alarm.time).toString(QStringLiteral("HH:mm"));
    const QString kind = IsKnownType(alarm.type) ? LanguageText(m_Language, TypeKeys[alarm.type]) : QString();
    const QString description = ToQString(alarm.Text(EAlarmText::Description));
    return description.isEmpty() ? kind + u' ' + when
                                 : description + QStringLiteral(" (") + kind + u' ' + when + u')';
}

void CAlarmEditorDlg::ShowAlarm(int index)
{
    m_Current = index >= 0 && static_cast<size_t>(index) < m_Alarms.GetSize() ? index : -1;
    m_Fields->setEnabled(m_Current >= 0);
    m_Remove->setEnabled(m_Current >= 0);
    if (m_Current < 0)
        return;
    const CAlarmInfo& alarm = m_Alarms[static_cast<size_t>(m_Current)];
    m_Showing = true;
    m_Enabled->setChecked(alarm.enabled);
    m_Type->setCurrentIndex(IsKnownType(alarm.type) ? alarm.type : -1);
    m_Interval->setValue(alarm.interval);
    for (int i = 0; i < 7; ++i)
        m_WeekDays[i]->setChecked((alarm.weekDays >> i) & 1);
    m_Start->setDate(OleDayToQDate(alarm.startDay));
    m_HasEnd->setChecked(alarm.hasEndDate);
    m_End->setDate(OleDayToQDate(alarm.hasEndDate ? alarm.endDay : alarm.startDay));
    m_Time->setTime(DayFractionToQTime(alarm.time));
    m_Description->setText(ToQString(alarm.Text(EAlarmText::Description)));
    m_Sound->setText(ToQString(alarm.Text(EAlarmText::Sound)));
    m_Showing = false;
    UpdateEnabling();
}

void CAlarmEditorDlg::ReadControls()
{
    if (m_Showing || m_Current < 0)
        return;
    CAlarmInfo& alarm = m_Alarms[static_cast<size_t>(m_Current)];
    alarm.enabled = m_Enabled->isChecked();
    // A type this version does not know stays as it was until the user picks one.
    if (m_Type->currentIndex() >= 0)
        alarm.type = m_Type->currentIndex();
    alarm.interval = m_Interval->value();
    uint8_t days = 0;
    for (int i = 0; i < 7; ++i)
        days |= static_cast<uint8_t>(m_WeekDays[i]->isChecked() ? 1u << i : 0u);
    alarm.weekDays = days;
    alarm.startDay = QDateToOleDay(m_Start->date());
    alarm.hasEndDate = m_HasEnd->isChecked();
    if (alarm.hasEndDate)
        alarm.endDay = QDateToOleDay(m_End->date());
    // The field holds a fraction of a day, as new alarms have it: a collected moment adds the
    // field whole to the day, so a day part would move every reminder.
    alarm.time = QTimeToDayFraction(m_Time->time());
    alarm.SetText(EAlarmText::Description, ToU16(m_Description->text()));
    alarm.SetText(EAlarmText::Sound, ToU16(m_Sound->text()));
    if (QListWidgetItem* row = m_List->item(m_Current))
        row->setText(RowText(alarm));
    UpdateEnabling();
}

void CAlarmEditorDlg::UpdateEnabling()
{
    const int type = m_Type->currentIndex();
    m_Interval->setEnabled(type > 0);
    m_IntervalUnit->setText(type > 0 ? LanguageText(m_Language, UnitKeys[type]) : QString());
    for (QCheckBox* day : m_WeekDays)
        day->setEnabled(type == static_cast<int>(EAlarmType::Weekly));
    m_End->setEnabled(m_HasEnd->isChecked());
}

void CAlarmEditorDlg::AddAlarm()
{
    m_Alarms.Add(CAlarmInfo(m_Clock.NowLocal()));
    m_List->addItem(RowText(m_Alarms[m_Alarms.GetSize() - 1]));
    m_List->setCurrentRow(m_List->count() - 1);
    m_Description->setFocus();
}

void CAlarmEditorDlg::RemoveAlarm()
{
    if (m_Current < 0)
        return;
    const int removed = m_Current;
    m_Current = -1;
    m_Alarms.RemoveAt(static_cast<size_t>(removed));
    delete m_List->takeItem(removed);
    ShowAlarm(m_List->currentRow());
}

void CAlarmEditorDlg::accept()
{
    const CAlarmsArray* stored = m_Item.FindAlarms();
    const bool changed = stored ? !(*stored == m_Alarms) : !m_Alarms.IsEmpty();
    if (changed)
    {
        *m_Item.GetAlarms(true) = m_Alarms;
        m_Item.NotifyChange(EItemChange::Alarms);
    }
    QDialog::accept();
}
