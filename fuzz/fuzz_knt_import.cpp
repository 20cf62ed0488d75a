// Imports arbitrary bytes as a KeyNote .knt file into an in-memory tree. Nothing may crash, hang
// or allocate beyond a multiple of the input, and a failed import adds nothing.
#include "Document/Import/KntImporter.h"
#include "Document/Import/MemImportTarget.h"
#include "Document/MemFolder.h"
#include "Shared/RichText/FontDescription.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const SFontDescription defaultFont = SFontDescription::Make(u"Arial", 12);
    CMemImportTarget target;
    CMemFolder root;
    const bool imported = ImportKntFile(std::string_view(reinterpret_cast<const char*>(data), size),
                                        u"fuzz.knt", defaultFont, target, root);
    if (!imported && root.GetChildCount() != 0)
        std::abort();
    return 0;
}
