#include "model/classification/ReferenceClassifier.h"

#include "model/classification/Pattern.h"
#include "model/classification/ReferenceTables.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdlib>

namespace stavelin::testkit {

namespace {

using icu::UnicodeString;
using model::ContentClassification;
using model::ContentType;

std::string toUtf8(const UnicodeString &text)
{
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

bool contains(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

bool containsAny(const std::string &text, const std::vector<std::string> &parts)
{
    return std::ranges::any_of(parts, [&](const std::string &part) { return contains(text, part); });
}

std::string lowerCased(const std::string &text)
{
    return toUtf8(UnicodeString::fromUTF8(text).toLower(icu::Locale::getRoot()));
}

std::string upperCased(const std::string &text)
{
    return toUtf8(UnicodeString::fromUTF8(text).toUpper(icu::Locale::getRoot()));
}

std::string trimmed(const std::string &text)
{
    UnicodeString rest = UnicodeString::fromUTF8(text);
    while (!rest.isEmpty() && u_isUWhiteSpace(rest.char32At(0))) {
        rest.remove(0, 1);
    }
    while (!rest.isEmpty() && u_isUWhiteSpace(rest.char32At(rest.length() - 1))) {
        rest.truncate(rest.length() - 1);
    }
    return toUtf8(rest);
}

std::vector<std::string> split(const std::string &text, char separator)
{
    std::vector<std::string> pieces;
    std::string piece;
    for (const char byte : text + separator) {
        if (byte != separator) {
            piece += byte;
        } else if (!piece.empty()) {
            pieces.push_back(piece);
            piece.clear();
        }
    }
    return pieces;
}

std::optional<ContentClassification> secret(const std::string &text)
{
    const ContentClassification sensitive{ContentType::apiKey, "Sensitive"};
    if (contains(text, "\n")) {
        return std::nullopt;
    }
    for (const std::string &prefix : referencePrefixes) {
        if (lowerCased(text).starts_with(lowerCased(prefix))) {
            return sensitive;
        }
    }
    const auto characters = referenceCharacters(text);
    std::size_t tokenCharacters = 0;
    bool upper = false;
    bool lower = false;
    bool digit = false;
    for (const std::string &character : characters) {
        const UChar32 first = UnicodeString::fromUTF8(character).char32At(0);
        const bool isDigit = u_charType(first) == U_DECIMAL_DIGIT_NUMBER;
        if (u_isalpha(first) || isDigit || first == '-' || first == '_') {
            ++tokenCharacters;
        }
        upper |= u_charType(first) == U_UPPERCASE_LETTER;
        lower |= u_charType(first) == U_LOWERCASE_LETTER;
        digit |= isDigit;
    }
    if (characters.size() < 32 || tokenCharacters < characters.size() * 8 / 10) {
        return std::nullopt;
    }
    if (digit ? !upper && !lower : !upper || !lower) {
        return std::nullopt;
    }
    if (split(text, ' ').size() < 3) {
        return sensitive;
    }
    return std::nullopt;
}

std::optional<ContentClassification> email(const std::string &text)
{
    static const Pattern address("^[a-zA-Z0-9._%+-]+@[a-zA-Z0-9.-]+\\.[a-zA-Z]{2,}$");
    if (contains(text, "\n") || !address.matches(text)) {
        return std::nullopt;
    }
    return ContentClassification{ContentType::email, std::nullopt};
}

std::optional<ContentClassification> phone(const std::string &text)
{
    static const Pattern first("^\\+?1?[-.\\s]?\\(?\\d{3}\\)?[-.\\s]?\\d{3}[-.\\s]?\\d{4}$");
    static const Pattern second("^\\+\\d{1,3}[-.\\s]?\\d{1,4}[-.\\s]?\\d{1,4}[-.\\s]?\\d{1,9}$");
    static const Pattern third("^\\d{3}[-.\\s]?\\d{3}[-.\\s]?\\d{4}$");
    if (contains(text, "\n") || (!first.matches(text) && !second.matches(text) && !third.matches(text))) {
        return std::nullopt;
    }
    return ContentClassification{ContentType::phone, std::nullopt};
}

std::string serviceLabel(const std::string &host)
{
    std::string best;
    for (const auto &[known, label] : referenceServices) {
        if ((host == known || host.ends_with("." + known)) && known.size() > best.size()) {
            best = known;
        }
    }
    return best.empty() ? "" : referenceServices.at(best);
}

std::optional<ContentClassification> url(const std::string &text)
{
    static const Pattern scheme("^https?://");
    static const Pattern www("(?i)^www\\.");
    // RFC 3986, with the letters of RFC 3987
    static const Pattern parts("^https?://"
                               "(?:(?:[A-Za-z0-9\\-._~!$&'()*+,;=:]|%[0-9A-Fa-f]{2}"
                               "|(?![\\x{FFFD}\\p{Z}\\p{Cc}\\p{Cf}\\p{Cn}])[^\\x00-\\x7F])*@)?"
                               "(?:\\[(?=[^\\]]*:[^\\]]*:)([0-9A-Fa-f:.]+)\\]"
                               "|((?:[A-Za-z0-9\\-._~!$&'()*+,;=]|%[0-9A-Fa-f]{2}"
                               "|(?![\\x{FFFD}\\p{Z}\\p{Cc}\\p{Cf}\\p{Cn}])[^\\x00-\\x7F])+))"
                               "(?::[0-9]*)?(?:[/?#]|$)");
    if (contains(text, "\n") || (!scheme.matches(text) && !www.matches(text))) {
        return std::nullopt;
    }
    const auto match = parts.match(scheme.matches(text) ? text : "https://" + text);
    if (match.empty()) {
        return ContentClassification{ContentType::url, std::nullopt};
    }
    std::string host = lowerCased(match.back());
    if (const std::string label = serviceLabel(host); !label.empty()) {
        return ContentClassification{ContentType::url, label};
    }
    if (host.starts_with("www.")) {
        host = host.substr(4);
    }
    const auto characters = referenceCharacters(host);
    if (characters.size() >= 21) {
        host.clear();
        for (std::size_t i = 0; i < 17; ++i) {
            host += characters[i];
        }
        host += "...";
    }
    return ContentClassification{ContentType::url, host};
}

std::optional<ContentClassification> command(const std::string &text)
{
    const auto lines = split(text, '\n');
    const auto pieces = split(lines.empty() ? text : lines.front(), ' ');
    std::string word = pieces.empty() ? "" : pieces.front();
    if ((word == "sudo" || word == "su") && pieces.size() >= 2) {
        word = pieces[1];
    }
    if (referenceCommands.contains(word)) {
        return ContentClassification{ContentType::command, word};
    }
    if (text.starts_with("#!")) {
        return ContentClassification{ContentType::command, "script"};
    }
    return std::nullopt;
}

std::optional<ContentClassification> code(const std::string &text)
{
    if (referenceLanguage(text)) {
        return ContentClassification{ContentType::code, std::nullopt};
    }
    if (contains(text, "\n") &&
        ((contains(text, "{") && contains(text, "}")) || std::ranges::count(text, ';') > 1)) {
        return ContentClassification{ContentType::code, "Code"};
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> referenceLanguage(const std::string &text)
{
    const auto marked = [&](const std::string &language) {
        return containsAny(text, referenceLanguageMarkers.at(language));
    };
    if (marked("TypeScript")) {
        return "TypeScript";
    }
    if (marked("JavaScript")) {
        return "JavaScript";
    }
    if (marked("Python") && containsAny(text, {":", "    "}) &&
        (!contains(text, "{") || containsAny(text, {":{", ": {"}))) {
        return "Python";
    }
    if (marked("Swift") && containsAny(text, {"func ", "guard ", "@State", "@Binding"})) {
        return "Swift";
    }
    if (marked("Rust")) {
        return "Rust";
    }
    if (marked("Go") && containsAny(text, {"package ", ":= ", "func "}) &&
        !containsAny(text, {"guard ", "@State"})) {
        return "Go";
    }
    for (const char *language : {"Kotlin", "Java", "C++", "C"}) {
        if (marked(language)) {
            return language;
        }
    }
    if (marked("Ruby") && contains(text, "end") && containsAny(text, {"def ", "do "})) {
        return "Ruby";
    }
    if (marked("HTML")) {
        return "HTML";
    }
    if (marked("CSS") && contains(text, "{") && contains(text, "}") && contains(text, ":")) {
        return "CSS";
    }
    if (((text.starts_with("{") && text.ends_with("}")) || (text.starts_with("[") && text.ends_with("]"))) &&
        contains(text, ":") && containsAny(text, {"\"", "'"})) {
        return "JSON";
    }
    if (marked("YAML") && contains(text, ":") && !containsAny(text, {"{", ";"})) {
        return "YAML";
    }
    if (containsAny(upperCased(text), referenceLanguageMarkers.at("SQL"))) {
        return "SQL";
    }
    if (marked("Shell")) {
        return "Shell";
    }
    return std::nullopt;
}

std::vector<std::string> referenceMarkers()
{
    std::vector<std::string> all;
    for (const auto &[language, markers] : referenceLanguageMarkers) {
        all.insert(all.end(), markers.begin(), markers.end());
    }
    return all;
}

std::vector<std::string> referenceCharacters(const std::string &utf8)
{
    UErrorCode error = U_ZERO_ERROR;
    static const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
    const UnicodeString text = UnicodeString::fromUTF8(utf8);
    breaks->setText(text);
    std::vector<std::string> characters;
    int begin = 0;
    for (int end = breaks->next(); end != icu::BreakIterator::DONE; end = breaks->next()) {
        characters.push_back(toUtf8(text.tempSubStringBetween(begin, end)));
        begin = end;
    }
    return characters;
}

ContentClassification referenceClassify(const std::string &utf8)
{
    const std::string text = trimmed(utf8);
    if (text.empty()) {
        return {ContentType::text, std::nullopt};
    }
    for (const auto recognise : {secret, email, phone, url, command, code}) {
        if (auto result = recognise(text)) {
            return *result;
        }
    }
    return {ContentType::text, std::to_string(referenceCharacters(text).size()) + " chars"};
}

} // namespace stavelin::testkit
