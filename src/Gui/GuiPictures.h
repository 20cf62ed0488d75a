#pragma once
// Pictures and attachments between Qt and the rich text model: a stored bitmap as a QImage for
// painting, and image and other files made into the objects a note embeds.
#include "Shared/RichText/RtfObjectInfo.h"

#include <QImage>
#include <QString>

#include <optional>

// The picture as an image; a null image when its bitmap is incomplete or cannot be decoded.
QImage BitmapToImage(const CDIBitmap& bitmap);
// A 24-bit bitmap of `image`; transparent parts are laid on white, as the page shows them.
CDIBitmap ImageToBitmap(const QImage& image);

// A picture object of `image` (the position is set when it is inserted); nothing for a null
// image.
std::optional<CRtfObjectInfo> PictureObject(const QImage& image);
// True when the file's content is an image Qt can read.
bool IsImageFile(const QString& path);
// An attachment holding the file's bytes under its plain file name; nothing, after a log line,
// when the file cannot be read.
std::optional<CRtfObjectInfo> AttachmentObject(const QString& path);
