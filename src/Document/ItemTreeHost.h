#pragma once
// What the item tree needs from the application: it hears about changes to items (so they can be
// saved and the views redrawn), and it supplies the language texts and the message box for the
// refusals that the user sees. The host is attached to the topmost folder of a tree; items find it
// through their parent chain.
#include "Shared/Base/UInt128.h"

#include <string>
#include <string_view>

class IMessageBox;

// Change codes announced by items whose notify flag is set.
enum class EItemChange : int
{
    Content = 4,   // caption, open flag, attributes or extended data
    Children = 10, // a child was added, removed or moved away
    Alarms = 11    // the alarm array was created or changed
};

class IItemTreeHost
{
public:
    virtual ~IItemTreeHost() = default;
    virtual void OnItemChanged(const CUInt128& itemId, EItemChange change) = 0;
    // The language module's text for `key`.
    virtual std::u16string GetText(std::u16string_view key) = 0;
    // Null when no message box can be shown.
    virtual IMessageBox* GetMessageBox() = 0;
};
