#pragma once
// Pictures the user inserts from image files: Windows bitmaps (any info header size), JPEG and
// PNG files become the packed bitmap a note stores.
#include "Shared/RichText/DIBitmap.h"

#include <optional>
#include <string>
#include <string_view>

// The picture in `bytes`, or nothing with `failure` naming why the file cannot be used.
std::optional<CDIBitmap> PictureFromImageFile(std::string_view bytes, std::u16string& failure);
