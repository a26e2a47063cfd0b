#pragma once

#include "e2e/Application.h"

#include <string>
#include <vector>

namespace stavelin::e2e {

/// The Qt text editor that reports what reaches it.
class Witness final : public Application
{
public:
    Witness(std::unique_ptr<DesktopProcess> process, xcb_window_t window)
        : Application("the witness", std::move(process), window)
    {}

    [[nodiscard]] std::string text() override;

    /// The keys that reached it, modifiers left out, in order: "Key_X".
    [[nodiscard]] std::vector<std::string> keys() const;
};

} // namespace stavelin::e2e
