#pragma once
// One data file is never shown by two running copies. A copy that starts on a file asks every
// running copy, synchronously, whether it has that file open; the one that has answers 1 and
// comes to the front, and the asking copy ends. The GUI carries the question over a local
// socket; this file holds the message's contents and the answering rule.
#include <cstdint>
#include <string>
#include <string_view>

// The message kind of the question; kind 4299 belongs to the update check.
inline constexpr uint32_t kRunningInstanceMessageKind = 3443;
// The main window's class name, the only mark by which copies of the program know each other.
inline constexpr std::u16string_view kMainWindowClassName = u"Quillarium Organizer Main Window #ZW#";

class IRunningInstanceQuery
{
public:
    virtual ~IRunningInstanceQuery() = default;
    // True when another running copy has `path` open and has been brought to the front.
    virtual bool FindRunningInstance(const std::u16string& path) = 0;
};

// The question's payload: the path as UTF-16LE with its terminating zero (2 × length + 2 bytes).
std::string EncodeRunningInstancePayload(std::u16string_view path);
// The path of a payload: its text up to the first zero unit. False when the payload is empty,
// has an odd size or does not end with a zero unit.
bool DecodeRunningInstancePayload(std::string_view payload, std::u16string& path);

// The answer of a copy that has `openFilePath` open: 1 when the message is the question, its
// payload is valid and names exactly that path (case-sensitive), otherwise 0. On 1 the window
// brings itself to the front.
int AnswerRunningInstanceQuery(uint32_t messageKind, std::string_view payload,
                               std::u16string_view openFilePath);
