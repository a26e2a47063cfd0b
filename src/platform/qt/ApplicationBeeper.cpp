#include "platform/qt/ApplicationBeeper.h"

#include <QApplication>

namespace stavelin::platform::qt {

void ApplicationBeeper::beep()
{
    QApplication::beep();
}

} // namespace stavelin::platform::qt
