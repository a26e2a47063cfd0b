#include "views/PanelFrame.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace stavelin::views {

namespace {

long long visibleArea(const QRect &frame, const QRect &screen)
{
    const QRect common = frame.intersected(screen);
    return common.isEmpty() ? 0 : static_cast<long long>(common.width()) * common.height();
}

int distance(const QRect &frame, const QRect &screen)
{
    return (frame.center() - screen.center()).manhattanLength();
}

const QRect &bestScreen(const QRect &frame, const QList<QRect> &screens)
{
    return *std::ranges::max_element(screens, [&frame](const QRect &a, const QRect &b) {
        const long long areaOfA = visibleArea(frame, a);
        const long long areaOfB = visibleArea(frame, b);
        return areaOfA != areaOfB ? areaOfA < areaOfB : distance(frame, a) > distance(frame, b);
    });
}

int shifted(int position, int length, int from, int available)
{
    return std::max(from, std::min(position, from + available - length));
}

} // namespace

std::string encodeFrame(const QRect &frame)
{
    return std::to_string(frame.x()) + ' ' + std::to_string(frame.y()) + ' ' + std::to_string(frame.width()) +
           ' ' + std::to_string(frame.height());
}

std::optional<QRect> decodeFrame(std::string_view text)
{
    std::array<int, 4> numbers{};
    const char *position = text.data();
    const char *end = position + text.size();
    for (int &number : numbers) {
        if (&number != &numbers.front()) {
            if (position == end || *position != ' ')
                return std::nullopt;
            ++position;
        }
        const auto result = std::from_chars(position, end, number);
        // A coordinate that far away comes from a damaged file, and arithmetic on it could overflow.
        constexpr int furthest = 1'000'000;
        if (result.ec != std::errc() || number > furthest || number < -furthest)
            return std::nullopt;
        position = result.ptr;
    }
    const QRect frame(numbers[0], numbers[1], numbers[2], numbers[3]);
    if (position != end || frame.isEmpty())
        return std::nullopt;
    return frame;
}

QRect clampedFrame(const QRect &frame, const QList<QRect> &screens)
{
    const QSize size = frame.size().expandedTo(minimumPanelSize).boundedTo(maximumPanelSize);
    if (screens.isEmpty())
        return {frame.topLeft(), size};
    const QRect &screen = bestScreen(frame, screens);
    const QSize fitting = size.boundedTo(screen.size()).expandedTo(minimumPanelSize);
    return {shifted(frame.x(), fitting.width(), screen.x(), screen.width()),
            shifted(frame.y(), fitting.height(), screen.y(), screen.height()), fitting.width(),
            fitting.height()};
}

QRect centredFrame(const QRect &screen)
{
    const QSize size = defaultPanelSize;
    return {screen.x() + (screen.width() - size.width()) / 2,
            screen.y() + (screen.height() - size.height()) / 2, size.width(), size.height()};
}

} // namespace stavelin::views
