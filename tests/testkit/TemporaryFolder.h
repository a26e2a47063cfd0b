#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace stavelin::testkit {

/// An empty folder that goes, with all that is in it, when the object goes.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = std::filesystem::temp_directory_path() / "stavelin-test-XXXXXX";
        if (!::mkdtemp(name.data()))
            throw std::runtime_error("cannot make a temporary folder");
        m_path = name;
    }
    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    [[nodiscard]] const std::filesystem::path &path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace stavelin::testkit
