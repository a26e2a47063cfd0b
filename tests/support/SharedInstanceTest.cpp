#include "support/SharedInstance.h"

#include <gtest/gtest.h>

namespace stavelin::support {
namespace {

struct Counted
{
    static inline int made = 0;
    static inline int alive = 0;
    Counted()
    {
        ++made;
        ++alive;
    }
    ~Counted() { --alive; }
};
struct NeverInstalled
{};

TEST(SharedInstance, isMadeOnFirstUseAndOnceOnly)
{
    SharedInstance<Counted>::install([] { return std::make_unique<Counted>(); });
    EXPECT_EQ(Counted::made, 0);
    Counted &first = SharedInstance<Counted>::get();
    EXPECT_EQ(&SharedInstance<Counted>::get(), &first);
    EXPECT_EQ(Counted::made, 1);

    SharedInstance<Counted>::uninstall();
    EXPECT_EQ(Counted::alive, 0);
}

TEST(SharedInstanceDeathTest, useBeforeInstallationAbortsWithTheTypesName)
{
    EXPECT_DEATH(SharedInstance<NeverInstalled>::get(), "before it was installed: .*NeverInstalled");
}

} // namespace
} // namespace stavelin::support
