#include "model/classification/Described.h"
#include "model/classification/Recognisers.h"
#include "model/classification/ReferenceTables.h"

#include <gtest/gtest.h>

namespace stavelin::model::classification {
namespace {

std::string kindOf(std::string_view text)
{
    return described(recogniseCommand(text));
}

TEST(CommandRecogniser, everyCommandWordIsKnownAsItIsWritten)
{
    EXPECT_EQ(testkit::referenceCommands.size(), 85u);
    for (const std::string &word : testkit::referenceCommands) {
        EXPECT_EQ(kindOf(word), "command [" + word + "]");
        const bool passesOn = word == "sudo" || word == "su";
        EXPECT_EQ(kindOf(word + " argument"), passesOn ? "nothing" : "command [" + word + "]");
        EXPECT_EQ(kindOf(word + "\nsecond line"), "command [" + word + "]");
        EXPECT_EQ(kindOf(word + "_"), "nothing");
        std::string capital = word;
        capital.front() = static_cast<char>(capital.front() - 'a' + 'A');
        EXPECT_EQ(kindOf(capital), "nothing");
    }
}

TEST(CommandRecogniser, sudoAndSuPassOnToTheNextWord)
{
    EXPECT_EQ(kindOf("sudo apt-get install x"), "command [apt-get]");
    EXPECT_EQ(kindOf("sudo brew install x"), "command [brew]");
    EXPECT_EQ(kindOf("su  git"), "command [git]");
    EXPECT_EQ(kindOf("sudo su x"), "command [su]");
    EXPECT_EQ(kindOf("sudo sudo git"), "command [sudo]");
    EXPECT_EQ(kindOf("sudo"), "command [sudo]");
    EXPECT_EQ(kindOf("su"), "command [su]");
    EXPECT_EQ(kindOf("sudo\ngit"), "command [sudo]");
    EXPECT_EQ(kindOf("sudo unheard-of"), "nothing");
}

TEST(CommandRecogniser, onlyTheFirstLineCounts)
{
    EXPECT_EQ(kindOf("git pull\nmake"), "command [git]");
    EXPECT_EQ(kindOf("hello\ngit pull"), "nothing");
    EXPECT_EQ(kindOf("\n\n  git pull"), "command [git]");
}

TEST(CommandRecogniser, onlyBlanksPartWordsAndOnlyLineFeedsPartLines)
{
    EXPECT_EQ(kindOf("git\tpull"), "nothing");
    EXPECT_EQ(kindOf("git\u00A0pull"), "nothing");
    EXPECT_EQ(kindOf("git\r\npull"), "nothing");
    EXPECT_EQ(kindOf("git pull\r\nmake"), "command [git]");
    EXPECT_EQ(kindOf("   git   pull"), "command [git]");
}

TEST(CommandRecogniser, anInterpreterLineMakesAScript)
{
    EXPECT_EQ(kindOf("#!/usr/bin/env node"), "command [script]");
    EXPECT_EQ(kindOf("#!"), "command [script]");
    EXPECT_EQ(kindOf("#!/bin/bash\necho"), "command [script]");
    EXPECT_EQ(kindOf("# !"), "nothing");
    EXPECT_EQ(kindOf("x #!/bin/sh"), "nothing");
}

TEST(CommandRecogniser, textWithoutAnyWordIsNone)
{
    EXPECT_EQ(kindOf(""), "nothing");
    EXPECT_EQ(kindOf("\n\n"), "nothing");
    EXPECT_EQ(kindOf("   "), "nothing");
}

} // namespace
} // namespace stavelin::model::classification
