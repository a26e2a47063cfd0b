#pragma once

namespace stavelin::services {

/// The paste gesture as the interface sees it.
enum class PasteFlowState { idle, waitingForDigit };

} // namespace stavelin::services
