#include "platform/qt/SettingsUserDefaults.h"
#include "testkit/FakeUserDefaults.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <string>

namespace stavelin {

namespace {

/// The real settings, in a folder of their own.
class SettingsInAFile
{
public:
    platform::UserDefaults &defaults() { return m_defaults; }

private:
    QTemporaryDir m_folder;
    platform::qt::SettingsUserDefaults m_defaults{std::filesystem::path(m_folder.path().toStdString()) /
                                                  "sub" / "stavelin.conf"};
};

class SettingsInMemory
{
public:
    platform::UserDefaults &defaults() { return m_defaults; }

private:
    testkit::FakeUserDefaults m_defaults;
};

struct SettingsNames
{
    template <typename Settings>
    static std::string GetName(int)
    {
        return std::is_same_v<Settings, SettingsInAFile> ? "SettingsUserDefaults" : "FakeUserDefaults";
    }
};

} // namespace

template <typename Settings>
class UserDefaultsContract : public testing::Test
{
protected:
    Settings settings;
    platform::UserDefaults &defaults = settings.defaults();
};

using Kinds = testing::Types<SettingsInAFile, SettingsInMemory>;
TYPED_TEST_SUITE(UserDefaultsContract, Kinds, SettingsNames);

TYPED_TEST(UserDefaultsContract, anAbsentKeyIsZeroAndEmpty)
{
    EXPECT_EQ(this->defaults.integer("nextSlotIndex"), 0);
    EXPECT_EQ(this->defaults.string("modifierRoles"), "");
}

TYPED_TEST(UserDefaultsContract, anIntegerComesBackAsItWasWritten)
{
    for (const std::int64_t value :
         {std::int64_t{1}, std::int64_t{0}, std::int64_t{-7}, std::numeric_limits<std::int64_t>::min(),
          std::numeric_limits<std::int64_t>::max()}) {
        this->defaults.setInteger("nextSlotIndex", value);
        EXPECT_EQ(this->defaults.integer("nextSlotIndex"), value);
    }
}

TYPED_TEST(UserDefaultsContract, aTextComesBackAsItWasWritten)
{
    for (const std::string text :
         {"literal", "", "/home/Jörg/スクリーン 📸", "one, two; three", "\"quoted\" and \\ back",
          "@Invalid()", "a=b#c%d", "two\nlines\tand a tab", " spaces around ", "[section]"}) {
        this->defaults.setString("screenshotFolderBookmark", text);
        EXPECT_EQ(this->defaults.string("screenshotFolderBookmark"), text);
    }
}

TYPED_TEST(UserDefaultsContract, aTextThatIsNoIntegerIsZeroAsOne)
{
    for (const std::string text : {"seven", "", "7 slots", "0x7", "1e3", "3.5", "99999999999999999999"}) {
        this->defaults.setString("nextSlotIndex", text);
        EXPECT_EQ(this->defaults.integer("nextSlotIndex"), 0) << text;
    }
}

TYPED_TEST(UserDefaultsContract, aTextThatSpellsAnIntegerIsOne)
{
    this->defaults.setString("nextSlotIndex", "7");
    EXPECT_EQ(this->defaults.integer("nextSlotIndex"), 7);
    this->defaults.setInteger("nextSlotIndex", 8);
    EXPECT_EQ(this->defaults.string("nextSlotIndex"), "8");
}

TYPED_TEST(UserDefaultsContract, keysDoNotTouchEachOther)
{
    this->defaults.setInteger("nextSlotIndex", 4);
    this->defaults.setString("modifierRoles", "literal");
    this->defaults.setInteger("nextslotindex", 9);
    EXPECT_EQ(this->defaults.integer("nextSlotIndex"), 4);
    EXPECT_EQ(this->defaults.string("modifierRoles"), "literal");
}

namespace {

/// Sets a variable of the environment for the life of this object.
class ScopedVariable
{
public:
    ScopedVariable(const char *name, const QByteArray &value)
        : m_name(name), m_before(qgetenv(name)), m_wasSet(qEnvironmentVariableIsSet(name))
    {
        qputenv(name, value);
    }
    ~ScopedVariable()
    {
        if (m_wasSet)
            qputenv(m_name, m_before);
        else
            qunsetenv(m_name);
    }
    ScopedVariable(const ScopedVariable &) = delete;
    ScopedVariable &operator=(const ScopedVariable &) = delete;

private:
    const char *m_name;
    QByteArray m_before;
    bool m_wasSet;
};

std::string contentOf(const std::filesystem::path &file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

TEST(SettingsUserDefaults, everyWriteIsInTheUsersConfigurationFolderWhenTheCallReturns)
{
    const QTemporaryDir folder;
    const ScopedVariable variable("XDG_CONFIG_HOME", folder.path().toUtf8());
    platform::qt::SettingsUserDefaults defaults;
    const auto file = std::filesystem::path(folder.path().toStdString()) / "Stavelin" / "stavelin.conf";

    defaults.setInteger("nextSlotIndex", 5);
    EXPECT_NE(contentOf(file).find("nextSlotIndex=5\n"), std::string::npos) << contentOf(file);
    defaults.setString("modifierRoles", "literal");
    EXPECT_NE(contentOf(file).find("modifierRoles=literal\n"), std::string::npos) << contentOf(file);
}

TEST(SettingsUserDefaults, theNextRunFindsWhatThisOneWrote)
{
    const QTemporaryDir folder;
    const auto file = std::filesystem::path(folder.path().toStdString()) / "stavelin.conf";
    {
        platform::qt::SettingsUserDefaults defaults(file);
        defaults.setInteger("nextSlotIndex", 6);
        defaults.setString("screenshotFolderBookmark", "/home/Jörg, \"Bilder\"");
    }
    // Another process knows nothing of this one's cache, so read what is there under another name.
    const auto copy = std::filesystem::path(folder.path().toStdString()) / "copy.conf";
    std::filesystem::copy_file(file, copy);
    const platform::qt::SettingsUserDefaults defaults(copy);
    EXPECT_EQ(defaults.integer("nextSlotIndex"), 6);
    EXPECT_EQ(defaults.string("screenshotFolderBookmark"), "/home/Jörg, \"Bilder\"");
}

TEST(SettingsUserDefaults, anIntegerThatSomeoneTypedIntoTheFileIsRead)
{
    const QTemporaryDir folder;
    const auto file = std::filesystem::path(folder.path().toStdString()) / "stavelin.conf";
    std::ofstream(file) << "[General]\nnextSlotIndex=3\nmodifierRoles=literal\nbroken=one, two\n";
    const platform::qt::SettingsUserDefaults defaults(file);
    EXPECT_EQ(defaults.integer("nextSlotIndex"), 3);
    EXPECT_EQ(defaults.string("modifierRoles"), "literal");
    EXPECT_EQ(defaults.integer("broken"), 0);
}

} // namespace stavelin
