#include "Prefs/FontQuery.h"

#include "Shared/Log/Log.h"

std::u16string ChooseDefaultFontFace(const IFontQuery& fonts)
{
    for (const char16_t* face : {u"Segoe UI", u"Tahoma", u"Arial"})
    {
        if (fonts.HasFace(face))
            return face;
    }
    std::u16string systemFace = fonts.SystemSansFace();
    if (systemFace.empty())
        LogMessage(u"Error: Cannot find any fonts on this system!");
    return systemFace;
}
