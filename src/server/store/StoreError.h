#pragma once

#include <string>

namespace stavelin::server {

/// Why the store could not be read or written. Never quotes what was to be stored.
struct StoreError
{
    std::string description;
};

} // namespace stavelin::server
