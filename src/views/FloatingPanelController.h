#pragma once

#include <QObject>
#include <QRect>

#include "platform/FloatingWindow.h"
#include "platform/UserDefaults.h"
#include "services/TogglablePanel.h"
#include "support/Clock.h"
#include "support/Log.h"

#include <memory>
#include <string_view>

class QQuickView;

namespace stavelin::views {

class PanelContent;

/// Owns the panel: a small window above all others, on every desktop, that takes no focus when it appears and
/// is only hidden when it is closed. Its frame is kept in the user's defaults. Main thread.
class FloatingPanelController final : public services::TogglablePanel
{
    Q_OBJECT

public:
    /// The key of the frame in the user's defaults.
    static constexpr std::string_view frameKey = "StavelinMainPanel";

    /// All that is passed outlives the controller.
    FloatingPanelController(PanelContent &content, platform::FloatingWindow &floatingWindow,
                            platform::UserDefaults &userDefaults, support::Clock &clock, support::Log &log);
    ~FloatingPanelController() override;

    /// Makes the panel anew, with the frame that was saved or in the middle of the screen, and shows it.
    void showPanel();
    /// Shows the panel that is there, as it is; makes it if there is none.
    void bringForward();
    /// Hides the panel when it is visible; else as bringForward().
    void togglePanel() override;

    /// Null before the first showing.
    [[nodiscard]] QQuickView *panel() const { return m_panel.get(); }

private:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void orderFront();
    void orderOut();
    void windowStateChanged(Qt::WindowState state);
    void frameChanged();
    void saveFrame();

    PanelContent &m_content;
    platform::FloatingWindow &m_floatingWindow;
    platform::UserDefaults &m_userDefaults;
    support::Clock &m_clock;
    support::Log &m_log;

    QRect m_frame; ///< as the user left it
    support::TimerHandle m_frameSaving;
    std::unique_ptr<QQuickView> m_panel;
};

} // namespace stavelin::views
