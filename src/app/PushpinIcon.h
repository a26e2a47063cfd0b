#pragma once

#include <QColor>
#include <QIcon>

namespace stavelin::app {

/// The program's sign, a pushpin of one colour, drawn anew for each usual size from 16 to 64 px. A faint
/// outline of the opposite brightness keeps it visible where the background is not what the colour was chosen
/// for.
[[nodiscard]] QIcon pushpinIcon(const QColor &color);

} // namespace stavelin::app
