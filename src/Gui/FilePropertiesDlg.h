#pragma once
// The properties of the open data file: where it is, its size, what it holds ("^n Notes,
// ^f Folders"), how much of it is free space left by deletions, with "Defragment now" to
// compact it, and its password, which can be set, changed or removed from here.
#include <QDialog>

class CDataCenter;
class CLanguageModule;
class QLabel;
class QPushButton;

class CFilePropertiesDlg : public QDialog
{
    Q_OBJECT

public:
    CFilePropertiesDlg(CDataCenter& center, const CLanguageModule* language, QWidget* parent = nullptr);

    QLabel* SizeLabel() const { return m_Size; }
    QLabel* StatisticsLabel() const { return m_Statistics; }
    QLabel* FragmentationLabel() const { return m_Fragmentation; }
    QLabel* PasswordLabel() const { return m_Password; }
    QPushButton* DefragmentButton() const { return m_Defragment; }
    QPushButton* SetPasswordButton() const { return m_SetPassword; }
    QPushButton* RemovePasswordButton() const { return m_RemovePassword; }

    // Writes pending changes and compacts the file; false when that failed (logged).
    bool Defragment();
    // Opens the password dialog; `remove` asks to remove the password.
    void EditPassword(bool remove);

    // Re-reads size, counts, fragmentation and password state.
    void Refresh();

private:
    CDataCenter& m_Center;
    const CLanguageModule* m_Language;
    QLabel* m_Size;
    QLabel* m_Statistics;
    QLabel* m_Fragmentation;
    QLabel* m_Password;
    QPushButton* m_Defragment;
    QPushButton* m_SetPassword;
    QPushButton* m_RemovePassword;
};
