// The running-copy question as another process may send it: byte 0 picks the message kind (the
// question's or another), the rest is the payload. Decoding never reads past the payload, a
// decoded path encodes back to the payload's bytes up to its first zero unit, and only the exact
// open path is answered with 1.
#include "App/RunningInstance.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const uint32_t kind = (data[0] & 1) != 0 ? kRunningInstanceMessageKind : 4299;
    const std::string payload(reinterpret_cast<const char*>(data + 1), size - 1);

    std::u16string path;
    const bool decoded = DecodeRunningInstancePayload(payload, path);
    if (decoded)
    {
        const std::string encoded = EncodeRunningInstancePayload(path);
        if (payload.compare(0, encoded.size(), encoded) != 0)
            std::abort();
    }

    const std::u16string open = u"/home/u/Documents/Quillarium Documents.ddb";
    const int answer = AnswerRunningInstanceQuery(kind, payload, open);
    const bool expected = kind == kRunningInstanceMessageKind && decoded && path == open;
    if (answer != (expected ? 1 : 0))
        std::abort();
    return 0;
}
