#include "server/StatePublisher.h"

#include "daemon/WireEncoder.h"

#include <cassert>
#include <utility>

namespace stavelin::server {

StatePublisher::StatePublisher(const SlotStore &store, MakeId makeId)
    : m_store(store), m_makeId(std::move(makeId))
{}

StatePublisher::Frame StatePublisher::frame()
{
    if (Frame shared = m_frame.lock())
        return shared;
    daemon::StatePayload state;
    state.clipboard_slots = m_store.slots();
    auto encoded = daemon::encodeStateEvent(m_makeId(), state);
    assert(encoded); // the store holds well-formed UTF-8 only, and nothing else here can fail
    Frame made = std::make_shared<const std::string>(std::move(*encoded));
    m_frame = made;
    return made;
}

} // namespace stavelin::server
