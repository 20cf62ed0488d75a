#pragma once
// The zlib stream decoder the RTF reader needs for PNG pictures: stored, fixed and dynamic
// Huffman blocks. The output is bounded by the caller, so a hostile stream cannot make it grow
// beyond what the picture's header announced.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// Decodes a zlib stream (two header bytes, deflate data; the checksum is not verified). False
// when the data is corrupt, ends early or would decode to more than `maxOutput` bytes.
bool InflateZlib(std::string_view data, size_t maxOutput, std::vector<uint8_t>& out);
