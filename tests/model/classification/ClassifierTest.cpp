#include "model/classification/Classifier.h"

#include "model/classification/Described.h"

#include <gtest/gtest.h>

namespace stavelin::model {
namespace {

std::string kindOf(std::string_view text)
{
    return described(classify(text));
}

TEST(Classifier, nothingButWhiteSpaceIsTextWithoutMetadata)
{
    for (const std::string_view text : {"", "   ", "\n", "\t \r\n", "\u00A0\u3000", "\u2028"}) {
        EXPECT_EQ(kindOf(text), "text") << testing::PrintToString(text);
    }
}

TEST(Classifier, plainTextSaysHowManyCharactersItHas)
{
    EXPECT_EQ(kindOf("hello"), "text [5 chars]");
    EXPECT_EQ(kindOf("x"), "text [1 chars]");
    EXPECT_EQ(kindOf("The quick brown fox jumps over a lazy dog."), "text [42 chars]");
}

TEST(Classifier, charactersAreCountedAsPeopleSeeThem)
{
    EXPECT_EQ(kindOf("gru\u0308n"), "text [4 chars]");
    EXPECT_EQ(kindOf("👩‍👩‍👧‍👦🇩🇪!"), "text [3 chars]");
    EXPECT_EQ(kindOf("नमस्ते"), "text [3 chars]");
    EXPECT_EQ(kindOf("one\r\ntwo"), "text [7 chars]");
}

TEST(Classifier, whiteSpaceAtBothEndsDoesNotCount)
{
    EXPECT_EQ(kindOf("  hello\r\n"), "text [5 chars]");
    EXPECT_EQ(kindOf("\u00A0hello\u2003\n\n"), "text [5 chars]");
    EXPECT_EQ(kindOf("\n\n555-123-4567\n"), "phone");
    EXPECT_EQ(kindOf("\tghp_abc\n"), "apiKey [Sensitive]");
    EXPECT_EQ(kindOf("\n git status\n"), "command [git]");
}

struct Example
{
    std::string_view text;
    std::string_view kind;
};

TEST(Classifier, everyKindIsToldByItsShape)
{
    constexpr Example examples[]{
        {"ghp_abc", "apiKey [Sensitive]"},
        {"someone@example.org", "email"},
        {"+44 20 7946 0958", "phone"},
        {"https://example.org/path", "url [example.org]"},
        {"sudo apt-get install x", "command [apt-get]"},
        {"#!/usr/bin/env node", "command [script]"},
        {"const a = 1", "code"},
        {"x {\n y }", "code [Code]"},
        {"a;b;c", "text [5 chars]"},
    };
    for (const Example &example : examples) {
        EXPECT_EQ(kindOf(example.text), example.kind) << example.text;
    }
}

TEST(Classifier, theFirstKindThatFitsWins)
{
    constexpr Example examples[]{
        // a secret before an e-mail address, an address of the web and a command
        {"api_team@example.org", "apiKey [Sensitive]"},
        {"https://example.org/0123456789abcdef0123456789", "apiKey [Sensitive]"},
        {"sk-", "apiKey [Sensitive]"},
        // an address of the web before code
        {"www.example.org/a=> b", "url [example.org]"},
        // a command before code
        {"git commit -m 'const x'", "command [git]"},
        {"#!/bin/sh\necho done", "command [script]"},
        // ten digits are a telephone number, not text
        {"5551234567", "phone"},
    };
    for (const Example &example : examples) {
        EXPECT_EQ(kindOf(example.text), example.kind) << example.text;
    }
}

TEST(Classifier, aSecondLineEndsWhatMustStandOnOne)
{
    constexpr Example examples[]{
        {"ghp_abc\nmore", "text [12 chars]"},
        {"someone@example.org\nmore", "text [24 chars]"},
        {"555-123-4567\n555-123-4568", "text [25 chars]"},
        {"https://example.org\nmore", "text [24 chars]"},
        {"x\ngit status", "text [12 chars]"},
    };
    for (const Example &example : examples) {
        EXPECT_EQ(kindOf(example.text), example.kind) << example.text;
    }
}

TEST(Classifier, bytesThatAreNotUtf8AreCharactersThatMatchNothing)
{
    EXPECT_EQ(kindOf("\xFF\xFE"), "text [2 chars]");
    EXPECT_EQ(kindOf("ab\xC3"), "text [3 chars]");
    EXPECT_EQ(kindOf("\xE2\x82 x"), "text [3 chars]");
    EXPECT_EQ(kindOf("\x80\x80\x80\x80"), "text [4 chars]");
    EXPECT_EQ(kindOf("555-123-456\xE2"), "text [12 chars]");
    EXPECT_EQ(kindOf("a\xFF@example.org"), "text [14 chars]");
    EXPECT_EQ(kindOf("https://exa\xFFmple.org"), "url");
    EXPECT_EQ(kindOf("con\xFFst a"), "text [8 chars]");
}

TEST(Classifier, aZeroByteIsACharacterLikeOthers)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(kindOf("a\0b"sv), "text [3 chars]");
    EXPECT_EQ(kindOf("\0const x"sv), "code");
}

TEST(Classifier, metadataIsWellFormedWhateverTheBytes)
{
    // A host is the only piece of the text that becomes metadata unchecked by a table.
    for (const std::string_view host : {"a\xC3", "\xED\xA0\x80.org", "\xC0\xAF.org", "x\x80y"}) {
        EXPECT_EQ(kindOf("https://" + std::string(host) + "/"), "url");
    }
}

TEST(Classifier, longTextsOfEveryMakeAreClassifiedToTheEnd)
{
    constexpr std::size_t length = 1'000'000;
    const auto repeated = [](std::string_view piece) {
        std::string text;
        while (text.size() < length) {
            text += piece;
        }
        return text;
    };
    EXPECT_EQ(kindOf(std::string(length, 'a')), "text [1000000 chars]");
    EXPECT_EQ(kindOf(std::string(length, 'a') + "const "), "text [1000005 chars]");
    EXPECT_EQ(kindOf(std::string(length, 'a') + "const x"), "code");
    EXPECT_EQ(kindOf(std::string(length, '1') + "a"), "apiKey [Sensitive]");
    EXPECT_EQ(kindOf(std::string(length, '{') + "\n}"), "code [Code]");
    EXPECT_EQ(kindOf(std::string(length, 'a') + "@example.org"), "email");
    EXPECT_EQ(kindOf(std::string(length, '.') + "@."), "text [1000002 chars]");
    EXPECT_EQ(kindOf("www." + repeated("a.")), "url [a.a.a.a.a.a.a.a.a...]");
    EXPECT_EQ(kindOf("+" + std::string(length, '5')), "text [1000001 chars]");
    EXPECT_EQ(kindOf("a" + repeated("\u0301")), "text [1 chars]");
    EXPECT_EQ(kindOf(repeated("\n ") + "x"), "text [1 chars]");
}

TEST(Classifier, theSameTextIsAlwaysOfTheSameKind)
{
    const ContentClassification first = classify("select name from people");
    EXPECT_EQ(classify("select name from people"), first);
}

} // namespace
} // namespace stavelin::model
