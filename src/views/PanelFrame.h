#pragma once

#include <QList>
#include <QRect>

#include <optional>
#include <string>
#include <string_view>

/// Where the panel stands: rectangles in device-independent pixels, without the window manager's decoration.
namespace stavelin::views {

inline constexpr QSize defaultPanelSize{320, 480};
inline constexpr QSize minimumPanelSize{200, 150};
inline constexpr QSize maximumPanelSize{600, 800};

/// "x y width height", as it is kept in the user's defaults.
[[nodiscard]] std::string encodeFrame(const QRect &frame);
/// Nothing when the text is not exactly what encodeFrame() writes for some rectangle with an area.
[[nodiscard]] std::optional<QRect> decodeFrame(std::string_view text);

/// Within the panel's size limits and wholly on one screen: the one that shows most of it, else the nearest
/// one. `screens` are the available areas. A screen smaller than the panel gets its top left corner; without
/// any screen only the size is limited.
[[nodiscard]] QRect clampedFrame(const QRect &frame, const QList<QRect> &screens);

/// The default size in the middle of a screen.
[[nodiscard]] QRect centredFrame(const QRect &screen);

} // namespace stavelin::views
