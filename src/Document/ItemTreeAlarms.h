#pragma once
// The alarm side of the item tree: collecting due alarms over a subtree, and the view of a
// document's tree that the alarm manager works through.
#include "Alarms/AlarmTree.h"

class CFolderBase;
class CItem;

// Appends the due alarms of `folder`'s own alarms and then of its subtree, depth first, children
// in order. A failure while one child is examined ends the walk of that folder quietly.
void CollectDueAlarms(const CFolderBase& folder, OleDate date, OleDate upTo,
                      std::vector<SAlarmQuickInfo>& entries);

// The first item with `id` in `root`'s subtree (root included), or null.
CItem* FindItemById(CFolderBase& root, const CUInt128& id);

class CItemTreeAlarmSource : public IAlarmTree
{
public:
    explicit CItemTreeAlarmSource(CFolderBase* root = nullptr) : m_Root(root) {}

    void SetRoot(CFolderBase* root) { m_Root = root; }

    bool HasRoot() const override { return m_Root != nullptr; }
    void CollectDueAlarms(OleDate date, OleDate upTo, std::vector<SAlarmQuickInfo>& entries) override;
    CAlarmInfo* FindAlarm(const CUInt128& itemId, size_t alarmIndex) override;
    // The item announces the change, so that it is stored.
    void OnAlarmChanged(const CUInt128& itemId) override;

private:
    CFolderBase* m_Root;
};
