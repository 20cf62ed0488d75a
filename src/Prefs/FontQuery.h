#pragma once
// The installed fonts are asked through this interface, so the preferences can pick a default
// face without a GUI toolkit (the GUI answers it from its font database, tests from a list).
#include <string>
#include <string_view>

class IFontQuery
{
public:
    virtual ~IFontQuery() = default;
    // True when a font family of exactly this face name is installed.
    virtual bool HasFace(std::u16string_view face) const = 0;
    // The face the system uses for its default sans-serif text; empty when it has none.
    virtual std::u16string SystemSansFace() const = 0;
};

// The first of "Segoe UI", "Tahoma" and "Arial" that is installed; otherwise the system's sans
// face (on Linux none of the three is usually present). When there is no font at all, logs
// "Error: Cannot find any fonts on this system!" and answers an empty face, which makes the
// text layer use whatever the system falls back to.
std::u16string ChooseDefaultFontFace(const IFontQuery& fonts);
