#include "views/FloatingPanelController.h"

#include "views/PanelContent.h"
#include "views/PanelFrame.h"
#include "views/QmlModule.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQmlError>
#include <QQuickView>
#include <QScreen>

namespace stavelin::views {

namespace {

/// The primary screen first.
QList<QRect> availableScreens()
{
    QList<QRect> areas;
    for (const QScreen *screen : QGuiApplication::screens())
        areas.append(screen->availableGeometry());
    return areas;
}

QRect firstFrame(const platform::UserDefaults &userDefaults)
{
    const auto saved = decodeFrame(userDefaults.string(FloatingPanelController::frameKey));
    if (saved)
        return *saved;
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? centredFrame(screen->availableGeometry()) : QRect(QPoint(), defaultPanelSize);
}

} // namespace

FloatingPanelController::FloatingPanelController(PanelContent &content,
                                                 platform::FloatingWindow &floatingWindow,
                                                 platform::UserDefaults &userDefaults, support::Clock &clock,
                                                 support::Log &log)
    : m_content(content), m_floatingWindow(floatingWindow), m_userDefaults(userDefaults), m_clock(clock),
      m_log(log)
{}

FloatingPanelController::~FloatingPanelController()
{
    if (m_frameSaving.isPending())
        saveFrame();
    if (m_panel)
        m_panel->disconnect(this); // destroying the window is no move of the user's
}

void FloatingPanelController::showPanel()
{
    registerQmlModule();
    auto panel = std::make_unique<QQuickView>();
    panel->engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    connect(panel->engine(), &QQmlEngine::warnings, this, [this](const QList<QQmlError> &warnings) {
        for (const QQmlError &warning : warnings)
            m_log.line("Panel: " + warning.toString().toStdString());
    });
    // Buttons to minimise and maximise are asked away; some window managers show them all the same.
    panel->setFlags(Qt::Tool | Qt::WindowStaysOnTopHint | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                    Qt::WindowCloseButtonHint);
    panel->setTitle(QStringLiteral("Stavelin"));
    // The toolkit's own, undocumented way to say that a window takes no focus when it appears; a click still
    // gives it.
    panel->setProperty("_q_showWithoutActivating", true);
    panel->setMinimumSize(minimumPanelSize);
    panel->setMaximumSize(maximumPanelSize);
    panel->setResizeMode(QQuickView::SizeRootObjectToView);
    panel->setInitialProperties({{QStringLiteral("content"), QVariant::fromValue(&m_content)}});
    panel->setSource(QUrl(QStringLiteral("qrc:/qt/qml/Stavelin/Views/MainView.qml")));

    if (m_panel)
        m_panel->disconnect(this);
    m_frame = firstFrame(m_userDefaults);
    m_panel = std::move(panel);
    m_panel->installEventFilter(this);
    connect(m_panel.get(), &QWindow::windowStateChanged, this, &FloatingPanelController::windowStateChanged);
    for (const auto change :
         {&QWindow::xChanged, &QWindow::yChanged, &QWindow::widthChanged, &QWindow::heightChanged})
        connect(m_panel.get(), change, this, &FloatingPanelController::frameChanged);
    orderFront();
}

void FloatingPanelController::bringForward()
{
    if (m_panel)
        orderFront();
    else
        showPanel();
}

void FloatingPanelController::togglePanel()
{
    if (m_panel && m_panel->isVisible())
        orderOut();
    else
        bringForward();
}

bool FloatingPanelController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_panel.get() || event->type() != QEvent::Close)
        return TogglablePanel::eventFilter(watched, event);
    event->ignore();
    orderOut();
    return true;
}

void FloatingPanelController::orderFront()
{
    if (m_panel->isVisible()) {
        m_panel->raise();
        return;
    }
    // Window managers place a window anew at each showing unless it asks for its place; screens may have
    // gone.
    m_panel->setWindowStates(Qt::WindowNoState);
    m_panel->setGeometry(clampedFrame(m_frame, availableScreens()));
    m_panel->create();
    m_floatingWindow.prepareToShow(m_panel->winId());
    m_panel->show();
}

void FloatingPanelController::orderOut()
{
    if (m_frameSaving.isPending())
        saveFrame();
    m_panel->hide();
}

void FloatingPanelController::windowStateChanged(Qt::WindowState state)
{
    // Without an entry in a taskbar nobody would find a minimised panel again.
    if (state == Qt::WindowMinimized && m_panel->isVisible())
        orderOut();
}

void FloatingPanelController::frameChanged()
{
    // A maximised panel's frame is not the user's.
    if (!m_panel->isVisible() || m_panel->windowStates() != Qt::WindowNoState)
        return;
    m_frame = m_panel->geometry();
    // A drag gives hundreds of frames and every write goes to the disk: only where it comes to rest is worth
    // one.
    m_frameSaving.cancel();
    m_frameSaving = m_clock.after(std::chrono::milliseconds(300), [this] { saveFrame(); });
}

void FloatingPanelController::saveFrame()
{
    m_frameSaving.cancel();
    m_userDefaults.setString(frameKey, encodeFrame(m_frame));
}

} // namespace stavelin::views
