#pragma once
// A note: an item with five stored attribute words and a rich text body.
//
// The attribute words are kept and stored for the note's display settings; the tree gives them
// no meaning of its own.
#include "Document/Item.h"

#include <array>
#include <cstdint>
#include <string>

class CNoteBase : public CItem
{
public:
    static constexpr size_t AttributeCount = 5;

    explicit CNoteBase(bool notify) : CItem(notify) {}

    bool IsKind(EItemKind kind) const override { return kind == EItemKind::Note; }

    uint32_t GetAttribute(size_t index) const { return index < AttributeCount ? m_Attributes[index] : 0; }
    void SetAttribute(size_t index, uint32_t value);

    // The note's text; a storage-backed note reads it from its record the first time it is asked.
    // Null when it cannot be read.
    virtual CRichTextDocument* GetRichText() = 0;
    // The plain text of the note's body, for searching. This one derives it from GetRichText; a
    // storage-backed note whose text is not in memory reads its stored plain text instead, so a
    // search does not load every rich text. False, after the reader's log line, when it cannot be
    // read.
    virtual bool GetPlainText(std::u16string& text);

protected:
    void WriteDump(CItemTextDumpWriter& writer) override;

private:
    std::array<uint32_t, AttributeCount> m_Attributes{};
};
