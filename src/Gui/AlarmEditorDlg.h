#pragma once
// The alarms of one item: a list of its alarms with Add and Remove, and for the chosen one its
// recurrence (type, interval, week days), first and last day, time of day, description and
// sound. The item's alarms change only when the dialog is accepted.
#include "Alarms/AlarmsArray.h"
#include "Shared/Base/OleDate.h"

#include <QDialog>

class CItem;
class CLanguageModule;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;
class QTimeEdit;
class QWidget;

class CAlarmEditorDlg : public QDialog
{
    Q_OBJECT

public:
    // New alarms take their defaults from `clock`'s present moment.
    CAlarmEditorDlg(CItem& item, const IClock& clock, const CLanguageModule* language,
                    QWidget* parent = nullptr);

    QListWidget* AlarmList() const { return m_List; }
    QPushButton* AddButton() const { return m_Add; }
    QPushButton* RemoveButton() const { return m_Remove; }
    QCheckBox* EnabledCheck() const { return m_Enabled; }
    QComboBox* TypeCombo() const { return m_Type; }
    QSpinBox* IntervalSpin() const { return m_Interval; }
    QCheckBox* WeekDayCheck(int weekDay) const { return m_WeekDays[weekDay - 1]; } // 1 = Sunday
    QDateEdit* StartEdit() const { return m_Start; }
    QCheckBox* EndCheck() const { return m_HasEnd; }
    QDateEdit* EndEdit() const { return m_End; }
    QTimeEdit* TimeEdit() const { return m_Time; }
    QLineEdit* DescriptionEdit() const { return m_Description; }
    QLineEdit* SoundEdit() const { return m_Sound; }

    // The alarms as edited so far.
    const CAlarmsArray& Alarms() const { return m_Alarms; }

    void AddAlarm();
    void RemoveAlarm();

    // Stores the edited alarms in the item (announcing the change) when they differ.
    void accept() override;

private:
    void ShowAlarm(int index);
    // Reads the controls into the alarm being edited.
    void ReadControls();
    void UpdateEnabling();
    QString RowText(const CAlarmInfo& alarm) const;

    CItem& m_Item;
    const IClock& m_Clock;
    const CLanguageModule* m_Language;
    CAlarmsArray m_Alarms;
    int m_Current = -1;
    bool m_Showing = false;

    QListWidget* m_List;
    QPushButton* m_Add;
    QPushButton* m_Remove;
    QWidget* m_Fields;
    QCheckBox* m_Enabled;
    QComboBox* m_Type;
    QSpinBox* m_Interval;
    QLabel* m_IntervalUnit;
    QCheckBox* m_WeekDays[7];
    QDateEdit* m_Start;
    QCheckBox* m_HasEnd;
    QDateEdit* m_End;
    QTimeEdit* m_Time;
    QLineEdit* m_Description;
    QLineEdit* m_Sound;
};
