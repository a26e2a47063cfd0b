#pragma once

#include "daemon/ClipboardSlotData.h"
#include "server/LeveledLog.h"
#include "server/store/Database.h"
#include "server/store/StoreError.h"
#include "server/store/StoreFile.h"
#include "support/Clock.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace stavelin::server {

/// The nine slots, in memory and on disk. One thread; the calls block on the disk.
class SlotStore
{
public:
    static constexpr std::int64_t firstSlot = 1;
    static constexpr std::int64_t lastSlot = 9;
    using Now = std::function<support::Timestamp()>;

    /// Reads what is stored in `folder`. Where that fails the slots are empty, the log says why, and each
    /// set() tries again. `log` must outlive this object.
    SlotStore(const std::filesystem::path &folder, LeveledLog &log, Now now);
    ~SlotStore();
    SlotStore(const SlotStore &) = delete;
    SlotStore &operator=(const SlotStore &) = delete;

    /// Always all nine, 1 to 9; the texts are well-formed UTF-8.
    [[nodiscard]] const std::vector<daemon::ClipboardSlotData> &slots() const { return m_slots; }
    /// `slotIndex` is 1 to 9.
    [[nodiscard]] const daemon::ClipboardSlotData &slot(std::int64_t slotIndex) const;

    /// Stores a text with the present time; an empty one clears the slot. `slotIndex` is 1 to 9. When this
    /// returns without error the change is on the disk and in slots(); otherwise in neither.
    [[nodiscard]] std::expected<void, StoreError> set(std::int64_t slotIndex, std::string content);

private:
    [[nodiscard]] std::expected<void, DatabaseError> open();
    [[nodiscard]] std::expected<void, DatabaseError> load(Database &database);

    StoreFile m_file;
    LeveledLog &m_log;
    Now m_now;
    std::vector<daemon::ClipboardSlotData> m_slots;
    std::optional<Database> m_database; // none while the file cannot be opened
    std::optional<Statement> m_update;
};

} // namespace stavelin::server
