// The editor's start-up, as main does it, ending as soon as the window is up.
#include <QApplication>

#include "editor/texts.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(lorekeep::ui::toQString(lorekeep::texts::kProgramTitle));
    lorekeep::ui::MainWindow window;
    window.show();
    if (!QApplication::arguments().contains(QStringLiteral("--stay"))) {
        QMetaObject::invokeMethod(&app, &QApplication::quit, Qt::QueuedConnection);
    }
    return QApplication::exec();
}
