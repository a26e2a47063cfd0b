#pragma once

#include <QAbstractListModel>
#include <QtQmlIntegration/qqmlintegration.h>

#include "model/ClipboardSlot.h"

#include <cstdint>
#include <vector>

namespace stavelin::views {

/// The slots as rows. Follows the daemon's state by identity: a row stays the same row while its slot is
/// there, and only rows that look different are announced as changed.
class SlotListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The panel's content owns it.")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role { SlotIndexRole = Qt::UserRole + 1, PreviewRole, IsEmptyRole };

    explicit SlotListModel(QObject *parent = nullptr);

    [[nodiscard]] int count() const { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void setClipboardSlots(const std::vector<model::ClipboardSlot> &slotRecords);

Q_SIGNALS:
    void countChanged();

private:
    struct Row
    {
        std::int64_t id = 0; ///< the slot's
        QString preview;     ///< slotPreview()
        bool isEmpty = true; ///< the text has no character at all

        friend bool operator==(const Row &, const Row &) = default;
    };

    void removeRowsMissingIn(const std::vector<Row> &rows);
    void placeRow(std::size_t position, const Row &row);

    std::vector<Row> m_rows;
};

} // namespace stavelin::views
