#pragma once
// The common part of every item of the outline: folders and notes, in memory or backed by a
// record. Ownership runs downwards only: a folder owns its children, an item owns its extended
// data and its alarms; the parent pointer does not own.
#include "Alarms/AlarmsArray.h"
#include "Document/ItemExtendedData.h"
#include "Document/ItemTreeHost.h"
#include "Shared/Base/UInt128.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

class CFolderBase;
class CItemTextDumpWriter;
class CRichTextDocument;
struct SFontDescription;

enum class EItemKind : int
{
    Folder = 1,
    Note = 2
};

// Which children a counting or state query looks at.
enum class EChildKind : int
{
    Any = 0,
    Folders = 1
};

// How the tree view draws a folder's expand box.
enum class EChildState : int
{
    NotLoadedSomeKnown = 0,
    HasChildren = 1,
    NotLoadedNoneKnown = 2,
    NoChildren = 3
};

// CountItems flag: descend into sub-folders instead of counting the direct children only.
constexpr uint32_t CountItemsDeep = 1;

class CItem
{
public:
    static constexpr uint32_t DefaultTextColour = 0xFEFFFF;

    explicit CItem(bool notify);
    virtual ~CItem();
    CItem(const CItem&) = delete;
    CItem& operator=(const CItem&) = delete;

    virtual bool IsKind(EItemKind kind) const = 0;
    // Children of a note: none. See CFolderBase for folders.
    virtual size_t CountChildren(EChildKind which, bool recursive) const;
    // Returns the number of items counted and adds them to `notes` and `folders` by kind.
    virtual size_t CountItems(size_t& notes, size_t& folders, uint32_t flags) const;
    // State setters: a folder applies them to itself and then to every child.
    virtual void SetOpen(bool open);
    virtual void SetNotify(bool notify);
    virtual EChildState GetChildState(EChildKind which, bool recursive) const;
    virtual const std::u16string& GetCaption() const { return m_Caption; }
    virtual void SetCaption(std::u16string caption);
    // The parent's path, "\" and the caption.
    virtual std::u16string GetPath() const;
    // 1 for an item without parent, the parent's depth + 1 otherwise.
    virtual int GetDepth() const;
    // Whether `ancestor` lies on the parent chain (an item is not its own descendant).
    virtual bool IsDescendantOf(const CItem& ancestor) const;
    // Bytes the item takes in memory, for the document's statistics; a folder adds its subtree.
    virtual size_t EstimateMemory() const;
    virtual CItemExtendedData* GetExtendedData(bool create);
    virtual CAlarmsArray* GetAlarms(bool create);
    // Announces a change to the tree's host when the notify flag is set.
    virtual void NotifyChange(EItemChange change);
    // Deleting a note is always allowed; folders protect the default folders.
    virtual bool CanDelete(bool childrenOnly, bool showMessage);

    // Appends the item's subtree as text to `target`: headings in `defaultFont` with weight 900,
    // notes with their own formats. On running out of memory the dump stops, one line is logged
    // and the result is false.
    bool DumpText(CRichTextDocument& target, const SFontDescription& defaultFont);

    CFolderBase* GetParent() const { return m_Parent; }
    const CUInt128& GetId() const { return m_Id; }
    void SetId(const CUInt128& id) { m_Id = id; }
    bool IsOpen() const { return m_Open != 0; }
    bool IsNotifying() const { return m_Notify != 0; }
    const CItemExtendedData* FindExtendedData() const { return m_ExtendedData.get(); }
    const CAlarmsArray* FindAlarms() const { return m_Alarms.get(); }
    // Frees an extended data block whose bytes are all zero (done before every save).
    void DropEmptyExtendedData();

    // Text colour: the extended data's, else the default colour. Background: 0 unless set.
    uint32_t GetTextColour() const;
    uint32_t GetBackColour() const;

    // Moves the item out of its folder into `target` at `index` (appended when beyond the end).
    // Refused, with a log line, for an item without parent and for a move into the item's own
    // subtree.
    bool MoveTo(CFolderBase& target, size_t index = SIZE_MAX);

    // The host of the tree the item belongs to, or null.
    IItemTreeHost* FindTreeHost() const;

protected:
    friend class CFolderBase;

    // Storage-backed items create their own kind of extended data block.
    virtual std::unique_ptr<CItemExtendedData> CreateExtendedData() const;
    virtual void WriteDump(CItemTextDumpWriter& writer) = 0;
    void SetOpenFlagOnly(bool open);

    // Shows the language text of `key` in an error message box and logs it.
    void ShowRefusal(const char16_t* key) const;

private:
    std::u16string m_Caption;
    CFolderBase* m_Parent = nullptr;
    uint8_t m_Open = 1;
    uint8_t m_Notify;
    CUInt128 m_Id;
    std::unique_ptr<CItemExtendedData> m_ExtendedData;
    std::unique_ptr<CAlarmsArray> m_Alarms;
};
