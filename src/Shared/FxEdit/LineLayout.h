#pragma once
// Word wrap of one paragraph against the text area's width. Rows may end after white space,
// after punctuation and after an object; a row that would overflow ends at the last such place
// it reached, and a word wider than the whole area is cut where it stops fitting. White space at
// the end of a row may hang past the edge, so it never forces a wrap by itself.
#include "Shared/FxEdit/FxEditHost.h"
#include "Shared/FxEdit/OneLineInfo.h"

struct SLineLayoutContext
{
    IFxEditHost* host = nullptr;
    int32_t width = 0;          // no wrapping when 0 or less
    int32_t fixedRowHeight = 0; // every row gets this height when above 0
    int32_t tabStopWidth = 32;  // tab stops every this many pixels
    const SFontDescription* defaultFont = nullptr;
};

bool IsWrapOpportunity(char16_t c);
bool IsFxWhiteSpace(char16_t c);
// The size an object takes in its row: a picture's display size (Param1/Param2 when set, else
// the bitmap's), an attachment's icon.
SFxExtent ObjectExtent(const CRtfObjectInfo& object);

// With a hint, the rows before the change and after the point where the new rows meet the old
// ones again are taken over from the old layout; the result is the same as without it.
SLineLayout ComputeLineLayout(const CRtfTextLine& line, const SLineLayoutContext& context,
                              const SLayoutHint* hint = nullptr);

// The width of the characters [rowStart, to) of the row that begins at `rowStart`, measured as
// the row builder places them.
int32_t RowTextWidth(const CRtfTextLine& line, const SLineLayoutContext& context, int32_t rowStart,
                     int32_t to);
