#include "Gui/GlobalSearchDlg.h"

#include "Document/GlobalSearch.h"
#include "Document/NoteBase.h"
#include "Gui/DialogText.h"
#include "Gui/WindowPlacement.h"
#include "Prefs/Preferences.h"
#include "Shared/TextSearch/TextSearch.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

struct CGlobalSearchDlg::SRunOutput
{
    std::vector<SSearchResultRow> rows;
};

CGlobalSearchDlg::CGlobalSearchDlg(CItem& root, CPreferences* prefs, const CLanguageModule* language,
                                   QWidget* parent)
    : QDialog(parent), m_Root(root), m_Prefs(prefs), m_Language(language), m_Query(new QLineEdit),
      m_MatchCase(new QCheckBox(LanguageText(language, u"GLOBALSEARCHDLG_CASE_SENSITIVE"))),
      m_WholeWords(new QCheckBox(LanguageText(language, u"GLOBALSEARCHDLG_WHOLE_WORDS"))),
      m_Boolean(new QCheckBox(LanguageText(language, u"GLOBALSEARCHDLG_BOOLEAN"))),
      m_Results(new CSearchResultList), m_Progress(new QProgressBar), m_Status(new QLabel),
      m_Search(new QPushButton(LanguageText(language, u"GLOBALSEARCHDLG_SEARCH_BTN"))),
      m_Cancel(new QPushButton(LanguageText(language, u"CANCEL_BUTTON"))),
      m_GoTo(new QPushButton(LanguageText(language, u"GLOBALSEARCHDLG_GOTO_BTN"))),
      m_Filter(new QPushButton(LanguageText(language, u"GLOBALSEARCHDLG_FILTER_BTN"))),
      m_ProgressTimer(new QTimer(this))
{
    setObjectName(QStringLiteral("GlobalSearchDlg"));
    setWindowTitle(LanguageText(language, u"GLOBALSEARCHDLG_CAPTION"));
    setModal(true);
    m_Results->SetHeaders(LanguageText(language, u"GLOBALSEARCHDLG_TABLEHDR_CAPTION"),
                          LanguageText(language, u"GLOBALSEARCHDLG_TABLEHDR_DESCRIPTION"));
    if (m_Prefs)
    {
        const SSearchPrefs& search = m_Prefs->Search();
        m_Query->setText(ToQString(search.globalText));
        m_MatchCase->setChecked(search.globalMatchCase);
        m_WholeWords->setChecked(search.globalWholeWords);
        m_Boolean->setChecked(search.globalBoolean);
    }
    m_Query->selectAll();
    m_Progress->setRange(0, 1000);
    m_Progress->setTextVisible(false);
    m_Progress->hide();
    m_Cancel->hide();
    m_Search->setDefault(true);

    auto* help = new QPushButton(LanguageText(language, u"HELP_BUTTON"));
    auto* close = new QPushButton(LanguageText(language, u"GLOBALSEARCHDLG_CLOSE_BTN"));
    auto* queryLabel = new QLabel(LanguageText(language, u"GLOBALSEARCHDLG_QUERY_LABEL"));
    queryLabel->setBuddy(m_Query);

    auto* options = new QHBoxLayout;
    options->addWidget(m_MatchCase);
    options->addWidget(m_WholeWords);
    options->addWidget(m_Boolean);
    options->addStretch();

    auto* progressRow = new QHBoxLayout;
    progressRow->addWidget(m_Status, 1);
    progressRow->addWidget(m_Progress, 1);

    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {m_Search, m_Cancel, m_GoTo, m_Filter})
        buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(help);
    buttons->addWidget(close);

    auto* grid = new QGridLayout(this);
    grid->addWidget(queryLabel, 0, 0);
    grid->addWidget(m_Query, 0, 1);
    grid->addLayout(options, 1, 1);
    grid->addWidget(m_Results, 2, 0, 1, 2);
    grid->addLayout(progressRow, 3, 0, 1, 2);
    grid->addLayout(buttons, 0, 2, 4, 1);
    grid->setRowStretch(2, 1);
    grid->setColumnStretch(1, 1);

    setTabOrder(m_Query, m_MatchCase);
    setTabOrder(m_MatchCase, m_WholeWords);
    setTabOrder(m_WholeWords, m_Boolean);
    setTabOrder(m_Boolean, m_Results);
    setTabOrder(m_Results, m_Search);

    connect(m_Search, &QPushButton::clicked, this, &CGlobalSearchDlg::StartSearch);
    connect(m_Query, &QLineEdit::returnPressed, this, &CGlobalSearchDlg::StartSearch);
    connect(m_Cancel, &QPushButton::clicked, this, &CGlobalSearchDlg::CancelSearch);
    connect(m_GoTo, &QPushButton::clicked, this,
            [this]
            {
                if (CItem* item = m_Results->CurrentResult())
                    emit GoToItem(item);
            });
    connect(m_Results, &QTreeWidget::itemActivated, m_GoTo, &QPushButton::click);
    connect(m_Filter, &QPushButton::clicked, this, [this] { emit FilterTree(m_Results->AllResults()); });
    connect(m_Results, &QTreeWidget::currentItemChanged, this, &CGlobalSearchDlg::UpdateButtons);
    connect(m_Query, &QLineEdit::textChanged, this, &CGlobalSearchDlg::UpdateButtons);
    connect(help, &QPushButton::clicked, this, &CGlobalSearchDlg::ShowHelp);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_ProgressTimer, &QTimer::timeout, this, &CGlobalSearchDlg::ShowProgress);

    resize(640, 440);
    RestoreWindowPlacement(*this, m_Prefs, SettingsKey);
    UpdateButtons();
}

