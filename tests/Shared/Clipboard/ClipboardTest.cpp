#include "Shared/Base/AppConnector.h"
#include "Shared/Base/Archive.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Clipboard/ClipboardFormats.h"
#include "Shared/Clipboard/HtmlClipboardBlock.h"
#include "Shared/Clipboard/LinkDetection.h"
#include "Shared/Clipboard/TreeClipboardCopy.h"
#include "Shared/Log/Log.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <stdexcept>

namespace
{
class CLogLines
{
public:
    CLogLines()
    {
        m_Connector.SetLog(&m_Log);
        CAppConnector::Install(&m_Connector);
    }
    ~CLogLines() { CAppConnector::Install(nullptr); }

    std::vector<std::u16string> Errors()
    {
        const std::u16string text = Utf16LeBytesToText(m_Fs.Bytes(Path));
        std::vector<std::u16string> lines;
        for (size_t at = text.find(u"Error: "); at != std::u16string::npos;
             at = text.find(u"Error: ", at + 1))
            lines.push_back(text.substr(at, text.find(u"\r\n", at) - at));
        return lines;
    }

private:
    static constexpr const char16_t* Path = u"/l/Quillarium.log";
    CMemFileSystem m_Fs;
    CLog m_Log{Path, &m_Fs};
    CAppConnector m_Connector;
};

class CFakeRegistrar : public IClipboardFormatRegistrar
{
public:
    uint32_t RegisterFormat(std::u16string_view name, int& errorCode) override
    {
        names.emplace_back(name);
        if (failNext > 0)
        {
            --failNext;
            errorCode = 1418;
            return 0;
        }
        return 0xC000 + static_cast<uint32_t>(names.size());
    }
    std::vector<std::u16string> names;
    int failNext = 0;
};

class CFakeClipboard : public IClipboard
{
public:
    bool Open() override { return (opened = canOpen); }
    bool Empty() override { return true; }
    bool SetData(uint32_t format, std::span<const uint8_t> data) override
    {
        blocks[format].assign(data.begin(), data.end());
        return true;
    }
    bool Close() override
    {
        opened = false;
        return canClose;
    }
    uint32_t UnicodeTextFormat() const override { return 13; }

    bool canOpen = true;
    bool canClose = true;
    bool opened = false;
    std::map<uint32_t, std::vector<uint8_t>> blocks;
};

std::u16string Html(std::u16string_view text)
{
    return PlainTextToHtml(text);
}
} // namespace

TEST(ClipboardFormats, NamesAreRegisteredOnceAndFailuresRetried)
{
    const std::u16string_view expected[] = {u"Korimsen Note Data v100",
                                            u"Korimsen Email Data v100",
                                            u"Korimsen Tree Data v100",
                                            u"FileNameW",
                                            u"HTML Format",
                                            u"Rich Text Format",
                                            u"Korimsen Rich Text Format"};
    for (size_t i = 0; i < ClipboardFormatCount; ++i)
        EXPECT_EQ(ClipboardFormatName(static_cast<EClipboardFormat>(i)), expected[i]);

    CLogLines log;
    CFakeRegistrar registrar;
    CClipboardFormats formats(registrar);
    registrar.failNext = 1;
    EXPECT_EQ(formats.Id(EClipboardFormat::Html), 0u);
    const uint32_t html = formats.Id(EClipboardFormat::Html);
    EXPECT_NE(html, 0u);
    EXPECT_EQ(formats.Id(EClipboardFormat::Html), html);
    EXPECT_EQ(registrar.names, (std::vector<std::u16string>{u"HTML Format", u"HTML Format"}));
    EXPECT_EQ(log.Errors(),
              std::vector<std::u16string>{u"Error: unable to register HTML exchange clipboard OLE "
                                          u"data format (error code 1418)."});
}

TEST(HtmlClipboardBlock, OffsetsPointAtTheFragment)
{
    const std::string block = MakeHtmlClipboardBlock(u"0123456789");
    EXPECT_EQ(block,
              "Version:1.0\r\nStartHTML:0000000105\r\nEndHTML:0000000157\r\nStartFragment:0000000127\r\n"
              "EndFragment:0000000137\r\n<!--StartFragment-->\r\n0123456789\r\n<!--EndFragment-->");

    // The fragment is counted in Windows-1252 bytes, so the offsets hold for any text.
    for (const std::u16string_view html :
         {std::u16string_view(u""), std::u16string_view(u"<b>caf\u00e9 \u4e2d</b>")})
    {
        const std::string b = MakeHtmlClipboardBlock(html);
        const size_t endHtml = std::stoul(b.substr(b.find("EndHTML:") + 8, 10));
        const size_t endFragment = std::stoul(b.substr(b.find("EndFragment:") + 12, 10));
        EXPECT_EQ(b.size(), endHtml);
        EXPECT_EQ(b.substr(105, 20), "<!--StartFragment-->");
        EXPECT_EQ(b.substr(127, endFragment - 127), Utf16ToCp1252(html));
        EXPECT_EQ(b.substr(endFragment), "\r\n<!--EndFragment-->");
    }
}

