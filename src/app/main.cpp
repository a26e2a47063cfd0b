#include "app/Composition.h"
#include "app/PushpinIcon.h"

#include <QApplication>
#include <QPalette>
#include <QQuickWindow>

int main(int argc, char **argv)
{
    stavelin::platform::PlatformFactory::prepareProcess();
    // The panel is small and seldom changes: drawing it with the processor starts faster and holds far less
    // memory than a graphics context does.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);

    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Stavelin"));
    QApplication::setApplicationName(QStringLiteral("stavelin"));
    QApplication::setApplicationDisplayName(QStringLiteral("Stavelin"));
    QApplication::setDesktopFileName(QStringLiteral("stavelin"));
    QApplication::setQuitOnLastWindowClosed(false); // the panel comes and goes
    QApplication::setWindowIcon(
        stavelin::app::pushpinIcon(QApplication::palette().color(QPalette::WindowText)));

    stavelin::app::Composition composition;
    return composition.run();
}
