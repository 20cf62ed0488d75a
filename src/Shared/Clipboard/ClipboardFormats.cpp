#include "Shared/Clipboard/ClipboardFormats.h"

#include "Shared/Log/Log.h"

namespace
{
struct SFormatText
{
    std::u16string_view name;
    const char16_t* failure;
};

constexpr SFormatText FormatTexts[ClipboardFormatCount] = {
    {u"Korimsen Note Data v100", u"Error: unable to register clipboard note data format (error code %d)."},
    {u"Korimsen Email Data v100", u"Error: unable to register clipboard email data format (error code %d)."},
    {u"Korimsen Tree Data v100", u"Error: unable to register clipboard tree data format (error code %d)."},
    {u"FileNameW", u"Error: unable to register file name clipboard OLE data format (error code %d)."},
    {u"HTML Format", u"Error: unable to register HTML exchange clipboard OLE data format (error code %d)."},
    {u"Rich Text Format",
     u"Error: unable to register RTF exchange clipboard OLE data format (error code %d)."},
    {u"Korimsen Rich Text Format",
     u"Error: unable to register Korimsen Rich Text exchange clipboard OLE data format (error code %d)."},
};
} // namespace

std::u16string_view ClipboardFormatName(EClipboardFormat format)
{
    return FormatTexts[static_cast<size_t>(format)].name;
}

uint32_t CClipboardFormats::Id(EClipboardFormat format)
{
    const size_t index = static_cast<size_t>(format);
    if (m_Ids[index] != 0)
        return m_Ids[index];
    int errorCode = 0;
    const uint32_t id = m_Registrar.RegisterFormat(FormatTexts[index].name, errorCode);
    if (id == 0)
    {
        LogMessage(FormatTexts[index].failure, errorCode);
        return 0;
    }
    m_Ids[index] = id;
    return id;
}
