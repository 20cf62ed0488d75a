#pragma once
// The editor's find and replace dialog: the find text, in replace mode the replacement and the
// scope (selection or whole text), match case, and the buttons whose result codes the editor's
// commands act on. The last texts and the match-case choice carry over from one opening to the
// next for the whole run; the owner may load and store them with the preferences.
#include "Shared/FxEdit/FxEditHost.h"

#include <QDialog>

class CLanguageModule;
class QCheckBox;
class QLineEdit;
class QRadioButton;

struct SFindReplaceMemory
{
    std::u16string findLine;    // "FindReplDlgFindLine"
    std::u16string replaceLine; // "FindReplDlgReplaceLine"
    bool matchCase = false;     // "FindReplDlgMatchCase"
};

class CFindReplaceDlg : public QDialog
{
    Q_OBJECT

public:
    // Opens in the mode `request` asks for, with its find text (the remembered one when empty).
    CFindReplaceDlg(const SFxFindReplaceRequest& request, const CLanguageModule* language, QWidget* parent);

    // The dialog's answers written into `request`; its result is the button's code, 0 when
    // cancelled. The texts are remembered unless cancelled.
    void Collect(SFxFindReplaceRequest& request) const;

    static SFindReplaceMemory& Memory();

    QLineEdit* FindEdit() const { return m_Find; }
    QLineEdit* ReplaceEdit() const { return m_Replace; }

private:
    QLineEdit* m_Find;
    QLineEdit* m_Replace;
    QCheckBox* m_MatchCase;
    QRadioButton* m_InSelection;
    bool m_ReplaceMode;
};

// Runs the dialog modally for `request`; false when cancelled.
bool RunFindReplaceDialog(SFxFindReplaceRequest& request, const CLanguageModule* language, QWidget* parent);
