// Draws the real window with a sample entry, as a user would have typed it,
// and saves two pictures: the English page and its preview. Used for the
// README:  sample_screenshot docs/editing.png docs/preview.png
#include <QApplication>
#include <QtTest>

#include "ui/main_window.hpp"

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    if (argc < 3) {
        qWarning("usage: sample_screenshot editing.png preview.png");
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
    w.grab().save(QString::fromLocal8Bit(argv[1]));
    w.tabs->setCurrentIndex(4);
    QTest::qWait(100);
    w.grab().save(QString::fromLocal8Bit(argv[2]));
    return 0;
}
