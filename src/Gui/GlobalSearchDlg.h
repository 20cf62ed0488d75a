#pragma once
// The search over all notes: query and options, a result list, progress and Cancel while the
// tree is walked on a worker thread, and going to a found item or filtering the tree to the
// results. The dialog is modal while it searches: the walk reads (and loads) the tree, so the
// rest of the window must leave the document alone until it ends.
#include "Document/Item.h"
#include "Gui/SearchResultList.h"
#include "Shared/TextSearch/SearchStatus.h"

#include <QDialog>

#include <memory>
#include <thread>
#include <vector>

class CLanguageModule;
class CPreferences;
class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTimer;

class CGlobalSearchDlg : public QDialog
{
    Q_OBJECT

public:
    static constexpr char16_t SettingsKey[] = u"GlobalSrchDlg";

    // Searches `root` and everything below it; `prefs` (may be null) keeps query, options and
    // placement, `language` gives the texts. Both outlive the dialog.
    CGlobalSearchDlg(CItem& root, CPreferences* prefs, const CLanguageModule* language,
                     QWidget* parent = nullptr);
    ~CGlobalSearchDlg() override;

    QLineEdit* QueryEdit() const { return m_Query; }
    QCheckBox* MatchCaseCheck() const { return m_MatchCase; }
    QCheckBox* WholeWordsCheck() const { return m_WholeWords; }
    QCheckBox* BooleanCheck() const { return m_Boolean; }
    CSearchResultList* ResultList() const { return m_Results; }
    QProgressBar* Progress() const { return m_Progress; }
    QLabel* StatusLabel() const { return m_Status; }
    QPushButton* SearchButton() const { return m_Search; }
    QPushButton* CancelButton() const { return m_Cancel; }
    QPushButton* GoToButton() const { return m_GoTo; }
    QPushButton* FilterButton() const { return m_Filter; }

    bool IsSearching() const { return m_Worker.joinable(); }
    // Starts a search with the query and options shown (remembering them); nothing while one runs.
    void StartSearch();
    void CancelSearch();

signals:
    void GoToItem(CItem* item);
    void FilterTree(const std::vector<CItem*>& items);
    void SearchFinished(bool completed);

protected:
    void done(int result) override;

private:
    struct SRunOutput;

    void FinishSearch(bool completed);
    void ShowProgress();
    void UpdateButtons();
    void SaveSettings();
    void ShowHelp();
    void StopWorker();

    CItem& m_Root;
    CPreferences* m_Prefs;
    const CLanguageModule* m_Language;

    QLineEdit* m_Query;
    QCheckBox* m_MatchCase;
    QCheckBox* m_WholeWords;
    QCheckBox* m_Boolean;
    CSearchResultList* m_Results;
    QProgressBar* m_Progress;
    QLabel* m_Status;
    QPushButton* m_Search;
    QPushButton* m_Cancel;
    QPushButton* m_GoTo;
    QPushButton* m_Filter;
    QTimer* m_ProgressTimer;

    std::unique_ptr<CSearchStatus> m_RunStatus;
    std::unique_ptr<SRunOutput> m_Output;
    std::thread m_Worker;
};
