#pragma once
// Setting, changing or removing the password of the open data file. Setting asks for the new
// password twice; changing asks for the current one and the new one twice; removing asks for
// the current one. A mistake is shown in the dialog, which stays open.
#include <QDialog>

class CItemRecords;
class CLanguageModule;
class QLabel;
class QLineEdit;

class CFilePasswordDlg : public QDialog
{
    Q_OBJECT

public:
    enum class EMode
    {
        Set,
        Change,
        Remove
    };

    // The mode follows from whether the file has a password: Set when it has none, otherwise
    // Change unless `remove` is asked for.
    CFilePasswordDlg(CItemRecords& records, bool remove, const CLanguageModule* language,
                     QWidget* parent = nullptr);

    EMode Mode() const { return m_Mode; }
    QLineEdit* OldEdit() const { return m_Old; } // null when setting
    QLineEdit* NewEdit() const { return m_New; } // null when removing
    QLineEdit* ConfirmEdit() const { return m_Confirm; }
    QLabel* ErrorLabel() const { return m_Error; }

    void accept() override;

private:
    void ShowError(const char16_t* key);

    CItemRecords& m_Records;
    const CLanguageModule* m_Language;
    EMode m_Mode;
    QLineEdit* m_Old = nullptr;
    QLineEdit* m_New = nullptr;
    QLineEdit* m_Confirm = nullptr;
    QLabel* m_Error;
};
