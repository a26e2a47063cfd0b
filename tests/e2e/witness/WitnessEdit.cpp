#include "WitnessEdit.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QMetaEnum>

#include <cstdio>

namespace {

void say(const QJsonObject &what)
{
    const QByteArray line = QJsonDocument(what).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

} // namespace

WitnessEdit::WitnessEdit(const QString &text)
{
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        say({{QStringLiteral("event"), QStringLiteral("text")}, {QStringLiteral("text"), toPlainText()}});
    });
    setPlainText(text);
}

void WitnessEdit::keyPressEvent(QKeyEvent *event)
{
    const auto key = QMetaEnum::fromType<Qt::Key>().valueToKey(event->key());
    say({{QStringLiteral("event"), QStringLiteral("key")},
         {QStringLiteral("text"), event->text()},
         {QStringLiteral("key"), QString::fromLatin1(key)},
         {QStringLiteral("modifiers"), static_cast<int>(event->modifiers() >> 25)}});
    QPlainTextEdit::keyPressEvent(event);
}
