#pragma once

namespace stavelin::platform {

/// Which physical keys play Control and Command.
enum class ModifierRoles {
    byUse,   ///< Ctrl plays Command, Super plays Control: what Linux users expect of Ctrl+C and Ctrl+V stays
    literal, ///< Ctrl is Control, Super is Command: the Mac's keys
};

} // namespace stavelin::platform
