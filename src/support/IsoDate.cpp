#include "support/IsoDate.h"

#include <cstdio>

namespace stavelin::support {

namespace {

/// Takes fixed parts off the front of a text; after the first that does not fit, nothing fits any more.
class Cursor
{
public:
    explicit Cursor(std::string_view text) : m_rest(text) {}

    int number(std::size_t digits)
    {
        if (!m_fits || m_rest.size() < digits)
            return fail();
        int value = 0;
        for (std::size_t i = 0; i < digits; ++i) {
            if (m_rest[i] < '0' || m_rest[i] > '9')
                return fail();
            value = value * 10 + (m_rest[i] - '0');
        }
        m_rest.remove_prefix(digits);
        return value;
    }
    bool take(char character)
    {
        if (!m_fits || !m_rest.starts_with(character))
            return false;
        m_rest.remove_prefix(1);
        return true;
    }
    void expect(char character)
    {
        if (!take(character))
            fail();
    }
    int fail()
    {
        m_fits = false;
        return 0;
    }
    [[nodiscard]] bool isDone() const { return m_fits && m_rest.empty(); }

private:
    std::string_view m_rest;
    bool m_fits = true;
};

} // namespace

std::optional<Timestamp> parseIsoDate(std::string_view text)
{
    using namespace std::chrono;

    Cursor cursor(text);
    const int yearNumber = cursor.number(4);
    cursor.expect('-');
    const int monthNumber = cursor.number(2);
    cursor.expect('-');
    const int dayNumber = cursor.number(2);
    cursor.expect('T');
    const int hour = cursor.number(2);
    cursor.expect(':');
    const int minute = cursor.number(2);
    cursor.expect(':');
    const int second = cursor.number(2);

    minutes offset{0};
    if (!cursor.take('Z')) {
        const bool isWest = cursor.take('-');
        if (!isWest)
            cursor.expect('+');
        const int offsetHours = cursor.number(2);
        cursor.take(':');
        const int offsetMinutes = cursor.number(2);
        if (offsetHours > 23 || offsetMinutes > 59)
            return std::nullopt;
        offset = hours(offsetHours) + minutes(offsetMinutes);
        if (isWest)
            offset = -offset;
    }

    const year_month_day date{year(yearNumber), month(static_cast<unsigned>(monthNumber)),
                              day(static_cast<unsigned>(dayNumber))};
    // A leap second has no place on the system's clock, which repeats the second before it.
    if (!cursor.isDone() || !date.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;

    const sys_seconds moment = sys_days(date) + hours(hour) + minutes(minute) + seconds(second) - offset;
    // The system's clock counts nanoseconds in 64 bits, which reach over less than six centuries.
    if (moment < ceil<seconds>(Timestamp::min()) || moment > floor<seconds>(Timestamp::max()))
        return std::nullopt;
    return moment;
}

std::string formatIsoDate(Timestamp time)
{
    using namespace std::chrono;

    const auto whole = floor<seconds>(time);
    const auto midnight = floor<days>(whole);
    const year_month_day date(midnight);
    const hh_mm_ss clock(whole - midnight);
    char text[sizeof "2024-05-01T10:00:00Z" + 32]; // room for years that have more digits
    const int length =
        std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                      static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                      static_cast<int>(clock.seconds().count()));
    return std::string(text, static_cast<std::size_t>(length));
}

} // namespace stavelin::support
