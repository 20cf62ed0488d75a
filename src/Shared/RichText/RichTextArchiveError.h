#pragma once
// Used only inside the rich text loaders: a failed read deep inside a nested element unwinds to
// the element that reports it. `logged` says whether the failure already wrote its log line, so
// that each failed load writes exactly one. Never leaves the public Serialize operations.
#include "Shared/Base/Archive.h"

#include <exception>

class CRichTextArchiveError : public std::exception
{
public:
    explicit CRichTextArchiveError(bool logged) : m_Logged(logged) {}
    bool Logged() const { return m_Logged; }
    const char* what() const noexcept override { return "rich text archive error"; }

private:
    bool m_Logged;
};

// Each reads one value or throws an unlogged archive error.
inline uint32_t ReadU32OrThrow(CArchiveReader& in)
{
    uint32_t v = 0;
    if (!in.ReadU32(v))
        throw CRichTextArchiveError(false);
    return v;
}

inline uint16_t ReadU16OrThrow(CArchiveReader& in)
{
    uint16_t v = 0;
    if (!in.ReadU16(v))
        throw CRichTextArchiveError(false);
    return v;
}

inline bool ReadBoolOrThrow(CArchiveReader& in)
{
    bool v = false;
    if (!in.ReadBool(v))
        throw CRichTextArchiveError(false);
    return v;
}

inline std::u16string ReadStringOrThrow(CArchiveReader& in)
{
    std::u16string text;
    if (!in.ReadString(text))
        throw CRichTextArchiveError(false);
    return text;
}
