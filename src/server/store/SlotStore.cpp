#include "server/store/SlotStore.h"

#include "support/IsoDate.h"
#include "support/Utf8.h"

#include <cassert>
#include <utility>

namespace stavelin::server {

SlotStore::SlotStore(const std::filesystem::path &folder, LeveledLog &log, Now now)
    : m_file(folder, log, now), m_log(log), m_now(std::move(now))
{
    const std::string date = support::formatIsoDate(m_now());
    for (std::int64_t slotIndex = firstSlot; slotIndex <= lastSlot; ++slotIndex)
        m_slots.push_back({slotIndex, {}, date});

    const auto opened = open();
    if (opened)
        return;
    m_log.error("The store cannot be written: " + opened.error().description);
    if (auto database = m_file.openReadOnly(); database && load(*database))
        m_log.warn("The slots were read; changes will be refused until the store can be written.");
}

SlotStore::~SlotStore() = default;

const daemon::ClipboardSlotData &SlotStore::slot(std::int64_t slotIndex) const
{
    assert(slotIndex >= firstSlot && slotIndex <= lastSlot);
    return m_slots[static_cast<std::size_t>(slotIndex - firstSlot)];
}

std::expected<void, StoreError> SlotStore::set(std::int64_t slotIndex, std::string content)
{
    assert(slotIndex >= firstSlot && slotIndex <= lastSlot);
    if (!m_database) {
        if (const auto opened = open(); !opened)
            return std::unexpected(StoreError{opened.error().description});
    }
    std::string date = support::formatIsoDate(m_now());
    m_update->bind(1, content);
    m_update->bind(2, date);
    m_update->bind(3, slotIndex);
    if (const auto stored = m_update->run(); !stored) {
        m_log.error("A slot could not be stored: " + stored.error().description);
        return std::unexpected(StoreError{stored.error().description});
    }
    daemon::ClipboardSlotData &held = m_slots[static_cast<std::size_t>(slotIndex - firstSlot)];
    held.content.swap(content); // assigning a short text would keep the room of a long one before it
    held.updated_at = std::move(date);
    return {};
}

std::expected<void, DatabaseError> SlotStore::open()
{
    auto database = m_file.open();
    if (!database)
        return std::unexpected(std::move(database.error()));
    if (auto loaded = load(*database); !loaded)
        return loaded;
    auto update = database->prepare("UPDATE slots SET content = ?1, updated_at = ?2 WHERE slot_index = ?3");
    if (!update)
        return std::unexpected(std::move(update.error()));
    m_database.emplace(std::move(*database));
    m_update.emplace(std::move(*update));
    return {};
}

std::expected<void, DatabaseError> SlotStore::load(Database &database)
{
    auto rows = database.prepare("SELECT slot_index, content, updated_at FROM slots ORDER BY slot_index");
    if (!rows)
        return std::unexpected(std::move(rows.error()));
    std::vector<daemon::ClipboardSlotData> loaded = m_slots;
    auto row = rows->step();
    for (; row && *row; row = rows->step()) {
        const std::int64_t slotIndex = rows->integer(0);
        std::string content = rows->text(1);
        // Only another program can have written such a text, and no client could be told of it.
        if (!support::isValidUtf8(content)) {
            m_log.warn("Slot " + std::to_string(slotIndex) +
                       " holds something that is not text; it is shown as empty.");
            content.clear();
        }
        std::string date = rows->text(2);
        if (!support::parseIsoDate(date))
            date = support::formatIsoDate(m_now());
        if (slotIndex >= firstSlot && slotIndex <= lastSlot)
            loaded[static_cast<std::size_t>(slotIndex - firstSlot)] = {slotIndex, std::move(content),
                                                                       std::move(date)};
    }
    if (!row)
        return std::unexpected(std::move(row.error()));
    m_slots = std::move(loaded);
    return {};
}

} // namespace stavelin::server
