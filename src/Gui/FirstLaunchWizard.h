#pragma once
// The dialog of the first start: the language of the program (used from the next start, as the
// language module is loaded before any window) and whether the data file keeps the sample notes
// of a new document. Runs before the main window exists.
#include <QDialog>

#include <string>

class CDataCenter;
class CLanguageModule;
class CPreferences;
class QCheckBox;
class QComboBox;

class CFirstLaunchWizard : public QDialog
{
    Q_OBJECT

public:
    CFirstLaunchWizard(CPreferences& preferences, const CLanguageModule& language,
                       const std::u16string& applicationFolder, CDataCenter& center,
                       QWidget* parent = nullptr);

    QComboBox* LanguageChoice() const { return m_Languages; }
    QCheckBox* SampleNotesChoice() const { return m_SampleNotes; }

    void accept() override;

private:
    QString Text(const char16_t* key) const;

    CPreferences& m_Preferences;
    const CLanguageModule& m_Language;
    CDataCenter& m_Center;
    QComboBox* m_Languages;
    QCheckBox* m_SampleNotes;
};

// The sample notes of the default tree that are still in the document (by their captions in the
// current language, directly inside a default folder).
class CItem;
std::vector<CItem*> FindSampleNotes(CDataCenter& center, const CLanguageModule& language);
