#include "Gui/GuiPictures.h"

#include "Gui/QtText.h"
#include "Shared/FxEdit/FxEditFileNames.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/RgbImage.h"

#include <QFile>
#include <QImageReader>
#include <QPainter>

namespace
{
constexpr qsizetype BitmapFileHeaderSize = 14;

void PutU32(QByteArray& bytes, qsizetype at, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}
} // namespace

QImage BitmapToImage(const CDIBitmap& bitmap)
{
    if (bitmap.IsEmpty() || !bitmap.HasAllPixels())
        return {};
    // Qt reads bitmaps as files: the packed bitmap behind the 14-byte file header, whose last
    // field is where the pixel rows begin.
    const std::vector<uint8_t>& packed = bitmap.Packed();
    const SDIBitmapHeader header = bitmap.Header();
    const uint64_t rowsAt = BitmapFileHeaderSize + header.size + header.ColourTableBytes();
    QByteArray file(BitmapFileHeaderSize, '\0');
    file[0] = 'B';
    file[1] = 'M';
    PutU32(file, 2, static_cast<uint32_t>(BitmapFileHeaderSize + static_cast<qsizetype>(packed.size())));
    PutU32(file, 10, static_cast<uint32_t>(rowsAt));
    file.append(reinterpret_cast<const char*>(packed.data()), static_cast<qsizetype>(packed.size()));
    QImage image;
    if (!image.loadFromData(file, "BMP"))
        return {};
    return image;
}

CDIBitmap ImageToBitmap(const QImage& image)
{
    QImage flat(image.size(), QImage::Format_RGB888);
    flat.fill(Qt::white);
    {
        QPainter painter(&flat);
        painter.drawImage(0, 0, image);
    }
    SRgbImage rgb;
    rgb.width = static_cast<uint32_t>(flat.width());
    rgb.height = static_cast<uint32_t>(flat.height());
    rgb.rgb.resize(static_cast<size_t>(rgb.width) * rgb.height * 3);
    for (int y = 0; y < flat.height(); ++y)
        std::copy_n(flat.constScanLine(y), rgb.width * 3,
                    rgb.rgb.begin() + static_cast<ptrdiff_t>(y) * rgb.width * 3);
    return RgbImageToBitmap(rgb);
}

std::optional<CRtfObjectInfo> PictureObject(const QImage& image)
{
    if (image.isNull())
        return std::nullopt;
    CRtfObjectInfo picture(CRtfObjectInfo::PictureType, 0);
    picture.SetPicture(ImageToBitmap(image));
    return picture;
}

bool IsImageFile(const QString& path)
{
    QImageReader reader(path);
    return reader.canRead();
}

std::optional<CRtfObjectInfo> AttachmentObject(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
    {
        LogMessage(u"Error: Cannot read attachment file (file path: %s, cause - %d).", ToU16(path),
                   static_cast<int>(file.error()));
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
    {
        LogMessage(u"Error: Cannot read attachment file (file path: %s, cause - %d).", ToU16(path),
                   static_cast<int>(file.error()));
        return std::nullopt;
    }
    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 0);
    attachment.SetFileName(SanitisedAttachmentName(ToU16(path)));
    CHugeMemory data;
    data.Append(std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(bytes.constData()),
                                         static_cast<size_t>(bytes.size())));
    attachment.SetData(std::move(data));
    return attachment;
}
