#pragma once

#include "e2e/VirtualDesktop.h"

#include <filesystem>
#include <string>

namespace stavelin::e2e {

/// Performs the main job on a virtual desktop: saves three texts from a text editor into slots, pastes the
/// third into another program, and checks what came of it after each step. Tells on standard output what it
/// does, and leaves pictures of the desktop in a folder.
class Demonstration
{
public:
    /// `pictures` exists already.
    explicit Demonstration(std::filesystem::path pictures);

    /// Throws Unmet at the first step that does not do what it should, after showing the programs' output.
    void run();

private:
    void perform();
    void arrange();
    void saveLine(int line, const std::string &text);
    void paste(int slot, const std::string &expected);
    void takePicture(const std::string &name);

    std::filesystem::path m_pictures;
    VirtualDesktop m_desktop;
    Mousepad *m_mousepad = nullptr;
    Witness *m_witness = nullptr;
};

} // namespace stavelin::e2e
