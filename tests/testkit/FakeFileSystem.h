#pragma once

#include "platform/FileSystem.h"

#include <set>
#include <vector>

namespace stavelin::testkit {

class FakeFileSystem final : public platform::FileSystem
{
public:
    std::set<std::filesystem::path> executables;
    std::vector<std::filesystem::path>
        createdFolders; ///< in the order of the calls, the refused ones included
    bool refusesFolders = false;

    [[nodiscard]] bool isExecutableFile(const std::filesystem::path &path) const override
    {
        return executables.contains(path);
    }
    bool createDirectories(const std::filesystem::path &path) override
    {
        createdFolders.push_back(path);
        return !refusesFolders;
    }
};

} // namespace stavelin::testkit
