#pragma once

#include "support/Log.h"

namespace stavelin::server {

/// Lines on standard error, each written whole and at once.
class StandardErrorLog final : public support::Log
{
public:
    void line(std::string_view text) override;
};

} // namespace stavelin::server
