#pragma once
// Base-64 with the standard alphabet ("A-Z a-z 0-9 + /") and "=" padding, as binary values are
// stored in configuration files: 4 characters for every 3 bytes.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

std::u16string EncodeBase64(const void* data, size_t size);

// Strict decoding: the text must be a whole number of 4-character groups, padding may only end
// the last group, and every other character must come from the alphabet. False (with `bytes`
// emptied) for anything else.
bool DecodeBase64(std::u16string_view text, std::vector<uint8_t>& bytes);
