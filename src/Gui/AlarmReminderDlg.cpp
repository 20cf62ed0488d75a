#include "Gui/AlarmReminderDlg.h"

#include "Alarms/AlarmInfo.h"
#include "Alarms/AlarmTree.h"
#include "Gui/DialogText.h"
#include "Gui/OleDateQt.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QProcess>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>

#include <algorithm>

CAlarmReminderDlg::CAlarmReminderDlg(CAlarmManager& manager, IAlarmTree& tree,
                                     const CLanguageModule* language, ItemCaption caption, QWidget* parent)
    : QDialog(parent), m_Manager(manager), m_Tree(tree), m_Language(language), m_Caption(std::move(caption)),
      m_Timer(new QTimer(this)), m_List(new QTreeWidget), m_Snooze(new QComboBox),
      m_SnoozeButton(new QPushButton(LanguageText(language, u"ALARMREMINDDLG_SNOOZE_BTN"))),
      m_Dismiss(new QPushButton(LanguageText(language, u"ALARMREMINDDLG_DISMISS_BTN"))),
      m_DismissAll(new QPushButton(LanguageText(language, u"ALARMREMINDDLG_DISMISS_ALL_BTN"))),
      m_Open(new QPushButton(LanguageText(language, u"ALARMREMINDDLG_OPEN_BTN")))
{
    setObjectName(QStringLiteral("AlarmReminderDlg"));
    setWindowTitle(LanguageText(language, u"ALARMREMINDDLG_CAPTION"));
    setWindowFlag(Qt::WindowStaysOnTopHint);

    m_List->setColumnCount(2);
    m_List->setHeaderLabels({LanguageText(language, u"ALARMREMINDDLG_DATE_TIME_COLUMN_HEADER"),
                             LanguageText(language, u"ALARMREMINDDLG_DESCRIPTION_COLUMN_HEADER")});
    m_List->setRootIsDecorated(false);
    m_List->setAllColumnsShowFocus(true);
    m_List->header()->resizeSection(0, 160);
    m_List->header()->setStretchLastSection(true);
    for (const SSnoozeChoice& choice : CAlarmManager::SnoozeChoices)
        m_Snooze->addItem(
            ToQString(choice.text).replace(QStringLiteral("%s"), LanguageText(language, choice.unitKey)),
            choice.minutes);
    m_Snooze->setCurrentIndex(1);

    auto* remindIn = new QLabel(LanguageText(language, u"ALARMREMINDDLG_REMIND_IN_LABEL"));
    remindIn->setBuddy(m_Snooze);
    auto* grid = new QGridLayout(this);
    grid->addWidget(m_List, 0, 0, 1, 3);
    grid->addWidget(m_DismissAll, 1, 0);
    grid->addWidget(m_Open, 1, 1);
    grid->addWidget(m_Dismiss, 1, 2);
    grid->addWidget(remindIn, 2, 0, 1, 3);
    grid->addWidget(m_Snooze, 3, 0, 1, 2);
    grid->addWidget(m_SnoozeButton, 3, 2);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);

    connect(m_Timer, &QTimer::timeout, this, &CAlarmReminderDlg::CheckNow);
    connect(m_Dismiss, &QPushButton::clicked, this, &CAlarmReminderDlg::DismissSelected);
    connect(m_DismissAll, &QPushButton::clicked, this, &CAlarmReminderDlg::DismissAll);
    connect(m_SnoozeButton, &QPushButton::clicked, this, &CAlarmReminderDlg::SnoozeSelected);
    connect(m_Open, &QPushButton::clicked, this,
            [this]
            {
                const int row = m_List->indexOfTopLevelItem(m_List->currentItem());
                if (row >= 0)
                    emit OpenItem(m_Entries[static_cast<size_t>(row)].itemId);
            });
    connect(m_List, &QTreeWidget::itemActivated, m_Open, &QPushButton::click);
    connect(m_List, &QTreeWidget::currentItemChanged, this, &CAlarmReminderDlg::UpdateButtons);
    resize(520, 320);
    UpdateButtons();
}

void CAlarmReminderDlg::StartWatching()
{
    m_Timer->start(CAlarmManager::RefreshIntervalSeconds * 1000);
    CheckNow();
}

void CAlarmReminderDlg::StopWatching()
{
    m_Timer->stop();
}

