// Pictures, attachments and file links at the caret; opening and saving attachments.
#include "Shared/Base/File.h"
#include "Shared/Base/Format.h"
#include "Shared/FxEdit/FxEdit.h"
#include "Shared/FxEdit/FxEditFileNames.h"
#include "Shared/FxEdit/PictureFile.h"
#include "Shared/LanguagesMgr/StringTemplate.h"
#include "Shared/Log/Log.h"

namespace
{
constexpr std::u16string_view AllFilesFilter = u"All Files (*.*)|*.*||";
constexpr std::u16string_view ImagesFilter =
    u"Images (*.jpg; *.jpeg; *.gif; *.bmp)|*.jpg;*.jpeg;*.gif;*.bmp||";

bool WriteAttachmentData(IFileSystem& fs, const std::u16string& path, const CRtfObjectInfo& attachment,
                         int& cause)
{
    cause = 0;
    std::unique_ptr<IFile> file = fs.Open(path, EFileOpen::CreateTruncate, EFileShare::ShareAll, cause);
    if (!file)
        return false;
    uint64_t offset = 0;
    if (const auto& data = attachment.Data())
    {
        for (size_t i = 0; i < data->ChunkCount(); ++i)
        {
            const std::span<const uint8_t> chunk = data->Chunk(i);
            if (!file->WriteAt(offset, chunk.data(), chunk.size()))
            {
                cause = file->LastCause();
                return false;
            }
            offset += chunk.size();
        }
    }
    return file->Flush() || (cause = file->LastCause(), false);
}
} // namespace

const CRtfObjectInfo* CFxEdit::ObjectAtCaret() const
{
    const SFxCharPosition caret = ToCharPosition(m_Caret);
    const COneLineInfo& line = Line(caret.line);
    if (caret.offset >= line.Length() ||
        line.Text()[static_cast<size_t>(caret.offset)] != CRtfObjectInfo::ObjectCharacter)
        return nullptr;
    return line.FindObject(caret.offset);
}

std::u16string CFxEdit::WriteAttachmentToTemp(const CRtfObjectInfo& attachment)
{
    IFileSystem& fs = m_Host.FileSystem();
    const std::u16string folder = WithTrailingSeparator(m_Host.TempFolder());
    const std::u16string name = SanitisedAttachmentName(attachment.FileName());
    const std::u16string path =
        FreeTempFilePath(folder, name, [&](const std::u16string& candidate) { return fs.Exists(candidate); });
    if (path.empty())
    {
        LogMessage(u"Error: No free temporary file name for attachment %s.", name);
        return {};
    }
    int cause = 0;
    if (!WriteAttachmentData(fs, path, attachment, cause))
    {
        LogMessage(u"Error: Cannot write attachment file (file path: %s, cause - %d).", path, cause);
        return {};
    }
    return path;
}

bool CFxEdit::OpenAttachment(SFxPosition position)
{
    const SFxCharPosition at = ToCharPosition(position);
    const COneLineInfo& line = Line(at.line);
    if (at.offset >= line.Length() ||
        line.Text()[static_cast<size_t>(at.offset)] != CRtfObjectInfo::ObjectCharacter)
        return false;
    const CRtfObjectInfo* object = line.FindObject(at.offset);
    if (object == nullptr || !object->IsAttachment())
        return false;
    const std::u16string path = WriteAttachmentToTemp(*object);
    if (!path.empty() && m_Host.ShellOpen(path))
        return true;
    LogMessage(u"Error: An error occurred on launching attachment file (file path: %s).", path);
    std::u16string text = Translate(u"ERR_LAUNCH_FILE");
    ReplaceTag(text, u"^fileName", object->FileName(), u"ERR_LAUNCH_FILE");
    m_Host.ShowMessage(text, EMsgIcon::Error);
    return false;
}

bool CFxEdit::SaveAttachmentAs(SFxPosition position)
{
    const SFxCharPosition at = ToCharPosition(position);
    const CRtfObjectInfo* object = Line(at.line).FindObject(at.offset);
    if (object == nullptr || !object->IsAttachment())
        return false;
    std::u16string path = SanitisedAttachmentName(object->FileName());
    if (!m_Host.AskFileName(true, AllFilesFilter, Translate(u"ATTACHMENT_DLG_CAPTION"), path))
        return false;
    IFileSystem& fs = m_Host.FileSystem();
    int cause = 0;
    if (fs.Exists(path) && !fs.Delete(path, cause))
    {
        LogMessage(u"Error: Cannot delete already excisting file with same name - %s.", path);
        std::u16string text = Translate(u"ERR_CANNOT_DELETE_FILE");
        ReplaceTag(text, u"^filename", path, u"ERR_CANNOT_DELETE_FILE");
        m_Host.ShowMessage(text, EMsgIcon::Error);
        return false;
    }
    if (!WriteAttachmentData(fs, path, *object, cause))
    {
        LogMessage(u"Error: Cannot write attachment file (file path: %s, cause - %d).", path, cause);
        std::u16string text = Translate(u"ERR_CANNOT_SAVE_ATTACHMENT");
        ReplaceTag(text, u"^filename", path, u"ERR_CANNOT_SAVE_ATTACHMENT");
        m_Host.ShowMessage(text, EMsgIcon::Error);
        return false;
    }
    return true;
}

