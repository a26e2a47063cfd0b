#pragma once

#include <functional>

namespace stavelin::app {

/// The program's mark in the desktop's status area, for as long as this object exists. Main thread.
class StatusItem
{
public:
    /// What the user can do with it.
    struct Actions
    {
        std::function<void()> togglePanel; ///< a left click
        std::function<void()> showPanel;   ///< from the menu that a right click opens
        std::function<void()> quit;        ///< from the same menu
    };

    virtual ~StatusItem() = default;
};

} // namespace stavelin::app