void CAlarmReminderDlg::CheckNow()
{
    std::vector<SAlarmQuickInfo> due;
    if (!m_Manager.OnTimer(due))
        return;
    SetEntries(std::move(due));
}

void CAlarmReminderDlg::SetEntries(std::vector<SAlarmQuickInfo> entries)
{
    std::vector<const SAlarmQuickInfo*> fresh;
    for (const SAlarmQuickInfo& entry : entries)
        if (std::find(m_Entries.begin(), m_Entries.end(), entry) == m_Entries.end())
            fresh.push_back(&entry);

    int selected = m_List->indexOfTopLevelItem(m_List->currentItem());
    const SAlarmQuickInfo* selectedEntry =
        selected >= 0 ? &m_Entries[static_cast<size_t>(selected)] : nullptr;
    selected = -1;
    for (size_t i = 0; selectedEntry && i < entries.size(); ++i)
        if (entries[i] == *selectedEntry)
            selected = static_cast<int>(i);

    m_List->clear();
    for (const SAlarmQuickInfo& entry : entries)
    {
        const CAlarmInfo* alarm = m_Tree.FindAlarm(entry.itemId, entry.alarmIndex);
        QString description = alarm ? ToQString(alarm->Text(EAlarmText::Description)) : QString();
        if (description.isEmpty() && alarm)
            description = ToQString(alarm->Text(EAlarmText::Title));
        if (description.isEmpty() && m_Caption)
            description = m_Caption(entry.itemId);
        const QString when = QLocale().toString(OleDateToQDateTime(entry.moment), QLocale::ShortFormat);
        m_List->addTopLevelItem(new QTreeWidgetItem({when, description}));
    }
    m_Entries = std::move(entries);
    m_List->setCurrentItem(m_List->topLevelItem(selected >= 0 ? selected : 0));

    if (!fresh.empty())
    {
        for (const SAlarmQuickInfo* entry : fresh)
        {
            const CAlarmInfo* alarm = m_Tree.FindAlarm(entry->itemId, entry->alarmIndex);
            if (alarm && !alarm->Text(EAlarmText::Sound).empty() && m_Sound)
                m_Sound(ToQString(alarm->Text(EAlarmText::Sound)));
        }
        emit RemindersDue(LanguageText(m_Language, u"ALARMREMINDDLG_TRAY_TEXT", QStringLiteral("^N"),
                                       QString::number(m_Entries.size())));
    }
    UpdateButtons();
    if (!m_Entries.empty() && !isVisible())
    {
        show();
        raise();
        activateWindow();
    }
}

void CAlarmReminderDlg::RemoveRow(int row)
{
    m_Entries.erase(m_Entries.begin() + row);
    delete m_List->takeTopLevelItem(row);
    if (m_Entries.empty())
        hide();
    UpdateButtons();
    emit AlarmsChanged();
}

void CAlarmReminderDlg::DismissSelected()
{
    const int row = m_List->indexOfTopLevelItem(m_List->currentItem());
    if (row < 0)
        return;
    m_Manager.Dismiss(m_Entries[static_cast<size_t>(row)]);
    RemoveRow(row);
    emit AlarmsChanged();
}

void CAlarmReminderDlg::DismissAll()
{
    for (const SAlarmQuickInfo& entry : m_Entries)
        m_Manager.Dismiss(entry);
    m_Entries.clear();
    m_List->clear();
    hide();
    UpdateButtons();
    emit AlarmsChanged();
}

void CAlarmReminderDlg::SnoozeSelected()
{
    const int row = m_List->indexOfTopLevelItem(m_List->currentItem());
    if (row < 0)
        return;
    m_Manager.Snooze(m_Entries[static_cast<size_t>(row)], m_Snooze->currentData().toInt());
    RemoveRow(row);
    emit AlarmsChanged();
}

void CAlarmReminderDlg::UpdateButtons()
{
    const bool selected = m_List->currentItem() != nullptr;
    m_Dismiss->setEnabled(selected);
    m_Open->setEnabled(selected);
    m_SnoozeButton->setEnabled(selected);
    m_DismissAll->setEnabled(!m_Entries.empty());
}

void CAlarmReminderDlg::PlaySoundFile(const QString& soundFile)
{
    if (!QProcess::startDetached(QStringLiteral("paplay"), {soundFile}) &&
        !QProcess::startDetached(QStringLiteral("aplay"), {QStringLiteral("-q"), soundFile}))
        QApplication::beep();
}
