#pragma once
// The editor's find and replace window. It only asks: the editor runs the search or the
// replacement with the answers in the request, whose result is the button that closed it
// (1302 find, 1300 replace, 1301 replace all, 0 cancel). The lines typed and the match-case
// choice are kept in the preferences unless the dialog is cancelled (without preferences, for
// the run only), and each mode keeps its own placement.
#include "Shared/FxEdit/FxEditHost.h"

#include <QDialog>

class CLanguageModule;
class CPreferences;
class QCheckBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

// What the dialog remembers when it has no preferences to keep it in.
struct SFindReplaceMemory
{
    std::u16string findLine;
    std::u16string replaceLine;
    bool matchCase = false;
};

class CFindReplaceDlg : public QDialog
{
    Q_OBJECT

public:
    static constexpr char16_t FindSettingsKey[] = u"FindTxtDlg";
    static constexpr char16_t ReplaceSettingsKey[] = u"ReplaceTxtDlg";

    // The mode and the first texts come from `request` (a selected text wins over the
    // remembered line); `prefs` may be null.
    CFindReplaceDlg(const SFxFindReplaceRequest& request, CPreferences* prefs,
                    const CLanguageModule* language, QWidget* parent = nullptr);

    // Shows the dialog modally and fills `request`; false when it was cancelled.
    static bool Run(SFxFindReplaceRequest& request, CPreferences* prefs, const CLanguageModule* language,
                    QWidget* parent);

    static SFindReplaceMemory& Memory();

    // The request as the controls stand, with the result code of the button that closed it.
    SFxFindReplaceRequest Request() const;

    QLineEdit* FindEdit() const { return m_Find; }
    QLineEdit* ReplaceEdit() const { return m_Replace; } // null in find mode
    QCheckBox* MatchCaseCheck() const { return m_MatchCase; }
    QRadioButton* SelectionRadio() const { return m_InSelection; } // null in find mode
    QRadioButton* WholeTextRadio() const { return m_WholeText; }   // null in find mode
    QPushButton* FindButton() const { return m_FindButton; }       // null in replace mode
    QPushButton* ReplaceButton() const { return m_ReplaceButton; } // null in find mode
    QPushButton* ReplaceAllButton() const { return m_ReplaceAllButton; }

protected:
    void done(int result) override;

private:
    void UpdateButtons();
    // The remembered lines: the preferences' when there are preferences, else the run's.
    SFindReplaceMemory Remembered() const;

    bool m_ReplaceMode;
    CPreferences* m_Prefs;
    QLineEdit* m_Find;
    QLineEdit* m_Replace = nullptr;
    QCheckBox* m_MatchCase;
    QRadioButton* m_InSelection = nullptr;
    QRadioButton* m_WholeText = nullptr;
    QPushButton* m_FindButton = nullptr;
    QPushButton* m_ReplaceButton = nullptr;
    QPushButton* m_ReplaceAllButton = nullptr;
};
