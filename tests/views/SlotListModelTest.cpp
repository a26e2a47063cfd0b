#include "views/SlotListModel.h"

#include <gtest/gtest.h>

#include <QPersistentModelIndex>

#include <string>
#include <utility>
#include <vector>

namespace stavelin::views {

namespace {

using Texts = std::vector<std::pair<std::int64_t, std::string>>;

std::vector<model::ClipboardSlot> clipboardSlots(const Texts &texts)
{
    std::vector<model::ClipboardSlot> result;
    for (const auto &[slotIndex, content] : texts)
        result.push_back({.slotIndex = slotIndex, .content = content, .updatedAt = {}});
    return result;
}

/// What the model says while it changes.
class Announcements
{
public:
    explicit Announcements(SlotListModel &model)
    {
        QObject::connect(
            &model, &SlotListModel::dataChanged, &model, [this](const auto &from, const auto &to) {
                lines.push_back("changed " + std::to_string(from.row()) + "-" + std::to_string(to.row()));
            });
        QObject::connect(&model, &SlotListModel::rowsInserted, &model,
                         [this](const auto &, int from, int to) {
                             lines.push_back("inserted " + std::to_string(from) + "-" + std::to_string(to));
                         });
        QObject::connect(&model, &SlotListModel::rowsRemoved, &model, [this](const auto &, int from, int to) {
            lines.push_back("removed " + std::to_string(from) + "-" + std::to_string(to));
        });
        QObject::connect(&model, &SlotListModel::rowsMoved, &model,
                         [this](const auto &, int from, int, const auto &, int to) {
                             lines.push_back("moved " + std::to_string(from) + " to " + std::to_string(to));
                         });
        QObject::connect(&model, &SlotListModel::modelReset, &model, [this] { lines.emplace_back("reset"); });
    }

    std::vector<std::string> lines;
};

Texts rowsOf(const SlotListModel &model)
{
    Texts rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex index = model.index(row);
        rows.emplace_back(model.data(index, SlotListModel::SlotIndexRole).toLongLong(),
                          model.data(index, SlotListModel::PreviewRole).toString().toStdString());
    }
    return rows;
}

const Texts threeSlots{{1, "one"}, {2, ""}, {3, "three"}};

} // namespace

TEST(SlotListModel, everySlotIsARowWithItsNumberItsPreviewAndWhetherItIsEmpty)
{
    SlotListModel model;
    model.setClipboardSlots(clipboardSlots({{1, "one\ntwo"}, {2, ""}, {3, " "}}));

    EXPECT_EQ(rowsOf(model), (Texts{{1, "one two"}, {2, ""}, {3, ""}}));
    EXPECT_FALSE(model.data(model.index(0), SlotListModel::IsEmptyRole).toBool());
    EXPECT_TRUE(model.data(model.index(1), SlotListModel::IsEmptyRole).toBool());
    EXPECT_FALSE(model.data(model.index(2), SlotListModel::IsEmptyRole).toBool());
}

TEST(SlotListModel, aChangedSlotAnnouncesItsOwnRowAlone)
{
    SlotListModel model;
    model.setClipboardSlots(clipboardSlots(threeSlots));
    const Announcements announcements(model);

    model.setClipboardSlots(clipboardSlots({{1, "one"}, {2, "two"}, {3, "three"}}));

    EXPECT_EQ(announcements.lines, (std::vector<std::string>{"changed 1-1"}));
    EXPECT_EQ(rowsOf(model), (Texts{{1, "one"}, {2, "two"}, {3, "three"}}));
}

TEST(SlotListModel, aStateThatLooksTheSameAnnouncesNothing)
{
    SlotListModel model;
    const std::string beginning(300, 'x');
    model.setClipboardSlots(clipboardSlots({{1, beginning + " and one end"}}));
    const Announcements announcements(model);

    model.setClipboardSlots(clipboardSlots({{1, beginning + " and another"}}));

    EXPECT_TRUE(announcements.lines.empty());
}

TEST(SlotListModel, aRowStaysTheSameRowWhileOthersComeGoAndMove)
{
    SlotListModel model;
    model.setClipboardSlots(clipboardSlots(threeSlots));
    const QPersistentModelIndex third = model.index(2);

    model.setClipboardSlots(clipboardSlots({{2, ""}, {3, "three"}}));
    EXPECT_EQ(third.row(), 1);
    model.setClipboardSlots(clipboardSlots({{3, "three"}, {2, ""}}));
    EXPECT_EQ(third.row(), 0);
    model.setClipboardSlots(clipboardSlots({{1, "one"}, {2, ""}, {3, "other"}}));
    EXPECT_EQ(third.row(), 2);
    EXPECT_EQ(model.data(third, SlotListModel::PreviewRole).toString(), QStringLiteral("other"));

    model.setClipboardSlots(clipboardSlots({{1, "one"}}));
    EXPECT_FALSE(third.isValid());
}

TEST(SlotListModel, showsEveryStateWhateverTheOneBeforeWas)
{
    const std::vector<Texts> states{{},
                                    threeSlots,
                                    {{3, "three"}, {1, "one"}},
                                    {{2, "b"}, {2, "b again"}, {1, "one"}}, // a slot that is named twice
                                    {{1, "one"}, {2, "b"}},
                                    {{9, "nine"}}};
    for (const Texts &before : states) {
        for (const Texts &after : states) {
            SlotListModel model;
            model.setClipboardSlots(clipboardSlots(before));
            model.setClipboardSlots(clipboardSlots(after));
            EXPECT_EQ(rowsOf(model), after);
        }
    }
}

} // namespace stavelin::views
