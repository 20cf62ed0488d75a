#include "Shared/TextSearch/CaseFolding.h"

#include <gtest/gtest.h>

#include <vector>

TEST(CaseFolding, KnownCharacters)
{
    const std::pair<char16_t, char16_t> cases[] = {
        {u'A', u'a'},           {u'z', u'z'},           {u'@', u'@'},           {u'[', u'['},
        {u'\u00C9', u'\u00E9'}, {u'\u00D7', u'\u00D7'}, {u'\u00DF', u'\u00DF'}, {u'\u1E9E', u'\u00DF'},
        {u'\u0178', u'\u00FF'}, {u'\u0130', u'i'},      {u'\u017F', u's'},      {u'\u212A', u'k'},
        {u'\u03A3', u'\u03C3'}, {u'\u03C2', u'\u03C3'}, {u'\u03D1', u'\u03B8'}, {u'\u0416', u'\u0436'},
        {u'\u0401', u'\u0451'}, {u'\u0531', u'\u0561'}, {u'\u10A0', u'\u2D00'}, {u'\uFF21', u'\uFF41'},
        {u'\u24B6', u'\u24D0'}, {u'\u4E2D', u'\u4E2D'}, {u'\u0660', u'\u0660'}, {u'\xD801', u'\xD801'},
    };
    for (const auto& [from, to] : cases)
        EXPECT_EQ(int(FoldUnit(from)), int(to)) << std::hex << int(from);
}

TEST(CaseFolding, SurrogatePairsFoldAsOneCodePoint)
{
    EXPECT_EQ(FoldCodePoint(0x10400), char32_t(0x10428));
    EXPECT_EQ(FoldCodePoint(0x1E900), char32_t(0x1E922));
    EXPECT_EQ(FoldCodePoint(0x1E922), char32_t(0x1E922));
    EXPECT_EQ(FoldCodePoint(0x1F600), char32_t(0x1F600));
    EXPECT_EQ(FoldCase(u"A\U00010400B"), u"a\U00010428b");
    // Lone surrogates, in either order, stay as they are.
    EXPECT_EQ(FoldCase(u"\xDC00\xD801x\xD801"), u"\xDC00\xD801x\xD801");
    EXPECT_EQ(FoldCase(u"\xDC00\xD801\xDC00"), u"\xDC00\xD801\xDC28");
}

// Over the whole BMP: folding twice changes nothing, and the reverse lookup the search
// prefilter is built from lists exactly the units that fold to a given unit.
TEST(CaseFolding, IdempotentAndReverseLookupComplete)
{
    std::vector<std::vector<char16_t>> expected(0x10000);
    for (uint32_t unit = 0; unit <= 0xFFFF; ++unit)
    {
        const char16_t folded = FoldUnit(char16_t(unit));
        ASSERT_EQ(FoldUnit(folded), folded) << std::hex << unit;
        if (unit < 0xD800 || unit > 0xDFFF)
            expected[folded].push_back(char16_t(unit));
    }
    auto asVector = [](const SFoldingUnits& units)
    { return std::vector<char16_t>(units.begin(), units.end()); };
    for (uint32_t unit = 0; unit <= 0xFFFF; ++unit)
    {
        ASSERT_LE(expected[unit].size(), SFoldingUnits::Capacity) << std::hex << unit;
        ASSERT_EQ(asVector(UnitsFoldingTo(char16_t(unit))), expected[unit]) << std::hex << unit;
    }
    EXPECT_EQ(asVector(UnitsFoldingTo(u'k')), (std::vector<char16_t>{u'K', u'k', u'\u212A'}));
    EXPECT_EQ(asVector(UnitsFoldingTo(u'\u03B8')),
              (std::vector<char16_t>{u'\u0398', u'\u03B8', u'\u03D1', u'\u03F4'}));
}
