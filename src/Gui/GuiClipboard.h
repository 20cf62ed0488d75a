#pragma once
// The system clipboard as the program uses it. Text leaves the editor in every form another
// program might want: the program's own rich text ("Korimsen Rich Text Format"), "Rich Text
// Format", HTML (both the "HTML Format" block and text/html) and plain text; a paste takes the
// richest form it can read. Tree items travel as "Korimsen Tree Data v100" with their text.
// Format names are used unchanged as MIME types, which is how named formats cross the clipboard
// between copies of the program on every platform Qt serves.
#include "Shared/Clipboard/ClipboardFormats.h"
#include "Shared/Clipboard/TreeClipboardCopy.h"
#include "Shared/RichText/RichTextDocument.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class QClipboard;
class QMimeData;

// Names are registered by being remembered: the identifier is the name's place in the list.
class CQtClipboardFormatRegistrar : public IClipboardFormatRegistrar
{
public:
    uint32_t RegisterFormat(std::u16string_view name, int& errorCode) override;
    // The name registered under `id`; empty for an unknown identifier.
    QString NameOf(uint32_t id) const;

private:
    std::vector<QString> m_Names;
};

// IClipboard over QClipboard: the blocks offered between Open and Close are collected and handed
// to the system together on Close, so that a reader never sees half of a copy.
class CQtClipboard : public IClipboard
{
public:
    CQtClipboard(QClipboard& clipboard, const CQtClipboardFormatRegistrar& registrar);
    ~CQtClipboard() override;

    bool Open() override;
    bool Empty() override;
    bool SetData(uint32_t formatId, std::span<const uint8_t> data) override;
    bool Close() override;
    uint32_t UnicodeTextFormat() const override { return UnicodeTextId; }

private:
    // Above every identifier the registrar hands out.
    static constexpr uint32_t UnicodeTextId = 0xC0000000u;

    QClipboard& m_Clipboard;
    const CQtClipboardFormatRegistrar& m_Registrar;
    std::unique_ptr<QMimeData> m_Pending;
};

// The process's format registry, over a CQtClipboardFormatRegistrar.
CQtClipboardFormatRegistrar& GuiClipboardRegistrar();
CClipboardFormats& GuiClipboardFormats();

// The MIME types a copy offers besides the exact format names, for programs that know only them.
inline constexpr char MimeRtf[] = "text/rtf";
inline constexpr char MimeApplicationRtf[] = "application/rtf";

// Copied text: `selection` in the program's own format, as RTF and HTML written with
// `defaultFont` for unformatted text, and `plainText` (CR LF line ends become LF, which every
// platform's clipboard turns into its own).
std::unique_ptr<QMimeData> MakeRichTextMimeData(const CRichTextDocument& selection,
                                                std::u16string_view plainText,
                                                const SFontDescription& defaultFont);

// The form a paste read, in the order a paste prefers them.
enum class EPastedForm
{
    Nothing,
    OwnRichText,
    Rtf,
    Html,
    PlainText
};

// Reads the richest form of `mime` that holds readable text into `document`: the program's own
// rich text, then RTF, then HTML, then plain text. A form that cannot be read (corrupt, foreign)
// passes the turn to the next one.
EPastedForm ReadRichTextMimeData(const QMimeData& mime, const SFontDescription& defaultFont,
                                 CRichTextDocument& document);

// The fragment between the start and end markers of an "HTML Format" block, by the offsets its
// header gives (the markers when the offsets do not fit); empty when it is no such block.
QString HtmlFromClipboardBlock(const QByteArray& block);

// Tree items: the tree writes the selected items as tree data and as UTF-16 text, and both go to
// the system clipboard (logged and false on failure).
bool CopyTreeItemsToSystemClipboard(const TreeItemsWriter& writeItems);
// The "Korimsen Tree Data v100" bytes on the system clipboard; empty when it holds none.
std::vector<uint8_t> TreeItemsOnSystemClipboard();
