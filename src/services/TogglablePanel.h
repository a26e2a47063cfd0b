#pragma once

#include <QObject>

namespace stavelin::services {

/// What the global shortcut shows and hides. The shortcut manager refers to it weakly.
class TogglablePanel : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    virtual void togglePanel() = 0;
};

} // namespace stavelin::services
