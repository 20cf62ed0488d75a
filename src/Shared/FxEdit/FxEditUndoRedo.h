#pragma once
// The editor's undo history. It records whole paragraph lines: a copy before and after each
// change, so it never needs to know what kind of change it was. One quantum is one user-visible
// change with its translated label and the caret and anchor before and after it, kept as
// character offsets so that a quantum stays valid when the text is wrapped differently later.
// The editor names this class CFxEdit::CUndoRedo.
#include "Shared/RichText/RtfTextLine.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class CFxEdit;

struct SFxCharPosition
{
    int32_t line = 0;
    int32_t offset = 0;
    bool operator==(const SFxCharPosition&) const = default;
};

class CFxEditUndoRedo
{
public:
    enum EStepKind : int32_t
    {
        LineChanged = 1,
        LineDeleted = 2,
        LineInserted = 3
    };

    struct SOneUndoStep
    {
        int32_t line = 0;
        int32_t kind = LineChanged;
        std::unique_ptr<CRtfTextLine> before;
        std::unique_ptr<CRtfTextLine> after;
    };

    class COneUndoQuant
    {
    public:
        std::u16string label;
        SFxCharPosition caretBefore;
        SFxCharPosition anchorBefore;
        std::vector<SOneUndoStep> steps;
        SFxCharPosition caretAfter;
        SFxCharPosition anchorAfter;
        uint64_t bytes = 0; // an estimate of the memory the copies take
    };

    explicit CFxEditUndoRedo(CFxEdit& owner) : m_Owner(owner) {}
    CFxEditUndoRedo(const CFxEditUndoRedo&) = delete;
    CFxEditUndoRedo& operator=(const CFxEditUndoRedo&) = delete;

    void BeginUndoQuant(const std::u16string& label);
    // The copies are taken by value so that callers can hand over lines they no longer need.
    void AddLineChanged(int32_t line, CRtfTextLine before, CRtfTextLine after);
    void AddLineDeleted(int32_t line); // copies the editor's line before it is removed
    void AddLineInserted(int32_t line, CRtfTextLine inserted);
    void EndUndoQuant();

    bool CanUndo(std::u16string* text = nullptr) const;
    bool CanRedo(std::u16string* text = nullptr) const;
    bool Undo();
    bool Redo();
    void Clear();

    bool IsOpen() const { return m_Open; }
    int32_t Current() const { return m_Current; }
    size_t QuantCount() const { return m_Quanta.size(); }
    const COneUndoQuant& Quant(size_t index) const { return m_Quanta.at(index); }

    // The oldest quanta are dropped when the copies grow past this many bytes. Once any was
    // dropped, undoing everything left no longer brings back the unmodified text.
    void SetMemoryLimit(uint64_t bytes) { m_MemoryLimit = bytes; }
    uint64_t MemoryLimit() const { return m_MemoryLimit; }
    uint64_t MemoryUsed() const { return m_Bytes; }
    bool DroppedOlderChanges() const { return m_Dropped; }
    // For a change whose own quanta would push every older one out of the bound before it ends:
    // forgets the whole history as dropped.
    void DropAll();
    // The memory a step's copy of `line` is counted with.
    static uint64_t LineBytes(const CRtfTextLine& line);

private:
    void AddStep(int32_t line, int32_t kind, std::unique_ptr<CRtfTextLine> before,
                 std::unique_ptr<CRtfTextLine> after);
    void DropOldestWhileOverLimit();
    void ApplyStep(const SOneUndoStep& step, bool undo);
    std::u16string MenuText(const char16_t* commandKey, const COneUndoQuant* quant) const;

    CFxEdit& m_Owner;
    bool m_Open = false;
    std::vector<COneUndoQuant> m_Quanta;
    int32_t m_Current = -1;
    uint64_t m_Bytes = 0;
    uint64_t m_MemoryLimit = 256ull * 1024 * 1024;
    bool m_Dropped = false;
};
