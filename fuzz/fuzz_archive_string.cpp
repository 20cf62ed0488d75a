// Reads archive strings from arbitrary bytes until the data runs out, and checks that every string
// read comes back unchanged through the writer.
#include "Shared/Base/Archive.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CArchiveReader reader(data, size);
    std::u16string text;
    while (reader.ReadString(text))
    {
        CArchiveWriter writer;
        writer.WriteString(text);
        CArchiveReader again(writer.Bytes());
        std::u16string back;
        if (!again.ReadString(back) || back != text || again.Remaining() != 0)
            std::abort();
    }
    if (!reader.Failed())
        std::abort();
    return 0;
}
