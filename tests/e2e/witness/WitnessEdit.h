#pragma once

#include <QPlainTextEdit>

/// A text edit that says on standard output, one JSON object per line, what reaches it: every key press
/// {"event":"key","text":...,"key":...,"modifiers":...} and every change {"event":"text","text":<the whole
/// text>}.
class WitnessEdit final : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit WitnessEdit(const QString &text);

protected:
    void keyPressEvent(QKeyEvent *event) override;
};
