#include "views/SlotListModel.h"

#include "views/SlotPreview.h"

#include <algorithm>

namespace stavelin::views {

SlotListModel::SlotListModel(QObject *parent) : QAbstractListModel(parent)
{
    connect(this, &QAbstractItemModel::rowsInserted, this, &SlotListModel::countChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &SlotListModel::countChanged);
}

int SlotListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant SlotListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Row &row = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
    case SlotIndexRole:
        return static_cast<qlonglong>(row.id);
    case PreviewRole:
        return row.preview;
    case IsEmptyRole:
        return row.isEmpty;
    default:
        return {};
    }
}

QHash<int, QByteArray> SlotListModel::roleNames() const
{
    return {{SlotIndexRole, "slotIndex"}, {PreviewRole, "preview"}, {IsEmptyRole, "isEmpty"}};
}

void SlotListModel::setClipboardSlots(const std::vector<model::ClipboardSlot> &slotRecords)
{
    std::vector<Row> rows;
    rows.reserve(slotRecords.size());
    for (const model::ClipboardSlot &slot : slotRecords)
        rows.push_back({slot.id(), slotPreview(slot.content), slot.content.empty()});

    removeRowsMissingIn(rows);
    for (std::size_t position = 0; position < rows.size(); ++position)
        placeRow(position, rows[position]);

    // Only an identity that stood there twice can be left over.
    if (m_rows.size() > rows.size()) {
        beginRemoveRows({}, static_cast<int>(rows.size()), static_cast<int>(m_rows.size()) - 1);
        m_rows.resize(rows.size());
        endRemoveRows();
    }
}

void SlotListModel::removeRowsMissingIn(const std::vector<Row> &rows)
{
    for (std::size_t position = m_rows.size(); position-- > 0;) {
        if (std::ranges::find(rows, m_rows[position].id, &Row::id) != rows.end())
            continue;
        beginRemoveRows({}, static_cast<int>(position), static_cast<int>(position));
        m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(position));
        endRemoveRows();
    }
}

void SlotListModel::placeRow(std::size_t position, const Row &row)
{
    const auto place = m_rows.begin() + static_cast<std::ptrdiff_t>(position);
    const auto found = std::ranges::find(place, m_rows.end(), row.id, &Row::id);
    const int number = static_cast<int>(position);
    if (found == m_rows.end()) {
        beginInsertRows({}, number, number);
        m_rows.insert(place, row);
        endInsertRows();
        return;
    }
    if (found != place) {
        const int from = static_cast<int>(found - m_rows.begin());
        beginMoveRows({}, from, from, {}, number);
        std::rotate(place, found, found + 1);
        endMoveRows();
    }
    if (*place == row)
        return;
    *place = row;
    Q_EMIT dataChanged(index(number), index(number));
}

} // namespace stavelin::views
