#pragma once
// The password generator window: character sets, length and count, a live strength rating,
// the generated passwords one per row, and copying or inserting the chosen one into the note.
// Every change is written straight into the preferences, so the settings survive the window.
#include "Tools/PasswordGenerator.h"

#include <QDialog>

#include <functional>

class CLanguageModule;
class CPreferences;
class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

// The platform's tick count and mouse position.
class CQtPasswordEntropySource : public IPasswordEntropySource
{
public:
    uint32_t TickCountMs() const override;
    void CursorPosition(int32_t& x, int32_t& y) const override;
};

class CPasswordGeneratorDlg : public QDialog
{
    Q_OBJECT

public:
    // Where a password goes when the user inserts it: `canInsert` tells whether an editor is
    // there to take it (visible, enabled, writable) and `insert` puts the text at its caret.
    struct SInsertTarget
    {
        std::function<bool()> canInsert;
        std::function<void(const QString&)> insert;
    };

    // `prefs` and `language` outlive the dialog; `source` may be null for the platform's own.
    CPasswordGeneratorDlg(CPreferences& prefs, const CLanguageModule* language, SInsertTarget target,
                          const IPasswordEntropySource* source = nullptr, QWidget* parent = nullptr);

    QCheckBox* SetCheck(int index) const
    {
        return m_Sets[index];
    } // lower, upper, digits, punct., no look-alikes
    QLineEdit* LengthEdit() const { return m_Length; }
    QLineEdit* CountEdit() const { return m_Count; }
    QLabel* StrengthLabel() const { return m_Strength; }
    QListWidget* Passwords() const { return m_Passwords; }
    QPushButton* GenerateButton() const { return m_Generate; }
    QPushButton* CopyButton() const { return m_Copy; }
    QPushButton* InsertButton() const { return m_Insert; }

    void Generate();
    void CopySelected();
    void InsertSelected();

private:
    // Reads the controls into the preferences (counts clamped) and updates rating and buttons.
    void SettingsChanged();
    void ShowClampedCounts();
    void UpdateButtons();
    QString SelectedPassword() const;

    CPreferences& m_Prefs;
    const CLanguageModule* m_Language;
    SInsertTarget m_Target;
    CQtPasswordEntropySource m_PlatformSource;
    const IPasswordEntropySource& m_Source;

    QCheckBox* m_Sets[5];
    QLineEdit* m_Length;
    QLineEdit* m_Count;
    QLabel* m_Strength;
    QListWidget* m_Passwords;
    QPushButton* m_Generate;
    QPushButton* m_Copy;
    QPushButton* m_Insert;
};
