#pragma once

namespace stavelin::daemon {

enum class ConnectionState { disconnected, connecting, connected };

} // namespace stavelin::daemon
