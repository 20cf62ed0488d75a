#pragma once
// Message boxes reach the screen through this interface; tests record them, the GUI shows them.
#include <string>

enum class EMsgIcon
{
    None,
    Information,
    Warning,
    Error,
    Question
};

enum class EMsgButtons
{
    Ok,
    OkCancel,
    YesNo,
    YesNoCancel
};

enum class EMsgResult
{
    Ok,
    Cancel,
    Yes,
    No
};

class IMessageBox
{
public:
    virtual ~IMessageBox() = default;
    virtual EMsgResult Show(const std::u16string& text, EMsgIcon icon,
                            EMsgButtons buttons = EMsgButtons::Ok) = 0;
};
