#pragma once
// A recording tree host and small builders for item tree tests.
#include "Document/MemFolder.h"
#include "Document/MemNote.h"
#include "Shared/Base/MessageBox.h"

#include <string>
#include <utility>
#include <vector>

class CRecordingHost : public IItemTreeHost, public IMessageBox
{
public:
    void OnItemChanged(const CUInt128& itemId, EItemChange change) override
    {
        changes.emplace_back(itemId, change);
    }
    std::u16string GetText(std::u16string_view key) override { return u"text of " + std::u16string(key); }
    IMessageBox* GetMessageBox() override { return this; }
    EMsgResult Show(const std::u16string& text, EMsgIcon icon, EMsgButtons) override
    {
        shown.emplace_back(text, icon);
        return EMsgResult::Ok;
    }

    std::vector<std::pair<CUInt128, EItemChange>> changes;
    std::vector<std::pair<std::u16string, EMsgIcon>> shown;
};

inline CMemFolder* AddFolder(CFolderBase& parent, std::u16string caption,
                             int kind = CFolderBase::OrdinaryFolderKind)
{
    auto folder = std::make_unique<CMemFolder>(false, kind);
    folder->SetCaption(std::move(caption));
    return static_cast<CMemFolder*>(parent.AddChild(std::move(folder)));
}

inline CMemNote* AddNote(CFolderBase& parent, std::u16string caption)
{
    auto note = std::make_unique<CMemNote>();
    note->SetCaption(std::move(caption));
    return static_cast<CMemNote*>(parent.AddChild(std::move(note)));
}
