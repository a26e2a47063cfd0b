#include "e2e/DesktopTest.h"

#include <filesystem>
#include <iostream>
#include <string>

namespace stavelin::e2e {

void DesktopTest::TearDown()
{
    if (!HasFailure()) {
        return;
    }
    const auto *test = testing::UnitTest::GetInstance()->current_test_info();
    const std::filesystem::path folder = STAVELIN_FAILURES;
    std::filesystem::create_directories(folder);
    const std::filesystem::path picture = folder / (std::string(test->name()) + ".png");
    desktop.screenshot(picture);
    std::cout << "The screen: " << picture.string() << "\n" << desktop.logs() << std::flush;
}

} // namespace stavelin::e2e