TEST(LinkDetection, PrefixesInOrderAndLengthRule)
{
    const std::pair<std::u16string_view, size_t> prefixes[] = {
        {u"file://x", 7},  {u"FTP://x", 6},  {u"gopher://x", 9}, {u"http://x", 7},
        {u"HTTPS://x", 8}, {u"mailto:x", 7}, {u"news:x", 5},     {u"Telnet:x", 7},
        {u"wais:x", 5},    {u"WWW.x", 4},    {u"ftp.x", 4},      {u"htp://", 0}};
    for (const auto& [text, length] : prefixes)
        EXPECT_EQ(LinkPrefixLength(text, 0), length) << Utf16ToUtf8(text);

    EXPECT_EQ(LinkLength(u"http:// x", 0), 0u);
    EXPECT_EQ(LinkLength(u"see www.", 4), 0u);
    EXPECT_EQ(LinkLength(u"www.a b", 0), 5u);
    EXPECT_EQ(LinkLength(u"xhttp://a\tz", 1), 8u);
    EXPECT_EQ(LinkLength(u"xhttp://a\tz", 0), 0u);
    EXPECT_EQ(LinkLength(u"mailto:a@b\r\n", 0), 10u);
    EXPECT_EQ(LinkLength(u"ftp", 0), 0u);
    EXPECT_EQ(LinkLength(u"a", 5), 0u);
}

TEST(LinkDetection, PlainTextToHtmlAnchorsAndLineBreaks)
{
    EXPECT_EQ(Html(u""), u"<HTML><BODY><DIV></DIV></BODY></HTML>");
    EXPECT_EQ(Html(u"see www.abc now"),
              u"<HTML><BODY><DIV>see <A href=\"www.abc\">www.abc</A> now</DIV></BODY></HTML>");
    EXPECT_EQ(Html(u"www.a and http://b"), u"<HTML><BODY><DIV><A href=\"http://www.a\">www.a</A> and "
                                           u"<A href=\"http://http://b\">http://b</A></DIV></BODY></HTML>");
    EXPECT_EQ(Html(u"ftp.a"), u"<HTML><BODY><DIV><A href=\"ftp://ftp.a\">ftp.a</A></DIV></BODY></HTML>");
    EXPECT_EQ(Html(u"ftp://a"), u"<HTML><BODY><DIV><A href=\"ftp://a\">ftp://a</A></DIV></BODY></HTML>");
    EXPECT_EQ(Html(u"a<b\r\n\r\nc"),
              u"<HTML><BODY><DIV>a<b</DIV><DIV>&nbsp;</DIV><DIV>c</DIV></BODY></HTML>");
    // The character before a lone LF goes with it.
    EXPECT_EQ(Html(u"ab\ncd"), u"<HTML><BODY><DIV>a</DIV><DIV>cd</DIV></BODY></HTML>");
    EXPECT_EQ(Html(u"\r"), u"<HTML><BODY><DIV></DIV><DIV></DIV></BODY></HTML>");
}

TEST(TreeClipboardCopy, OffersTreeDataThenTextAndReportsFailures)
{
    CLogLines log;
    CFakeRegistrar registrar;
    CClipboardFormats formats(registrar);
    CFakeClipboard clipboard;
    const auto writeBoth = [](CArchiveWriter& tree, CArchiveWriter& text)
    {
        tree.WriteU32(7);
        text.WriteBytes("h\0i\0", 4);
    };
    ASSERT_TRUE(CopyTreeItemsToClipboard(clipboard, formats, writeBoth));
    const uint32_t treeFormat = formats.Id(EClipboardFormat::TreeData);
    EXPECT_EQ(clipboard.blocks.at(treeFormat), (std::vector<uint8_t>{7, 0, 0, 0}));
    EXPECT_EQ(clipboard.blocks.at(13), (std::vector<uint8_t>{'h', 0, 'i', 0}));
    EXPECT_TRUE(log.Errors().empty());

    clipboard.canClose = false;
    EXPECT_FALSE(CopyTreeItemsToClipboard(clipboard, formats, writeBoth));
    clipboard.canClose = true;
    clipboard.canOpen = false;
    EXPECT_FALSE(CopyTreeItemsToClipboard(clipboard, formats, writeBoth));
    clipboard.canOpen = true;
    EXPECT_FALSE(CopyTreeItemsToClipboard(
        clipboard, formats, [](CArchiveWriter&, CArchiveWriter&) { throw std::runtime_error("x"); }));
    EXPECT_FALSE(clipboard.opened);
    EXPECT_EQ(log.Errors(), (std::vector<std::u16string>{
                                u"Error: failed on copying data to clipboard",
                                u"Error: failed on copying data to clipboard",
                                u"Error: general exception caught on copying data in to clipboard"}));
}
