#include <QApplication>

#include <csignal>

#include "editor/texts.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

int main(int argc, char* argv[]) {
    // A file-size limit would otherwise kill the editor in the middle of a
    // save; ignored, the write fails and the save reports it.
    std::signal(SIGXFSZ, SIG_IGN);

    QApplication app(argc, argv);
    QApplication::setApplicationName(lorekeep::ui::toQString(lorekeep::texts::kProgramTitle));
    lorekeep::ui::MainWindow window;
    window.show();
    return QApplication::exec();
}
