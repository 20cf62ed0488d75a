#include "Shared/RichText/RtfReaderKeywords.h"

#include <algorithm>
#include <array>
#include <utility>

namespace
{
using K = ERtfKeyword;
using SEntry = std::pair<std::string_view, ERtfKeyword>;

// Sorted by name for the binary search.
constexpr std::array Entries = std::to_array<SEntry>({
    {"aftnsep", K::SkippedDestination},
    {"aftnsepc", K::SkippedDestination},
    {"annotation", K::SkippedDestination},
    {"ansicpg", K::AnsiCodePage},
    {"author", K::SkippedDestination},
    {"b", K::Bold},
    {"bin", K::Binary},
    {"bkmkend", K::SkippedDestination},
    {"bkmkstart", K::SkippedDestination},
    {"blue", K::Blue},
    {"bullet", K::Bullet},
    {"cb", K::BackColour},
    {"cell", K::Cell},
    {"cf", K::TextColour},
    {"chcbpat", K::BackColour},
    {"colorschememapping", K::SkippedDestination},
    {"colortbl", K::ColourTable},
    {"comment", K::SkippedDestination},
    {"cpg", K::GroupCodePage},
    {"datastore", K::SkippedDestination},
    {"deff", K::DefaultFont},
    {"dibitmap", K::DibBitmap},
    {"doccomm", K::SkippedDestination},
    {"docvar", K::SkippedDestination},
    {"emdash", K::EmDash},
    {"emfblip", K::OtherPictureFormat},
    {"endash", K::EnDash},
    {"f", K::Font},
    {"fcharset", K::Charset},
    {"fdecor", K::FamilyDecor},
    {"filetbl", K::SkippedDestination},
    {"fldinst", K::SkippedDestination},
    {"fmodern", K::FamilyModern},
    {"fnil", K::FamilyNil},
    {"fonttbl", K::FontTable},
    {"footer", K::SkippedDestination},
    {"footerf", K::SkippedDestination},
    {"footerl", K::SkippedDestination},
    {"footerr", K::SkippedDestination},
    {"footnote", K::SkippedDestination},
    {"fprq", K::Pitch},
    {"froman", K::FamilyRoman},
    {"fs", K::FontSize},
    {"fscript", K::FamilyScript},
    {"fswiss", K::FamilySwiss},
    {"ftnsep", K::SkippedDestination},
    {"ftnsepc", K::SkippedDestination},
    {"fttruetype", K::TrueType},
    {"generator", K::SkippedDestination},
    {"green", K::Green},
    {"header", K::SkippedDestination},
    {"headerf", K::SkippedDestination},
    {"headerl", K::SkippedDestination},
    {"headerr", K::SkippedDestination},
    {"highlight", K::BackColour},
    {"i", K::Italic},
    {"info", K::SkippedDestination},
    {"jpegblip", K::JpegBlip},
    {"keywords", K::SkippedDestination},
    {"latentstyles", K::SkippedDestination},
    {"ldblquote", K::LeftDoubleQuote},
    {"line", K::Par},
    {"listoverridetable", K::SkippedDestination},
    {"listtable", K::SkippedDestination},
    {"lquote", K::LeftQuote},
    {"mac", K::MacCodePage},
    {"macpict", K::OtherPictureFormat},
    {"nestcell", K::Cell},
    {"nonshppict", K::SkippedDestination},
    {"objdata", K::SkippedDestination},
    {"operator", K::SkippedDestination},
    {"par", K::Par},
    {"pard", K::ParagraphDefaults},
    {"pc", K::PcCodePage},
    {"pca", K::PcaCodePage},
    {"pgdsctbl", K::SkippedDestination},
    {"pict", K::Picture},
    {"plain", K::Plain},
    {"pmmetafile", K::OtherPictureFormat},
    {"pngblip", K::PngBlip},
    {"private", K::SkippedDestination},
    {"qc", K::AlignCentre},
    {"qd", K::AlignLeft},
    {"qj", K::AlignLeft},
    {"ql", K::AlignLeft},
    {"qr", K::AlignRight},
    {"rdblquote", K::RightDoubleQuote},
    {"red", K::Red},
    {"revtbl", K::SkippedDestination},
    {"row", K::Par},
    {"rquote", K::RightQuote},
    {"rsidtbl", K::SkippedDestination},
    {"shppict", K::ShapePicture},
    {"stylesheet", K::SkippedDestination},
    {"subject", K::SkippedDestination},
    {"tab", K::Tab},
    {"tc", K::SkippedDestination},
    {"template", K::SkippedDestination},
    {"themedata", K::SkippedDestination},
    {"title", K::SkippedDestination},
    {"txe", K::SkippedDestination},
    {"u", K::Unicode},
    {"uc", K::UnicodeSkip},
    {"ul", K::Underline},
    {"uld", K::Underline},
    {"uldash", K::Underline},
    {"uldashd", K::Underline},
    {"uldashdd", K::Underline},
    {"uldb", K::Underline},
    {"ulnone", K::UnderlineNone},
    {"ulth", K::Underline},
    {"ulw", K::Underline},
    {"ulwave", K::Underline},
    {"userprops", K::SkippedDestination},
    {"v", K::Hidden},
    {"wbitmap", K::OtherPictureFormat},
    {"wmetafile", K::OtherPictureFormat},
    {"xe", K::SkippedDestination},
    {"xmlnstbl", K::SkippedDestination},
});

constexpr bool IsSorted()
{
    for (size_t i = 1; i < Entries.size(); ++i)
        if (!(Entries[i - 1].first < Entries[i].first))
            return false;
    return true;
}
static_assert(IsSorted(), "the keyword table must stay sorted by name");
} // namespace

ERtfKeyword FindRtfKeyword(std::string_view name)
{
    const auto found =
        std::lower_bound(Entries.begin(), Entries.end(), name,
                         [](const SEntry& entry, std::string_view key) { return entry.first < key; });
    return found != Entries.end() && found->first == name ? found->second : ERtfKeyword::Unknown;
}
