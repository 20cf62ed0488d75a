#include "Document/FileTimes.h"

#include "Shared/Base/TextConv.h"

#include <cerrno>
#include <ctime>
#include <sys/stat.h>

namespace
{
class CDiskFileTimes : public IFileTimes
{
public:
    bool GetLastWriteTime(const std::u16string& path, OleDate& time, int& cause) override
    {
        struct stat info
        {
        };
        if (::stat(Utf16ToUtf8(path).c_str(), &info) != 0)
        {
            cause = errno;
            return false;
        }
        std::tm local{};
        const time_t seconds = info.st_mtime;
        if (!::localtime_r(&seconds, &local))
        {
            cause = errno;
            return false;
        }
        SDateTimeFields fields;
        fields.year = local.tm_year + 1900;
        fields.month = local.tm_mon + 1;
        fields.day = local.tm_mday;
        fields.hour = local.tm_hour;
        fields.minute = local.tm_min;
        fields.second = local.tm_sec > 59 ? 59 : local.tm_sec;
        cause = 0;
        return FieldsToOleDate(fields, time);
    }
};
} // namespace

IFileTimes& DiskFileTimes()
{
    static CDiskFileTimes times;
    return times;
}
