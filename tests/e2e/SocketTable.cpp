#include "e2e/SocketTable.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace stavelin::e2e {

namespace {

std::set<std::string> socketsOf(pid_t process)
{
    const std::filesystem::path folder = "/proc/" + std::to_string(process) + "/fd";
    std::set<std::string> inodes;
    std::error_code fault;
    for (const auto &entry : std::filesystem::directory_iterator(folder, fault)) {
        // "socket:[12345]"
        const std::string target = std::filesystem::read_symlink(entry.path(), fault);
        if (target.starts_with("socket:[")) {
            inodes.insert(target.substr(8, target.size() - 9));
        }
    }
    return inodes;
}

struct Row
{
    std::string local; ///< "0100007F:2677"
    std::string remote;
    std::string state;
    std::string inode;
};

constexpr const char *established = "01";
constexpr const char *listening = "0A";
constexpr const char *loopback = "0100007F";
constexpr const char *anyAddress = "00000000";

std::vector<Row> connectionTable()
{
    std::vector<Row> rows;
    std::ifstream table("/proc/net/tcp");
    std::string line;
    std::getline(table, line);
    while (std::getline(table, line)) {
        std::istringstream columns(line);
        Row row;
        std::string skipped;
        columns >> skipped >> row.local >> row.remote >> row.state;
        // queues, timer, retransmits, user, time-out
        columns >> skipped >> skipped >> skipped >> skipped >> skipped >> row.inode;
        rows.push_back(row);
    }
    return rows;
}

std::string addressAndPort(const char *address, std::uint16_t port)
{
    std::ostringstream text;
    text << address << ':' << std::uppercase << std::hex << std::setw(4) << std::setfill('0') << port;
    return text.str();
}

} // namespace

bool isListenedOn(std::uint16_t port)
{
    return std::ranges::any_of(connectionTable(), [port](const Row &row) {
        return row.state == listening &&
               (row.local == addressAndPort(loopback, port) || row.local == addressAndPort(anyAddress, port));
    });
}

bool hasConnectionToLoopbackPort(pid_t process, std::uint16_t port)
{
    const std::set<std::string> inodes = socketsOf(process);
    return std::ranges::any_of(connectionTable(), [&](const Row &row) {
        return row.state == established && row.remote == addressAndPort(loopback, port) &&
               inodes.contains(row.inode);
    });
}

} // namespace stavelin::e2e
