// The least that a program of this toolkit does: it starts, prints a line and ends.

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QTextStream(stdout) << QCoreApplication::arguments().size() << '\n';
    return 0;
}
