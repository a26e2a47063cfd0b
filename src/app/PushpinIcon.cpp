#include "app/PushpinIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace stavelin::app {

namespace {

/// In a square of 24 units, with a margin of one.
QPainterPath pushpin()
{
    QPainterPath head;
    head.moveTo(8, 1.5);
    head.lineTo(16, 1.5);
    head.quadTo(17, 1.5, 17, 2.5);
    head.lineTo(17, 3.5);
    head.quadTo(17, 4.5, 16, 4.5);
    head.lineTo(15.4, 4.5);
    head.lineTo(15.9, 9.2);
    head.quadTo(19, 10.8, 19.3, 14);
    head.quadTo(19.3, 15, 18.3, 15);
    head.lineTo(5.7, 15);
    head.quadTo(4.7, 15, 4.7, 14);
    head.quadTo(5, 10.8, 8.1, 9.2);
    head.lineTo(8.6, 4.5);
    head.lineTo(8, 4.5);
    head.quadTo(7, 4.5, 7, 3.5);
    head.lineTo(7, 2.5);
    head.quadTo(7, 1.5, 8, 1.5);
    head.closeSubpath();

    QPainterPath needle;
    needle.moveTo(11, 14.5);
    needle.lineTo(13, 14.5);
    needle.lineTo(12.6, 21);
    needle.lineTo(12, 22.5);
    needle.lineTo(11.4, 21);
    needle.closeSubpath();
    return head.united(needle);
}

QPixmap drawn(const QPainterPath &path, const QColor &color, int size)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 24.0, size / 24.0);
    QColor outline = color.lightnessF() < 0.5F ? Qt::white : Qt::black;
    outline.setAlphaF(0.7F);
    painter.setPen(QPen(outline, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
    painter.fillPath(path, color);
    return pixmap;
}

} // namespace

QIcon pushpinIcon(const QColor &color)
{
    const QPainterPath path = pushpin();
    QIcon icon;
    for (const int size : {16, 18, 20, 22, 24, 32, 48, 64})
        icon.addPixmap(drawn(path, color, size));
    return icon;
}

} // namespace stavelin::app
