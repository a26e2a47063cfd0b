#include "model/classification/RandomTexts.h"

#include "model/classification/ReferenceClassifier.h"
#include "model/classification/ReferenceTables.h"

#include <algorithm>

namespace stavelin::testkit {

namespace {

using Choices = std::vector<std::string>;

const Choices oddities{" ",
                       "  ",
                       "\t",
                       "\r",
                       "\n",
                       "\r\n",
                       "\xC2\xA0",
                       "\xE3\x80\x80",
                       "\xE2\x80\xA8",
                       "\xC2\x85",
                       "\xE2\x80\x8B",
                       "ä",
                       "Ä",
                       "ß",
                       "ı",
                       "ſ",
                       "ﬁ",
                       "ﬀ",
                       "ŉ",
                       "K",
                       "İ",
                       "Σ",
                       "я",
                       "Я",
                       "中",
                       "文",
                       "ア",
                       "한",
                       "ᄒ",
                       "ᅡ",
                       "ᆫ",
                       "각",
                       "क्षि",
                       "क",
                       "्",
                       "ি",
                       "\u0301",
                       "\u0308",
                       "\u200D",
                       "\uFE0F",
                       "👩",
                       "👩‍👩‍👧",
                       "👍🏽",
                       "🇩",
                       "🇪",
                       "©",
                       "❤️",
                       "\u0600",
                       "٣",
                       "５",
                       "१",
                       "Ⅷ",
                       "ǅ",
                       "Ⓐ",
                       "\u00AD",
                       "\uFFFD",
                       "\x80",
                       "\xC3",
                       "\xE2\x82",
                       "\xF0\x9F\x98",
                       "\xED\xA0\x80",
                       "\xC0\xAF",
                       "\xF8\x88\x80\x80\x80",
                       "\xFF",
                       std::string(1, '\0'),
                       "\x7F"};

const Choices punctuation{
    "{",    "}",      "[",      "]",     "(",        ")",   ":",   ";", ";", ",",  ".",   "'",
    "\"",   "#!",     "- ",     ":{",    ": {",      ":= ", "end", "<", ">", "=>", "do ", "def ",
    "    ", "@State", "guard ", "func ", "package ", "/",   "?",   "&", "=", "_",  "-",   "--"};

const Choices words{"hello",   "World", "fly ",  "Agenda", "friend", "x",    "y ",   "42", "7",     "A1b2",
                    "select ", "From ", "where", "fi",     "Selec",  "unti", "clas", "s ", "inter", "face "};

const Choices tokenPieces{"a", "b", "z", "Q", "R",   "0",   "9",   "5",
                          "_", "-", "x", "K", "abc", "XYZ", "123", "deadbeef"};

const Choices phonePieces{"+", "1", "+1", "555", "123", "4567", "20", "7946", "0958",  "0",
                          "-", ".", " ",  "(",   ")",   "44",   "9",  "٥",    "\u00A0"};

const Choices hosts{"github.com",
                    "GitHub.com",
                    "gist.github.com",
                    "docs.google.com",
                    "a.docs.google.com",
                    "xgoogle.com",
                    "www.google.com",
                    "console.aws.amazon.com",
                    "x.com",
                    "netflix.com",
                    "example.org",
                    "localhost",
                    "www.",
                    "a-host-of-20-chars.o",
                    "a-host-of-21-chars.or",
                    "averyveryverylonghost.example",
                    "münchen.example",
                    "ÄÖÜ.example",
                    "[::1]",
                    "[fe80::1",
                    "[12]",
                    "1.2.3.4",
                    "a b",
                    "",
                    "a_b.c",
                    "%C3%A4.c",
                    "%zz",
                    "ΑΣ.gr",
                    "developer.apple.com.",
                    ".com",
                    "пример.испытание",
                    "👩‍👩‍👧👩‍👩‍👧.ws",
                    "SLACK.com",
                    "a<b"};

} // namespace

const std::string &RandomTexts::oneOf(const Choices &choices)
{
    return choices[below(choices.size())];
}

std::string RandomTexts::joined(const Choices &choices, std::size_t most)
{
    std::string text;
    for (std::size_t count = below(most + 1); count > 0; --count) {
        text += oneOf(choices);
    }
    return text;
}

std::string RandomTexts::disturbed(std::string text)
{
    while (oneIn(3)) {
        const std::string &extra = oneIn(2) ? oneOf(oddities) : oneOf(punctuation);
        text.insert(below(text.size() + 1), extra);
    }
    if (!text.empty() && oneIn(6)) {
        text.erase(below(text.size()), 1);
    }
    return text;
}

std::string RandomTexts::token()
{
    std::string text = oneIn(6) ? oneOf(referencePrefixes) : "";
    const std::size_t length = 24 + below(24);
    const bool digitsOnly = oneIn(8);
    const bool lettersOnly = oneIn(4);
    while (text.size() < length) {
        if (oneIn(25)) {
            text += oneIn(2) ? " " : oneOf(oddities);
        } else if (digitsOnly) {
            text += std::to_string(below(1000));
        } else if (lettersOnly) {
            text += static_cast<char>((oneIn(20) ? 'A' : 'a') + static_cast<char>(below(26)));
        } else {
            text += oneIn(6) ? oneOf(punctuation) : oneOf(tokenPieces);
        }
    }
    return text;
}

std::string RandomTexts::email()
{
    static const Choices pieces{"a", "Z", "9", ".", "_", "%", "+", "-", "com", "name", "x."};
    return joined(pieces, 5) + "@" + joined(pieces, 5) + "." + joined({"a", "Bc", "org", "1"}, 2);
}

std::string RandomTexts::phone()
{
    static const Choices shapes{
        "555-123-4567",    "(555) 123.4567", "+1 (555)123-4567", "+44 20 7946 0958",
        "+1234567890",     "5551234567",     "15551234567",      "+999 9999 9999 999999999",
        "+1.555.123.4567", "555 123 4567",   "+49-30-1-2"};
    return oneIn(2) ? oneOf(shapes) : joined(phonePieces, 9);
}

std::string RandomTexts::url()
{
    std::string text =
        oneOf({"https://", "http://", "HTTPS://", "www.", "WWW.", "https:/", "wWw.", "ftp://"});
    if (oneIn(4)) {
        text += oneOf({"user@", "user:pass@", "a@b@", "@", "a b@", "ü@"});
    }
    text += oneOf(hosts);
    if (oneIn(4)) {
        text += oneOf({":80", ":", ":8a", ":80:80"});
    }
    if (!oneIn(3)) {
        text += oneOf({"/", "/path?query#part", "?q", "#f", "/a b", "/ü%zz", "\\x"});
    }
    return text;
}

std::string RandomTexts::command()
{
    static const Choices all(referenceCommands.begin(), referenceCommands.end());
    std::string text = oneOf({"", "", "sudo ", "su ", "sudo  ", "sudo\t", "#!", "#!/usr/bin/env "});
    text += oneIn(5) ? oneOf(words) : oneOf(all);
    return text + oneOf({"", " ", "\n", "\r\n", "\t", ";", " -x"}) + joined(words, 3);
}

std::string RandomTexts::bytes()
{
    std::string text;
    for (std::size_t count = below(60); count > 0; --count) {
        text += static_cast<char>(oneIn(2) ? below(256) : 0x20 + below(0x5F));
    }
    return text;
}

std::string RandomTexts::next(Kind kind)
{
    static const Choices markers = referenceMarkers();
    std::string text;
    switch (kind) {
    case Kind::pieces:
    case Kind::lines:
        for (std::size_t count = 1 + below(8); count > 0; --count) {
            const std::size_t choice = below(10);
            text += choice < 2   ? oneOf(markers)
                    : choice < 5 ? oneOf(punctuation)
                    : choice < 8 ? oneOf(words)
                                 : oneOf(oddities);
            text += kind == Kind::lines && oneIn(3) ? "\n" : "";
        }
        return text;
    case Kind::token:
        return token();
    case Kind::email:
        return disturbed(email());
    case Kind::phone:
        return disturbed(phone());
    case Kind::url:
        return disturbed(url());
    case Kind::command:
        return disturbed(command());
    case Kind::letterCase:
        text = joined(words, 2) + oneOf(markers) + joined(words, 2);
        for (char &byte : text) {
            if (oneIn(2) && ((byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'))) {
                byte = static_cast<char>(byte ^ 0x20);
            }
        }
        // letters whose upper-case form is one of ASCII
        for (const auto &[plain, other] : {std::pair{"s", "ſ"}, {"i", "ı"}, {"S", "ſ"}, {"ft", "ﬅ"}}) {
            if (const std::size_t at = text.find(plain); at != std::string::npos && oneIn(3)) {
                text.replace(at, std::string(plain).size(), other);
            }
        }
        return text;
    case Kind::bytes:
        return bytes();
    }
    return text;
}

} // namespace stavelin::testkit
