#pragma once
// The clipboard formats the application registers by name. Each is registered on first use and
// its identifier kept for the life of the registry object (the application keeps one for the
// whole run); a failed registration is logged, gives 0 and is tried again next time.
#include <array>
#include <cstdint>
#include <string_view>

enum class EClipboardFormat
{
    NoteData,         // "Korimsen Note Data v100"
    EmailData,        // "Korimsen Email Data v100"
    TreeData,         // "Korimsen Tree Data v100"
    FileName,         // "FileNameW"
    Html,             // "HTML Format"
    Rtf,              // "Rich Text Format"
    KorimsenRichText, // "Korimsen Rich Text Format"
};
inline constexpr size_t ClipboardFormatCount = 7;

std::u16string_view ClipboardFormatName(EClipboardFormat format);

// The platform's format registration (RegisterClipboardFormatW in spirit).
class IClipboardFormatRegistrar
{
public:
    virtual ~IClipboardFormatRegistrar() = default;
    // The format's identifier, or 0 with the platform's error code in `errorCode`.
    virtual uint32_t RegisterFormat(std::u16string_view name, int& errorCode) = 0;
};

class CClipboardFormats
{
public:
    explicit CClipboardFormats(IClipboardFormatRegistrar& registrar) : m_Registrar(registrar) {}

    // The identifier, registering the format when not yet known; 0 after logging on failure.
    uint32_t Id(EClipboardFormat format);

private:
    IClipboardFormatRegistrar& m_Registrar;
    std::array<uint32_t, ClipboardFormatCount> m_Ids{};
};
