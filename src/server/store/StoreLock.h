#pragma once

#include <expected>
#include <filesystem>
#include <utility>

namespace stavelin::server {

/// Keeps a second daemon from the same store, even one on another port. Held until destroyed, or until the
/// process ends in whatever way.
class StoreLock
{
public:
    /// Another process holds it.
    struct Held
    {};

    /// Takes the lock in `folder`, which is made if it is missing. Where no lock can be made, because the
    /// folder cannot be written, nothing can be stored either and there is nothing to protect: that succeeds.
    [[nodiscard]] static std::expected<StoreLock, Held> take(const std::filesystem::path &folder);

    ~StoreLock();
    StoreLock(StoreLock &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    StoreLock &operator=(StoreLock &&) = delete;

private:
    explicit StoreLock(int descriptor) : m_descriptor(descriptor) {}

    int m_descriptor; // -1 when no lock could be made
};

} // namespace stavelin::server
