// The global search window: a search on its worker thread, its results and the go-to and filter
// requests, Cancel in the middle of a long walk, and the remembered query.
#include "Gui/GlobalSearchDlg.h"

#include "DialogTestSupport.h"
#include "Document/MemFolder.h"
#include "Document/MemNote.h"
#include "Gui/QtText.h"
#include "GuiTestModal.h"
#include "Shared/TextSearch/TextSearch.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace
{
template <class T> T* Add(CFolderBase& parent, const std::u16string& caption, std::u16string_view text = {})
{
    auto item = std::make_unique<T>();
    item->SetCaption(caption);
    if constexpr (std::is_same_v<T, CMemNote>)
        item->GetRichText()->BuildFromPlainText(text);
    return static_cast<T*>(parent.AddChild(std::move(item)));
}

// A note whose text takes a while to read, so that a search over many of them is long.
class CSlowNote : public CMemNote
{
public:
    bool GetPlainText(std::u16string& text) override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return CMemNote::GetPlainText(text);
    }
};

class GlobalSearchDlgTest : public ::testing::Test
{
protected:
    SDialogTestEnv env;
    CPreferences prefs{env.Env()};
    CMemFolder root;

    QString Status(const char16_t* key) { return ToQString(env.english.GetString(key)); }
};

TEST_F(GlobalSearchDlgTest, BooleanSearchListsMatchingNotesWithPlaceAndSnippetAndGoesToOne)
{
    root.SetCaption(u"root");
    CMemFolder* garden = Add<CMemFolder>(root, u"Garden");
    CMemFolder* beds = Add<CMemFolder>(*garden, u"Beds");
    CMemNote* roses =
        Add<CMemNote>(*beds, u"Roses",
                      u"Planting notes.\r\nThe red roses need water every morning before the sun "
                      u"comes up, and the soil should stay loose.");
    Add<CMemNote>(*beds, u"Tulips", u"red tulips, but blue pots"); // excluded word
    Add<CMemNote>(*garden, u"red water", u"nothing here");         // caption alone: not listed
    CMemNote* pond = Add<CMemNote>(root, u"Pond", u"Water lilies; RED fish");
    Add<CMemNote>(root, u"Shed", u"tools");

    CGlobalSearchDlg dlg(root, &prefs, &env.english);
    dlg.QueryEdit()->setText(QStringLiteral("+red -blue water"));
    dlg.BooleanCheck()->setChecked(true);
    std::vector<CItem*> goneTo;
    std::vector<CItem*> filtered;
    QObject::connect(&dlg, &CGlobalSearchDlg::GoToItem, [&](CItem* item) { goneTo.push_back(item); });
    QObject::connect(&dlg, &CGlobalSearchDlg::FilterTree,
                     [&](const std::vector<CItem*>& items) { filtered = items; });
    bool completed = false;
    QObject::connect(&dlg, &CGlobalSearchDlg::SearchFinished, [&](bool c) { completed = c; });

    dlg.SearchButton()->click();
    EXPECT_TRUE(dlg.IsSearching() || completed);
    ASSERT_TRUE(WaitFor([&] { return !dlg.IsSearching() && completed; }));

    CSearchResultList* list = dlg.ResultList();
    ASSERT_EQ(list->topLevelItemCount(), 2);
    EXPECT_EQ(list->ResultAt(0), roses);
    EXPECT_EQ(list->ResultAt(1), pond);
    EXPECT_EQ(list->topLevelItem(0)->text(0), QStringLiteral("Roses"));
    EXPECT_EQ(
        list->topLevelItem(0)->text(1),
        QStringLiteral("\\Garden\\Beds - Planting notes. The red roses need water every morning before the "
                       "sun comes up,..."));
    EXPECT_EQ(list->topLevelItem(1)->text(1), QStringLiteral("\\ - Water lilies; RED fish"));
    EXPECT_EQ(dlg.StatusLabel()->text(),
              Status(u"GLOBALSEARCHDLG_STATUS_RESULT").replace(QStringLiteral("^N"), QStringLiteral("2")));
    EXPECT_FALSE(dlg.Progress()->isVisible());

    list->setCurrentItem(list->topLevelItem(1));
    dlg.GoToButton()->click();
    EXPECT_EQ(goneTo, std::vector<CItem*>{pond});
    dlg.FilterButton()->click();
    EXPECT_EQ(filtered, (std::vector<CItem*>{roses, pond}));

    // The query and the options are what the next dialog starts with.
    dlg.reject();
    EXPECT_EQ(prefs.Search().globalText, u"+red -blue water");
    EXPECT_TRUE(prefs.Search().globalBoolean);
    EXPECT_FALSE(prefs.Search().globalMatchCase);
    CGlobalSearchDlg again(root, &prefs, &env.english);
    EXPECT_EQ(again.QueryEdit()->text(), QStringLiteral("+red -blue water"));
    EXPECT_TRUE(again.BooleanCheck()->isChecked());
}

TEST_F(GlobalSearchDlgTest, CancelEndsALongSearchEarlyAndTheWindowAnswersMeanwhile)
{
    constexpr int NoteCount = 3000; // about six seconds of reading
    for (int i = 0; i < NoteCount; ++i)
        Add<CSlowNote>(root, u"note", u"a needle in the text");
    CGlobalSearchDlg dlg(root, &prefs, &env.english);
    CExpectModal shown([&](QWidget* modal) { return modal == &dlg; });
    dlg.show();
    dlg.QueryEdit()->setText(QStringLiteral("needle"));
    bool finished = false;
    bool completed = true;
    QObject::connect(&dlg, &CGlobalSearchDlg::SearchFinished,
                     [&](bool c)
                     {
                         finished = true;
                         completed = c;
                     });
    const auto start = std::chrono::steady_clock::now();
    dlg.StartSearch();
    EXPECT_TRUE(dlg.CancelButton()->isVisible());
    EXPECT_FALSE(dlg.QueryEdit()->isEnabled());
    EXPECT_EQ(dlg.StatusLabel()->text(), Status(u"GLOBALSEARCHDLG_STATUS_SEARCHING"));
    // The event loop keeps running while the worker walks: the progress bar moves.
    ASSERT_TRUE(WaitFor([&] { return dlg.Progress()->value() > 0; }));
    EXPECT_FALSE(finished);
    dlg.CancelButton()->click();
    ASSERT_TRUE(WaitFor([&] { return finished; }, 2000));
    EXPECT_FALSE(completed);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
    EXPECT_LT(dlg.ResultList()->topLevelItemCount(), NoteCount);
    EXPECT_TRUE(dlg.SearchButton()->isVisible());
    EXPECT_TRUE(dlg.QueryEdit()->isEnabled());
}

TEST(SearchResultSnippet, CentresTheFirstHitAndKeepsSurrogatePairsWhole)
{
    const CTextSearch search(u"zeta", false, false, false);
    std::u16string text(100, u'a');
    text += u"\r\n\r\nZETA";
    text += std::u16string(100, u'b');
    const std::u16string snippet = ResultSnippet(text, search, 30);
    EXPECT_EQ(snippet, u"...aaaaaa ZETA" + std::u16string(16, u'b') + u"...");

    // No word found: the start of the text; a pair at the cut is left out whole.
    const CTextSearch other(u"+absent", false, false, true);
    std::u16string emoji = u"abcd";
    emoji += u"\U0001F600";
    EXPECT_EQ(ResultSnippet(emoji, other, 5), u"abcd...");
    EXPECT_EQ(ResultSnippet(u"short", other, 30), u"short");
}
} // namespace
