#pragma once
// Turns the data of an RTF \pict group into the stored picture form, a packed bitmap. Packed
// device-independent bitmaps are taken as they are, PNG and JPEG pictures are decoded; metafiles
// and device-dependent bitmaps are not converted.
#include "Shared/RichText/DIBitmap.h"

#include <optional>
#include <string_view>

enum class ERtfPictureFormat
{
    Unknown,
    Dib,  // \dibitmap
    Png,  // \pngblip
    Jpeg, // \jpegblip
    Other // metafiles, \wbitmap, \macpict
};

// The picture as a packed bitmap, or nothing after one warning line naming why it was skipped.
std::optional<CDIBitmap> ConvertRtfPicture(ERtfPictureFormat format, std::string_view data);

// Exposed for tests: the PNG decoder on its own. Nothing when the data is not a PNG picture this
// decoder handles (plain or interlaced, any colour type, 1 to 16 bits per sample).
std::optional<CDIBitmap> DecodePngToBitmap(std::string_view data);
