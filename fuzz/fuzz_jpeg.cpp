// Decodes arbitrary bytes as a JPEG picture. Nothing may crash, hang or allocate beyond a fixed
// multiple of the input; a picture that decodes has exactly its pixels.
#include "Shared/RichText/JpegDecoder.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    SRgbImage image;
    std::u16string failure;
    if (DecodeJpeg(std::string_view(reinterpret_cast<const char*>(data), size), image, failure) &&
        image.rgb.size() != size_t(image.width) * image.height * 3)
        std::abort();
    return 0;
}
