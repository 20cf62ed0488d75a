#include "Gui/SearchResultList.h"

#include "Document/FolderBase.h"
#include "Document/Item.h"
#include "Gui/QtText.h"
#include "Shared/TextSearch/TextSearch.h"

#include <QHeaderView>

namespace
{
constexpr int ItemRole = Qt::UserRole;

bool IsLineBreak(char16_t c)
{
    return c == u'\r' || c == u'\n' || c == u'\t' || c == u'\f' || c == u'\v';
}
} // namespace

CSearchResultList::CSearchResultList(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(2);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    header()->setStretchLastSection(true);
    header()->resizeSection(0, 200);
}

void CSearchResultList::SetHeaders(const QString& caption, const QString& description)
{
    setHeaderLabels({caption, description});
}

void CSearchResultList::SetResults(const std::vector<SSearchResultRow>& rows)
{
    clear();
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(rows.size()));
    for (const SSearchResultRow& row : rows)
    {
        auto* item = new QTreeWidgetItem({ToQString(row.caption), ToQString(row.description)});
        item->setData(0, ItemRole, QVariant::fromValue(reinterpret_cast<quintptr>(row.item)));
        item->setToolTip(1, ToQString(row.description));
        items.append(item);
    }
    addTopLevelItems(items);
    if (!items.isEmpty())
        setCurrentItem(items.front());
}

CItem* CSearchResultList::ResultAt(int row) const
{
    const QTreeWidgetItem* item = topLevelItem(row);
    return item ? reinterpret_cast<CItem*>(item->data(0, ItemRole).value<quintptr>()) : nullptr;
}

CItem* CSearchResultList::CurrentResult() const
{
    const QTreeWidgetItem* item = currentItem();
    return item ? reinterpret_cast<CItem*>(item->data(0, ItemRole).value<quintptr>()) : nullptr;
}

std::vector<CItem*> CSearchResultList::AllResults() const
{
    std::vector<CItem*> items;
    for (int i = 0; i < topLevelItemCount(); ++i)
        items.push_back(ResultAt(i));
    return items;
}

std::u16string ResultLocation(const CItem& item)
{
    std::vector<const CItem*> chain;
    for (const CItem* folder = item.GetParent(); folder && folder->GetParent(); folder = folder->GetParent())
        chain.push_back(folder);
    std::u16string location;
    for (auto it = chain.rbegin(); it != chain.rend(); ++it)
    {
        location += u'\\';
        location += (*it)->GetCaption();
    }
    return location.empty() ? std::u16string(u"\\") : location;
}

std::u16string ResultSnippet(std::u16string_view text, const CTextSearch& search, size_t width)
{
    size_t hit = std::u16string_view::npos;
    size_t hitLength = 0;
    for (const SBooleanSearchKeyword& keyword : search.Keywords())
    {
        if (keyword.kind == CTextSearch::KeywordExcluded)
            continue;
        const int32_t at =
            CTextSearch::Find(text, keyword.word, search.IsMatchCase(), search.IsWholeWords(), 0);
        if (at >= 0 && static_cast<size_t>(at) < hit)
        {
            hit = static_cast<size_t>(at);
            hitLength = keyword.word.size();
        }
    }
    if (hit == std::u16string_view::npos)
        hit = 0;
    // A third of the room before the hit, the rest for the hit and what follows it.
    const size_t before = std::min(hit, width / 3);
    size_t start = hit - before;
    size_t end = std::min(text.size(), std::max(hit + hitLength, start + width));
    // Never cut a surrogate pair in two.
    if (start > 0 && start < text.size() && (text[start] & 0xFC00) == 0xDC00)
        ++start;
    if (end < text.size() && end > start && (text[end - 1] & 0xFC00) == 0xD800)
        --end;

    std::u16string snippet;
    if (start > 0)
        snippet += u"...";
    bool lastBlank = !snippet.empty();
    for (size_t i = start; i < end; ++i)
    {
        const char16_t c = IsLineBreak(text[i]) ? u' ' : text[i];
        if (c == u' ' && lastBlank)
            continue;
        snippet += c;
        lastBlank = c == u' ';
    }
    while (!snippet.empty() && snippet.back() == u' ')
        snippet.pop_back();
    if (end < text.size())
        snippet += u"...";
    return snippet;
}

std::u16string ResultDescription(const CItem& item, std::u16string_view snippet)
{
    std::u16string description = ResultLocation(item);
    if (!snippet.empty())
    {
        description += u" - ";
        description += snippet;
    }
    return description;
}
