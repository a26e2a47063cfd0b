#include "views/SlotPreview.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace stavelin::views {

namespace {

constexpr qsizetype maximumLength = 200;
constexpr std::size_t examinedBytes = 16 * 1024;

/// The beginning of a UTF-8 text, not cut inside a character.
std::string_view beginningOf(std::string_view utf8, std::size_t maximumBytes)
{
    if (utf8.size() <= maximumBytes)
        return utf8;
    const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    std::size_t end = maximumBytes;
    while (end > 0 && isContinuation(utf8[end]))
        --end;
    return utf8.substr(0, end);
}

bool isBlank(QChar c)
{
    return c.isSpace() || c.category() == QChar::Other_Control;
}

bool turnsDirection(QChar c)
{
    const char16_t code = c.unicode();
    return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

/// Cut where a person sees the end of a character, which may consist of several code points.
QString shortened(QString text)
{
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype count = 0; count < maximumLength; ++count) {
        if (characters.toNextBoundary() < 0)
            return text;
    }
    if (characters.position() >= text.size())
        return text;
    text.truncate(characters.position());
    return text + QChar(0x2026);
}

} // namespace

QString slotPreview(std::string_view utf8)
{
    const std::string_view beginning = beginningOf(utf8, examinedBytes);
    const QString text = QString::fromUtf8(beginning.data(), static_cast<qsizetype>(beginning.size()));
    QString line;
    line.reserve(std::min(text.size(), 4 * maximumLength));
    bool spaceIsDue = false;
    for (const QChar c : text) {
        if (turnsDirection(c))
            continue;
        if (isBlank(c)) {
            spaceIsDue = !line.isEmpty();
            continue;
        }
        if (spaceIsDue)
            line += u' ';
        spaceIsDue = false;
        line += c;
    }
    return shortened(line);
}

} // namespace stavelin::views
