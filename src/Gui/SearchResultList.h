#pragma once
// The global search's result list: one row per found item with its caption and a description
// (where the item lives and, for a note, its text around the first hit).
#include <QTreeWidget>

#include <string>
#include <vector>

class CItem;
class CTextSearch;

struct SSearchResultRow
{
    std::u16string caption;
    std::u16string description;
    CItem* item = nullptr;
};

class CSearchResultList : public QTreeWidget
{
    Q_OBJECT

public:
    explicit CSearchResultList(QWidget* parent = nullptr);

    void SetHeaders(const QString& caption, const QString& description);
    void SetResults(const std::vector<SSearchResultRow>& rows);
    // The item of the current row, or null.
    CItem* CurrentResult() const;
    CItem* ResultAt(int row) const;
    std::vector<CItem*> AllResults() const;
};

// The folders from the top of the tree down to the item's parent, "\" between them; the root
// folder, which the user never sees, is left out.
std::u16string ResultLocation(const CItem& item);

// Up to about `width` characters of `text` around the first occurrence of one of the query's
// words that are not excluded, line breaks shown as blanks and cut ends marked with "...";
// the start of the text when no word is found.
std::u16string ResultSnippet(std::u16string_view text, const CTextSearch& search, size_t width = 80);

// The description column: the location, then " - " and the snippet when there is one.
std::u16string ResultDescription(const CItem& item, std::u16string_view snippet);
