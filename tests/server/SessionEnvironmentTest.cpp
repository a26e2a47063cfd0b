#include "server/SessionEnvironment.h"

#include "testkit/TemporaryFolder.h"

#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace stavelin;
using server::SessionEnvironment;
using Display = SessionEnvironment::Display;

namespace {

class SessionFinding : public testing::Test
{
protected:
    void SetUp() override
    {
        m_sources.procRoot = m_proc.path();
        m_sources.parent = [this] { return m_parent; };
        m_sources.uid = ::geteuid();
    }

    void addProcess(pid_t process, const std::vector<std::string> &variables) const
    {
        const auto folder = m_proc.path() / std::to_string(process);
        std::filesystem::create_directories(folder);
        std::ofstream file(folder / "environ", std::ios::binary);
        for (const std::string &variable : variables)
            file << variable << '\0';
    }

    [[nodiscard]] SessionEnvironment environment() const { return SessionEnvironment(m_sources); }

    testkit::TemporaryFolder m_proc;
    SessionEnvironment::Sources m_sources;
    pid_t m_parent = 100;
};

} // namespace

TEST_F(SessionFinding, believesItsOwnEnvironmentFirst)
{
    m_sources.own = {{"DISPLAY", ":1"}};
    addProcess(100, {"DISPLAY=:2"});
    EXPECT_EQ(environment().find("DISPLAY"), ":1");
}

TEST_F(SessionFinding, asksItsParentNext)
{
    addProcess(100, {"PATH=/bin", "HOME=/home/parent", "XDG_DATA_HOME=/data", "XDG_RUNTIME_DIR=/run/user/1",
                     "DISPLAY=:2", "XAUTHORITY=/keys", "WAYLAND_DISPLAY=wayland-0",
                     "DBUS_SESSION_BUS_ADDRESS=unix:x=1"});
    addProcess(200, {"DISPLAY=:3"});
    EXPECT_EQ(environment().find("HOME"), "/home/parent");
    EXPECT_EQ(environment().find("XDG_DATA_HOME"), "/data");
    EXPECT_EQ(environment().find("XDG_RUNTIME_DIR"), "/run/user/1");
    EXPECT_EQ(environment().find("DISPLAY"), ":2");
    EXPECT_EQ(environment().find("XAUTHORITY"), "/keys");
    EXPECT_EQ(environment().find("WAYLAND_DISPLAY"), "wayland-0");
    EXPECT_EQ(environment().find("DBUS_SESSION_BUS_ADDRESS"), "unix:x=1");
    EXPECT_EQ(environment().find("PATH"), std::nullopt);
}

TEST_F(SessionFinding, believesNoProcessOfAnotherUser)
{
    addProcess(100, {"DISPLAY=:2"});
    addProcess(200, {"DISPLAY=:3"});
    m_sources.uid += 1;
    EXPECT_EQ(environment().find("DISPLAY"), std::nullopt);
    EXPECT_TRUE(environment().displays().empty());
}

TEST_F(SessionFinding, takesTheHomeFolderFromTheUserDatabase)
{
    m_sources.home = "/home/database";
    addProcess(200, {"DISPLAY=:3", "HOME=/home/other"});
    EXPECT_EQ(environment().find("HOME"), "/home/database");
}

TEST_F(SessionFinding, asksTheUsersOtherProcessesLastAndBelievesTheMajority)
{
    addProcess(200, {"DISPLAY=:3", "XAUTHORITY=/three"});
    addProcess(201, {"DISPLAY=:4", "XAUTHORITY=/four"});
    addProcess(202, {"DISPLAY=:4", "XAUTHORITY=/four"});
    addProcess(203, {"HOME=/somewhere"});
    EXPECT_EQ(environment().find("DISPLAY"), ":4");
    EXPECT_THAT(environment().displays(),
                testing::ElementsAre(Display{":4", "/four"}, Display{":3", "/three"}));
}

TEST_F(SessionFinding, namesEachDisplayOnceWithTheKeyThatStoodBesideIt)
{
    m_sources.own = {{"DISPLAY", ":1"}, {"XAUTHORITY", "/one"}};
    addProcess(100, {"DISPLAY=:1", "XAUTHORITY=/one"});
    addProcess(200, {"DISPLAY=:2", "XAUTHORITY=/two"});
    EXPECT_THAT(environment().displays(), testing::ElementsAre(Display{":1", "/one"}, Display{":2", "/two"}));
}

TEST_F(SessionFinding, looksForTheKeyInTheHomeFolderWhenNoneIsNamed)
{
    const testkit::TemporaryFolder home;
    m_sources.own = {{"DISPLAY", ":1"}, {"HOME", home.path()}};
    EXPECT_THAT(environment().displays(), testing::ElementsAre(Display{":1", std::nullopt}));
    std::ofstream(home.path() / ".Xauthority") << "key";
    EXPECT_THAT(environment().displays(), testing::ElementsAre(Display{":1", home.path() / ".Xauthority"}));
}

TEST_F(SessionFinding, looksAfreshEachTime)
{
    const SessionEnvironment asked = environment();
    EXPECT_TRUE(asked.displays().empty());
    addProcess(300, {"DISPLAY=:5"});
    EXPECT_THAT(asked.displays(), testing::ElementsAre(Display{":5", std::nullopt}));
    m_parent = 1;
    addProcess(1, {"DISPLAY=:6"});
    EXPECT_EQ(asked.find("DISPLAY"), ":6");
}

TEST_F(SessionFinding, countsAnEmptyValueAsNone)
{
    addProcess(100, {"DISPLAY=", "HOME=/home/parent"});
    addProcess(200, {"DISPLAY=:3"});
    EXPECT_EQ(environment().find("DISPLAY"), ":3");
}

TEST_F(SessionFinding, keepsDataWhereTheSessionSays)
{
    EXPECT_EQ(environment().dataFolder(), std::nullopt);
    m_sources.home = "/home/user";
    EXPECT_EQ(environment().dataFolder(), "/home/user/.local/share");
    m_sources.own["XDG_DATA_HOME"] = "relative";
    EXPECT_EQ(environment().dataFolder(), "/home/user/.local/share");
    m_sources.own["XDG_DATA_HOME"] = "/data";
    EXPECT_EQ(environment().dataFolder(), "/data");
}

TEST(SessionOfThisProcess, hasItsEnvironmentItsParentAndItsHome)
{
    ASSERT_EQ(::setenv("DISPLAY", ":77", 1), 0);
    const SessionEnvironment environment(SessionEnvironment::sourcesOfThisProcess());
    EXPECT_EQ(environment.find("DISPLAY"), ":77");
    EXPECT_TRUE(environment.find("HOME"));
}