bool CFxEdit::InsertImageFromFile()
{
    if (m_ReadOnly || m_Mode != ModeRich)
        return false;
    std::u16string path;
    if (!m_Host.AskFileName(false, ImagesFilter, Translate(u"IMAGE_DLG_CAPTION"), path))
        return false;
    m_Host.SetStatusText(Translate(u"MAIN_WND_STATUS_LOADING"));
    std::string bytes;
    int cause = 0;
    std::optional<CDIBitmap> picture;
    std::u16string failure;
    if (ReadWholeFile(m_Host.FileSystem(), path, bytes, cause))
        picture = PictureFromImageFile(bytes, failure);
    else
        failure = FormatText(u"the file cannot be read, cause - %d", cause);
    m_Host.SetStatusText(u"");
    if (!picture)
    {
        LogMessage(u"Error: Cannot load image file (file path: %s): %s.", path, failure);
        m_Host.ShowMessage(Translate(u"ERR_CANNOT_LOAD_FILE"), EMsgIcon::Error);
        return false;
    }
    CRtfObjectInfo object(CRtfObjectInfo::PictureType, 0);
    object.SetPicture(std::move(picture));
    InsertObject(std::move(object));
    return true;
}

bool CFxEdit::RestoreImageSize()
{
    if (m_ReadOnly)
        return false;
    const SFxCharPosition from = ToCharPosition(SelectionStart());
    const SFxCharPosition to = ToCharPosition(SelectionEnd());
    if (from.line != to.line || to.offset - from.offset > 1)
        return false;
    const COneLineInfo& line = Line(from.line);
    const CRtfObjectInfo* object =
        from.offset < line.Length() &&
                line.Text()[static_cast<size_t>(from.offset)] == CRtfObjectInfo::ObjectCharacter
            ? line.FindObject(from.offset)
            : nullptr;
    if (object == nullptr || !object->IsPicture() || (object->Param1() == 0 && object->Param2() == 0))
        return false;
    CRtfTextLine after = line.Paragraph();
    std::vector<CRtfObjectInfo> objects = after.Objects();
    for (CRtfObjectInfo& candidate : objects)
        if (candidate.Position() == from.offset)
        {
            // Zero display sizes mean the bitmap's own.
            candidate.SetParam1(0);
            candidate.SetParam2(0);
        }
    after.SetObjects(std::move(objects));
    std::vector<CRtfTextLine> lines;
    lines.push_back(std::move(after));
    ReplaceLines(from.line, 1, std::move(lines), ToCharPosition(m_Caret), ToCharPosition(m_Anchor),
                 Translate(u"EDITCTL_UNDO_REPLACEMENT"));
    return true;
}

bool CFxEdit::InsertAttachmentFromFile()
{
    if (m_ReadOnly || m_Mode != ModeRich)
        return false;
    std::u16string path;
    if (!m_Host.AskFileName(false, AllFilesFilter, Translate(u"SELECT_FILES_DLG_CAPTION"), path))
        return false;
    m_Host.SetStatusText(Translate(u"MAIN_WND_STATUS_LOADING"));
    std::string bytes;
    int cause = 0;
    const bool read = ReadWholeFile(m_Host.FileSystem(), path, bytes, cause);
    m_Host.SetStatusText(u"");
    if (!read)
    {
        LogMessage(u"Error: Cannot read attachment file (file path: %s, cause - %d).", path, cause);
        m_Host.ShowMessage(Translate(u"ERR_CANNOT_LOAD_FILE"), EMsgIcon::Error);
        return false;
    }
    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 0);
    attachment.SetFileName(SanitisedAttachmentName(path));
    CHugeMemory data;
    data.Append(std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
    attachment.SetData(std::move(data));
    InsertObject(std::move(attachment));
    return true;
}

void CFxEdit::InsertFileHyperlink()
{
    if (m_ReadOnly)
        return;
    std::u16string path;
    if (m_Host.AskFileName(false, u"All files (*.*)|*.*||", Translate(u"SELECT_FILES_DLG_CAPTION"), path))
        InsertText(u"file://" + path);
}
