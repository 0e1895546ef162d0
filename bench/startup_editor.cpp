// The editor's start-up, as main does it, ending as soon as the window is up.
#include <QApplication>

#include "document/messages.hpp"
#include "ui/frm_main.hpp"
#include "ui/qt_text.hpp"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(lorekeep::ui::ToQString(lorekeep::texts::kProgramTitle));
    lorekeep::ui::frmMain window;
    window.show();
    QMetaObject::invokeMethod(&app, &QApplication::quit, Qt::QueuedConnection);
    return QApplication::exec();
}
