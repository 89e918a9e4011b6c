// The least that a Qt program with a window can be.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.show();
    return QApplication::exec();
}
