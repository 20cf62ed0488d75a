#include "App/RunningInstance.h"

std::string EncodeRunningInstancePayload(std::u16string_view path)
{
    std::string bytes;
    bytes.reserve(2 * path.size() + 2);
    for (char16_t unit : path)
    {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    bytes.append(2, '\0');
    return bytes;
}

bool DecodeRunningInstancePayload(std::string_view payload, std::u16string& path)
{
    if (payload.size() < 2 || payload.size() % 2 != 0 || payload[payload.size() - 1] != '\0' ||
        payload[payload.size() - 2] != '\0')
        return false;
    // The text ends at its first zero, as the sender's string does.
    path.clear();
    for (size_t offset = 0; offset + 2 < payload.size(); offset += 2)
    {
        const auto low = static_cast<uint8_t>(payload[offset]);
        const auto high = static_cast<uint8_t>(payload[offset + 1]);
        const auto unit = static_cast<char16_t>(low | (high << 8));
        if (unit == 0)
            break;
        path.push_back(unit);
    }
    return true;
}

int AnswerRunningInstanceQuery(uint32_t messageKind, std::string_view payload,
                               std::u16string_view openFilePath)
{
    std::u16string path;
    if (messageKind != kRunningInstanceMessageKind || !DecodeRunningInstancePayload(payload, path))
        return 0;
    return !path.empty() && path == openFilePath ? 1 : 0;
}
