#pragma once
// File names for attachments written out of a note. An attachment's stored name comes from the
// document, so it is reduced to a plain file name that can never reach outside the folder it is
// joined to.
#include <functional>
#include <string>
#include <string_view>

std::u16string WithTrailingSeparator(std::u16string folder);
// The last path component without control characters, reserved characters or leading dots and
// blanks; "attachment" when nothing usable is left. At most 200 characters, extension kept.
std::u16string SanitisedAttachmentName(std::u16string_view name);
// `folder` + `name`, or, while that exists, "%s%s[%d].%s" of the folder, the name without its
// extension, a counter from 1 and the extension. Empty when no counter up to 100000 is free.
std::u16string FreeTempFilePath(const std::u16string& folder, const std::u16string& name,
                                const std::function<bool(const std::u16string&)>& exists);
