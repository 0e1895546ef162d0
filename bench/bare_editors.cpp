// What the toolkit's own plain-text editor costs for the editor's load: a
// window of the editor's size with four QPlainTextEdits on four tabs, each
// given the same text (a UTF-8 file) with setPlainText once the window is up.
#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTimer>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTabWidget window;
    window.setFixedSize(421, 471);
    std::array<QPlainTextEdit*, 4> editors{};
    for (auto*& editor : editors) {
        editor = new QPlainTextEdit;
        window.addTab(editor, QStringLiteral("Language"));
    }
    window.show();
    const QString path = QApplication::arguments().value(1);
    QTimer::singleShot(0, &window, [&editors, path] {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            QApplication::exit(1);
            return;
        }
        const QString text = QString::fromUtf8(file.readAll());
        for (auto* editor : editors) {
            editor->setPlainText(text);
        }
    });
    return QApplication::exec();
}
