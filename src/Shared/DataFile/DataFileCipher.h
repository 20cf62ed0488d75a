#pragma once
// The position-dependent XOR stream that enciphers record data when the file has a key. The same
// call enciphers and deciphers. The stream of one buffer repeats every lcm(3, key length) bytes,
// so only one period is computed per call and the rest is a plain XOR at memory speed.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CDataFileCipher
{
public:
    void SetKey(std::span<const uint8_t> key) { m_Key.assign(key.begin(), key.end()); }
    void Clear() { m_Key.clear(); }
    bool HasKey() const { return !m_Key.empty(); }
    std::span<const uint8_t> Key() const { return m_Key; }

    // `position` is the file offset of data[0].
    void Apply(uint8_t* data, size_t size, uint64_t position);

private:
    void BuildStream(size_t period, size_t length, uint32_t size32, uint32_t position32, bool oddPosition);

    std::vector<uint8_t> m_Key;
    std::vector<uint8_t> m_Stream;
};
