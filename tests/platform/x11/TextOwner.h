#pragma once

#include "platform/x11/X11Connection.h"
#include "platform/x11/selection/SelectionOwner.h"
#include "support/HandOver.h"

#include <poll.h>

#include <future>
#include <string>
#include <thread>

namespace stavelin::platform::x11 {

/// A program that has copied something (DISPLAY) and hands it out, on a thread of its own.
class TextOwner
{
public:
    TextOwner(const std::string &selectionName, const std::string &text)
        : m_connection(std::move(X11Connection::open().value())),
          m_owner(m_connection->get(), m_connection->screen())
    {
        if (!m_owner.own(selectionName, {.utf8 = text}))
            throw std::runtime_error("the selection cannot be taken");
        m_thread = std::thread([this] { serve(); });
    }
    ~TextOwner()
    {
        m_tasks.post([this] { m_isStopping = true; });
        m_thread.join();
    }
    TextOwner(const TextOwner &) = delete;
    TextOwner &operator=(const TextOwner &) = delete;

    /// From now until resume() it answers nobody.
    void hang()
    {
        std::promise<void> reached;
        m_tasks.post([this, &reached] {
            reached.set_value();
            m_mayGoOn.get_future().wait();
        });
        reached.get_future().wait();
    }
    void resume() { m_mayGoOn.set_value(); }

private:
    void serve()
    {
        for (m_tasks.run(); !m_isStopping; m_tasks.run()) {
            while (const EventPointer event = m_connection->nextEvent())
                m_owner.handle(*event);
            pollfd descriptors[] = {{m_tasks.descriptor(), POLLIN, 0},
                                    {xcb_get_file_descriptor(m_connection->get()), POLLIN, 0}};
            ::poll(descriptors, 2, -1);
        }
    }

    std::unique_ptr<X11Connection> m_connection;
    selection::SelectionOwner m_owner;
    support::HandOver m_tasks;
    bool m_isStopping = false;
    std::promise<void> m_mayGoOn;
    std::thread m_thread;
};

} // namespace stavelin::platform::x11
