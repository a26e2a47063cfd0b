#pragma once

namespace stavelin::views {

/// Makes the module Stavelin.Views known to QML engines. Any number of calls.
void registerQmlModule();

} // namespace stavelin::views
