#include "ImportTestSupport.h"

#include "Document/Import/KntImporter.h"
#include "Document/Import/MemImportTarget.h"
#include "Shared/RichText/FontDescription.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <random>
#include <sstream>

namespace
{
const SFontDescription Font = SFontDescription::Make(u"Arial", 10);

std::string ReadSample(const std::string& name)
{
    std::ifstream in(std::string(QUILL_SAMPLES_DIR "/knt/") + name, std::ios::binary);
    EXPECT_TRUE(in.good()) << name;
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

bool Import(std::string_view bytes, CMemFolder& root)
{
    CMemImportTarget target;
    return ImportKntFile(bytes, u"test.knt", Font, target, root);
}

TEST(KntImportTest, RealFilesImportTheirFolderTrees)
{
    CMemFolder minimal;
    ASSERT_TRUE(Import(ReadSample("fileformat_minimal.knt"), minimal));
    EXPECT_EQ(u"Example tree node[Example tree node]", ChildrenOutline(minimal));
    EXPECT_TRUE(NoteAt(minimal, {0, 0}).GetRichText()->IsEmpty());

    // A node with child nodes becomes a folder holding its own note first.
    CMemFolder small;
    ASSERT_TRUE(Import(ReadSample("ej.knt"), small));
    EXPECT_EQ(
        u"New note[(17 jul 08) - A,(17 jul 08) - b1[(17 jul 08) - b1,(17 jul 08) - b1],(17 jul 08) - C]",
        ChildrenOutline(small));

    CMemFolder sample;
    ASSERT_TRUE(Import(ReadSample("sample.knt"), sample));
    ASSERT_EQ(4u, sample.GetChildCount());
    EXPECT_EQ(u"Welcome to KeyNote", sample.GetChild(0)->GetCaption());
    // Simple folders become a folder with one note of the same name.
    EXPECT_EQ(u"&Hints[&Hints]", Outline(*sample.GetChild(1)));
    EXPECT_EQ(u"&Contact[&Contact]", Outline(*sample.GetChild(2)));
    EXPECT_EQ(u"Freeware", sample.GetChild(3)->GetCaption());
    size_t notes = 0, folders = 0;
    sample.CountItems(notes, folders, CountItemsDeep);
    EXPECT_EQ(20u, notes); // 18 nodes plus the two simple folders' notes

    // The welcome note is Central-European RTF: \'f1 in code page 1250 is U+0144.
    CMemNote& welcome = FindNote(sample, u"Welcome to KeyNote!");
    EXPECT_NE(std::u16string::npos,
              PlainText(welcome).find(u"Copyright \u00a9 Marek Jedli\u0144ski 2000-2003"));
    bool anyBold = false;
    for (const CRtfTextLine& line : welcome.GetRichText()->Lines())
        for (const CRtfTextBlockInfo& block : line.Blocks())
            anyBold = anyBold || (block.HasFont() && block.Font()->IsBold());
    EXPECT_TRUE(anyBold);
}

TEST(KntImportTest, EncryptedFilesAreRefusedClearly)
{
    CImportLogCapture log;
    CMemFolder root;
    EXPECT_FALSE(Import("#!GFKNE 2.0\n\x01\x02\x03", root));
    EXPECT_EQ(
        std::vector<std::u16string>{
            u"Error: Cannot import KeyNote file test.knt, it is encrypted or compressed, "
            u"which is not supported"},
        log.TakeMessages());
    EXPECT_FALSE(Import("#!GFKNT 2.0\n%+\nNN=a\n%C\nxx\n%CE\n%%\n", root));
    EXPECT_EQ(
        std::vector<std::u16string>{
            u"Error: Cannot import KeyNote file test.knt, it holds encrypted content, "
            u"which is not supported"},
        log.TakeMessages());
    EXPECT_EQ(0u, root.GetChildCount());
}

TEST(KntImportTest, HandWrittenFileWithLevelsFormatsAndNonAsciiText)
{
    const std::string knt =
        "#!GFKNT 2.0\r\n"
        "# comment\r\n#/description\r\n#Zunknown header\r\n"
        "%+\r\nNN=\xc4\x8c\x65sk\xc3\xbd strom\r\nID=1\r\nFL=101110000000210000000000\r\n"
        "%-\r\nLV=0\r\nND=Top\r\nNF=000000000000000000000000\r\n%:\r\n"
        "{\\rtf1\\ansi\\ansicpg1251{\\fonttbl{\\f0\\fcharset204 Arial;}}{\\colortbl;\\red255\\green0"
        "\\blue0;}\r\n\\pard\\qc\\f0\\fs28 \\'cf\\'f0\\'e8\\b \\cf1 bold\\par\r\nsecond\\par\r\n}\r\n"
        "%-\r\nLV=1\r\nND=Child \xe2\x82\xac\r\n"
        "%-\r\nLV=2\r\nND=Grandchild\r\n%:\r\n{\\rtf1 deep}\r\n"
        "%-\r\nLV=1\r\nND=Second child\r\n"
        "%-\r\nLV=0\r\nND=Last\r\nVN=1|4\r\nNA=21-05-2007 15:24:50\r\n"
        "%\r\nNN=Plain\r\nFL=101111000000000000000000\r\n%:\r\n;first line\r\n;%+ not a marker\r\n"
        ";;two\r\n"
        "%BK\r\nBK=0,file:///*8|2|29|0|1\r\n"
        "%%\r\n";
    CMemFolder root;
    ASSERT_TRUE(Import(knt, root));
    EXPECT_EQ(u"\u010cesk\u00fd strom[Top[Top,Child \u20ac[Grandchild],Second child],Last],Plain[Plain]",
              ChildrenOutline(root));
    CMemNote& top = NoteAt(root, {0, 0, 0});
    EXPECT_EQ(u"\u041f\u0440\u0438bold\nsecond", PlainText(top));
    const CRtfTextLine& line = top.GetRichText()->Line(0);
    EXPECT_EQ(CRtfTextLine::AlignCentre, line.Alignment());
    EXPECT_EQ(14, line.EffectiveFont(0)->PointSize());
    EXPECT_FALSE(line.EffectiveFont(0)->IsBold());
    EXPECT_TRUE(line.EffectiveFont(3)->IsBold());
    EXPECT_EQ(0x0000FFu, *line.EffectiveTextColour(3));
    EXPECT_EQ(u"deep", PlainText(NoteAt(root, {0, 0, 1, 0})));
    EXPECT_EQ(u"first line\n%+ not a marker\n;two", PlainText(NoteAt(root, {1, 0})));
}

TEST(KntImportTest, ImageSectionsAreSkippedEvenWhenTheirDataLooksLikeMarkers)
{
    const std::string knt = std::string("#!GFKNT 2.0\n%+\nNN=F\n%-\nLV=0\nND=N\n%:\n{\\rtf1 text}\n"
                                        "%S\nSM=1\n%I\nII=2\nPD=1|NOTE1\\|1_a.png|1|32|32|343790583||1|6||0\n"
                                        "%EI\nEI=1|1_a.png|12\n") +
                            std::string("\n%-\n%%\n\0\xff\r\n", 12) + "##END_IMAGE##\n%%\n";
    CMemFolder root;
    ASSERT_TRUE(Import(knt, root));
    EXPECT_EQ(u"F[N]", ChildrenOutline(root));
    EXPECT_EQ(u"text", PlainText(NoteAt(root, {0, 0})));
}

TEST(KntImportTest, MalformedFilesImportNothing)
{
    CImportLogCapture log;
    const std::string cases[] = {
        "",
        "not a knt file",
        "#!GFKNT 2.0\n%-\nLV=0\nND=node without folder\n%%\n",
        "#!GFKNT 2.0\nNN=data before any folder\n",
        "#!GFKNT 2.0\n%+\nNN=F\n%-\nLV=x\n%%\n",
        "#!GFKNT 2.0\n%+\nNN=F\n%-\nLV=0\nND=good\n%:\n{\\rtf1 fine}\n%-\nLV=0\nND=bad\n%:\n{\\rtf1 "
        "unclosed\n%%\n",
        "#!GFKNT 2.0\n%+\nNN=F\n%EI\nEI=1|a.png|5\nbinary without end\n",
        "#!GFKNT 2.0\n%:\n{\\rtf1 text of nothing}\n",
    };
    for (const std::string& knt : cases)
    {
        CMemFolder root;
        EXPECT_FALSE(Import(knt, root)) << knt;
        EXPECT_EQ(0u, root.GetChildCount()) << knt;
        const auto messages = log.TakeMessages();
        ASSERT_EQ(1u, messages.size()) << knt;
        EXPECT_TRUE(messages[0].starts_with(u"Error: Cannot import KeyNote file test.knt, ")) << knt;
    }
}

// Random level sequences against a model: every node keeps its caption, text and parent; a node
// with children becomes a folder holding its note, and a level jump nests under the node before.
TEST(KntImportTest, RandomNodeLevelsBuildTheModelTree)
{
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round)
    {
        const int count = static_cast<int>(random() % 12) + 1;
        std::vector<int> levels;
        std::string knt = "#!GFKNT 2.0\n%+\nNN=Root\n";
        for (int i = 0; i < count; ++i)
        {
            levels.push_back(static_cast<int>(random() % 5));
            knt += "%-\nLV=" + std::to_string(levels.back()) + "\nND=n" + std::to_string(i) + "\n";
            if (random() % 2 == 0)
                knt += "%:\n{\\rtf1 t" + std::to_string(i) + "}\n";
        }
        knt += "%%\n";

        // The model: clamp levels, then each node's parent is the last node one level up.
        std::vector<int> clamped;
        for (int level : levels)
            clamped.push_back(std::min(level, clamped.empty() ? 0 : clamped.back() + 1));
        std::function<std::u16string(size_t&, int)> build = [&](size_t& next, int level)
        {
            std::u16string out;
            while (next < clamped.size() && clamped[next] >= level)
            {
                const size_t index = next++;
                const std::u16string caption = u"n" + ToU16(static_cast<long long>(index));
                if (!out.empty())
                    out += u",";
                if (next < clamped.size() && clamped[next] > level)
                {
                    const bool hasText = knt.find("t" + std::to_string(index) + "}") != std::string::npos;
                    const std::u16string children = build(next, level + 1);
                    out += caption + u"[" + (hasText ? caption + u"," : u"") + children + u"]";
                }
                else
                    out += caption;
            }
            return out;
        };
        size_t next = 0;
        const std::u16string expected = u"Root[" + build(next, 0) + u"]";

        CMemFolder root;
        ASSERT_TRUE(Import(knt, root)) << knt;
        ASSERT_EQ(expected, ChildrenOutline(root)) << knt;
    }
}
} // namespace
