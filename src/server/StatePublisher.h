#pragma once

#include "server/store/SlotStore.h"

#include <functional>
#include <memory>
#include <string>

namespace stavelin::server {

/// Writes the whole state as one frame, once per change for all who are told of it. One thread.
class StatePublisher
{
public:
    using MakeId = std::function<std::string()>;
    using Frame = std::shared_ptr<const std::string>;

    /// `makeId` gives each frame a fresh id. `store` must outlive this object.
    StatePublisher(const SlotStore &store, MakeId makeId);

    /// The state as it is now. The frame is shared by all who ask for it until the next change, and kept only
    /// as long as one of them needs it.
    [[nodiscard]] Frame frame();

    /// The state is no longer what frame() last said.
    void stateChanged() { m_frame.reset(); }

private:
    const SlotStore &m_store;
    MakeId m_makeId;
    std::weak_ptr<const std::string> m_frame;
};

} // namespace stavelin::server
