// Draws the real window with a sample entry, as a user would have typed it,
// and saves two pictures: the English page and its preview. Used for the
// README:  sample_screenshot [--dark] docs/editing.png docs/preview.png
// --dark draws it under a dark desktop theme.
#include <QApplication>
#include <QStyle>
#include <QtTest>

#include "ui/main_window.hpp"

namespace {

QPalette darkTheme() {
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(45, 45, 48));
    dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
    dark.setColor(QPalette::Base, QColor(30, 30, 32));
    dark.setColor(QPalette::AlternateBase, QColor(55, 55, 58));
    dark.setColor(QPalette::Text, QColor(230, 230, 230));
    dark.setColor(QPalette::Button, QColor(55, 55, 58));
    dark.setColor(QPalette::ButtonText, QColor(230, 230, 230));
    dark.setColor(QPalette::ToolTipBase, QColor(55, 55, 58));
    dark.setColor(QPalette::ToolTipText, QColor(230, 230, 230));
    dark.setColor(QPalette::Highlight, QColor(42, 130, 218));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::Disabled, QPalette::Text, QColor(120, 120, 120));
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(120, 120, 120));
    dark.setColor(QPalette::Disabled, QPalette::WindowText, QColor(120, 120, 120));
    return dark;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QStringList files = QApplication::arguments().mid(1);
    if (files.removeAll(QStringLiteral("--dark")) > 0) {
        QApplication::setPalette(darkTheme());
    }
    if (files.size() != 2) {
        qWarning("usage: sample_screenshot [--dark] editing.png preview.png");
        return 2;
    }
    lorekeep::ui::MainWindow w;
    w.show();
    if (!QTest::qWaitForWindowExposed(&w)) {
        return 1;
    }
    lorekeep::ui::LanguagePage& english = *w.languagePages[0];
    QTest::keyClicks(w.folderBox, "/home/modder/schemas/");
    QTest::keyClicks(w.nameBox, "tower");
    w.fontBox->setCurrentIndex(0);
    QTest::keyClicks(english.titleBox, "The Tower");
    auto* editor = english.bodyEditor;
    editor->setFocus();
    english.centreButton->click();
    QTest::keyClicks(editor, "The Tower of Halvane");
    QTest::keyClick(editor, Qt::Key_Return);
    QTest::keyClick(editor, Qt::Key_Return);
    english.leftJustifyButton->click();
    QTest::keyClicks(editor, "Long ago the keep stood alone.");
    QTest::keyClick(editor, Qt::Key_Return);
    english.colourButton->click();
    english.colourBoxes[0]->setText("200");
    english.colourBoxes[1]->setText("30");
    english.colourBoxes[2]->setText("30");
    english.okButton->click();
    QTest::keyClicks(editor, "Beware the tower.");
    english.colourButton->click();
    QTest::qWait(100);
    w.grab().save(files[0]);
    w.tabs->setCurrentIndex(4);
    QTest::qWait(100);
    w.grab().save(files[1]);
    return 0;
}
