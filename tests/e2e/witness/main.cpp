// Stands for the other application in the end-to-end tests: a Qt text editor that reports what reaches it.
#include "WitnessEdit.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    WitnessEdit edit(arguments.value(1));
    edit.setWindowTitle(QStringLiteral("Text editor (Qt)"));
    QFont font = edit.font();
    font.setPointSize(12);
    edit.setFont(font);
    edit.resize(480, 240);
    edit.show();
    return QApplication::exec();
}