CGlobalSearchDlg::~CGlobalSearchDlg()
{
    StopWorker();
}

void CGlobalSearchDlg::StopWorker()
{
    if (m_RunStatus)
        m_RunStatus->Cancel();
    if (m_Worker.joinable())
        m_Worker.join();
}

void CGlobalSearchDlg::SaveSettings()
{
    if (!m_Prefs)
        return;
    SSearchPrefs& search = m_Prefs->Search();
    search.globalText = ToU16(m_Query->text());
    search.globalMatchCase = m_MatchCase->isChecked();
    search.globalWholeWords = m_WholeWords->isChecked();
    search.globalBoolean = m_Boolean->isChecked();
}

void CGlobalSearchDlg::StartSearch()
{
    if (IsSearching() || m_Query->text().isEmpty())
        return;
    SaveSettings();
    m_Results->clear();
    m_RunStatus = std::make_unique<CSearchStatus>();
    m_Output = std::make_unique<SRunOutput>();
    m_Status->setText(LanguageText(m_Language, u"GLOBALSEARCHDLG_STATUS_SEARCHING"));
    m_Progress->setValue(0);
    m_Progress->show();
    m_Search->hide();
    m_Cancel->show();
    m_Cancel->setFocus();

    auto search = std::make_shared<CTextSearch>(ToU16(m_Query->text()), m_MatchCase->isChecked(),
                                                m_WholeWords->isChecked(), m_Boolean->isChecked());
    m_Worker = std::thread(
        [this, search, status = m_RunStatus.get(), output = m_Output.get()]
        {
            CGlobalSearch walk(*search, *status);
            bool completed = walk.Run(m_Root);
            // The rows' descriptions read each found note's text once more; this is part of the
            // search and stops at Cancel like the walk.
            for (const SSearchResultEntry& entry : walk.Results())
            {
                std::u16string snippet;
                if (auto* note = dynamic_cast<CNoteBase*>(entry.item))
                {
                    if (status->IsCancelled())
                    {
                        completed = false;
                        break;
                    }
                    std::u16string text;
                    if (note->GetPlainText(text))
                        snippet = ResultSnippet(text, *search);
                }
                output->rows.push_back({entry.caption, ResultDescription(*entry.item, snippet), entry.item});
            }
            QMetaObject::invokeMethod(
                this, [this, completed] { FinishSearch(completed); }, Qt::QueuedConnection);
        });
    m_ProgressTimer->start(100);
    UpdateButtons();
}

void CGlobalSearchDlg::CancelSearch()
{
    if (m_RunStatus)
        m_RunStatus->Cancel();
}

void CGlobalSearchDlg::ShowProgress()
{
    if (!m_RunStatus)
        return;
    const uint64_t total = m_RunStatus->Total();
    const uint64_t done = m_RunStatus->Done();
    m_Progress->setValue(total == 0 ? 0 : static_cast<int>(std::min<uint64_t>(done, total) * 1000 / total));
}

void CGlobalSearchDlg::FinishSearch(bool completed)
{
    if (m_Worker.joinable())
        m_Worker.join();
    m_ProgressTimer->stop();
    m_Progress->hide();
    m_Cancel->hide();
    m_Search->show();
    m_Results->SetResults(m_Output->rows);
    m_Status->setText(LanguageText(m_Language, u"GLOBALSEARCHDLG_STATUS_RESULT", QStringLiteral("^N"),
                                   QLocale().toString(static_cast<qulonglong>(m_Output->rows.size()))));
    m_Output.reset();
    m_RunStatus.reset();
    UpdateButtons();
    (m_Results->topLevelItemCount() > 0 ? static_cast<QWidget*>(m_Results) : m_Query)->setFocus();
    emit SearchFinished(completed);
}

void CGlobalSearchDlg::UpdateButtons()
{
    const bool searching = IsSearching();
    m_Search->setEnabled(!searching && !m_Query->text().isEmpty());
    m_GoTo->setEnabled(!searching && m_Results->CurrentResult() != nullptr);
    m_Filter->setEnabled(!searching && m_Results->topLevelItemCount() > 0);
    for (QWidget* input : std::initializer_list<QWidget*>{m_Query, m_MatchCase, m_WholeWords, m_Boolean})
        input->setEnabled(!searching);
}

void CGlobalSearchDlg::ShowHelp()
{
    QMessageBox::information(this, windowTitle(), LanguageText(m_Language, u"GLOBALSEARCHDLG_HELP_TEXT"));
}

void CGlobalSearchDlg::done(int result)
{
    StopWorker();
    SaveSettings();
    SaveWindowPlacement(*this, m_Prefs, SettingsKey);
    QDialog::done(result);
}
