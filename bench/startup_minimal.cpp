// The least a Qt Widgets program can do: one empty window of the editor's
// size, shown, and the process ends as soon as it is up (with --stay, it
// stays up, to be measured on a real display).
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QWidget window;
    window.setFixedSize(421, 471);
    window.show();
    if (!QApplication::arguments().contains(QStringLiteral("--stay"))) {
        QMetaObject::invokeMethod(&app, &QApplication::quit, Qt::QueuedConnection);
    }
    return QApplication::exec();
}
