#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

namespace quillmark {

class L10n;

// Short texts for measurements. Number-only texts (bytes, rates) always use a point as the decimal
// separator, whatever the language; texts with words go through the string tables with arguments
// and follow the language's number style. Stateless; any thread (the shared L10n is thread-safe).
namespace Format {

// Binary multiples: "1023 B", "1.0 KB" (1024), "1.5 KB", "3.2 GB"; 1024 TB and above stay in TB.
[[nodiscard]] std::string byteString(std::uint64_t bytes);
// Decimal multiples, on the raw value: below 1000 "820 B/s", below 1 000 000 "14 KB/s" (so 999 999
// reads "1000 KB/s"), else "2.3 MB/s". Negative rates count as below 1000.
[[nodiscard]] std::string speedString(double bytesPerSecond);
// The menu bar's narrow form of speedString: "820B", "14K", "2.3M".
[[nodiscard]] std::string compactSpeed(double bytesPerSecond);
// "format.uptime.minutes" (minutes, seconds) below an hour, "format.uptime.hours" (hours, minutes)
// below a day, else "format.uptime.days" (days, hours); integer arguments.
[[nodiscard]] std::string uptime(double seconds, const L10n& l10n);
[[nodiscard]] std::string uptime(double seconds);
// The local wall-clock time in the user's locale (LC_ALL, LC_TIME, LANG; not the application
// language): hour, minute and second as two digits each with the locale's separators, the hour
// on the locale's clock (01:05:09 at 13:05:09 where the clock has 12 hours) and no AM/PM marker.
[[nodiscard]] std::string currentTime();
// The same for a given time and the locale's strftime time format (nl_langinfo(T_FMT), such as
// "%r", "%I:%M:%S %p", "%T" or "%H.%M.%S"); a format without hour, minute and second gives HH:mm:ss.
[[nodiscard]] std::string clockTime(const std::tm& local, std::string_view localeTimeFormat);
// A Unicode date pattern of a time ("h:mm:ss a", "HH.mm.ss") as strftime conversions ("%I:%M:%S
// %p", "%H.%M.%S"), for clockTime; quoted text stays literal.
[[nodiscard]] std::string timeFormatFromPattern(std::string_view pattern);

}  // namespace Format

// The process-detail texts. They belong with the process detail reader, which does not exist yet;
// they live here (same rules as Format) until it does and will move there under the same names.
namespace ProcessDetailReader {

// "format.duration.seconds" (seconds) below a minute, "format.duration.minSec" (minutes with
// fraction, seconds) below an hour, else "format.duration.hourMin" (whole hours, whole minutes).
[[nodiscard]] std::string cpuTimeString(std::uint64_t nanoseconds, const L10n& l10n);
[[nodiscard]] std::string cpuTimeString(std::uint64_t nanoseconds);
// How long ago date (Unix seconds) was at now: "—" when absent; "format.relative.justNow" below a
// minute (and for dates in the future), then minutesAgo, hoursAgo, daysAgo with whole numbers.
[[nodiscard]] std::string relativeTime(std::optional<double> date, double now, const L10n& l10n);
[[nodiscard]] std::string relativeTime(std::optional<double> date);

}  // namespace ProcessDetailReader

enum class ComparisonResult { ascending = -1, same = 0, descending = 1 };

// Dotted version numbers compared numerically piece by piece: empty pieces are dropped, a piece
// that is not a whole number counts as 0, a missing piece as 0 ("1.2" == "1.2.0", "1.9" < "1.10").
[[nodiscard]] ComparisonResult compareVersions(std::string_view a, std::string_view b);

}  // namespace quillmark
