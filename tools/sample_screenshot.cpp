// Draws the real window with a sample entry, as a user would have typed it,
// and saves two pictures: the English page and its preview. Used for the
// README:  sample_screenshot docs/editing.png docs/preview.png
#include <QApplication>
#include <QtTest>

#include "ui/frm_main.hpp"

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    if (argc < 3) {
        qWarning("usage: sample_screenshot editing.png preview.png");
        return 2;
    }
    lorekeep::ui::frmMain w;
    w.show();
    if (!QTest::qWaitForWindowExposed(&w)) {
        return 1;
    }
    QTest::keyClicks(w.txtLoc, "/home/modder/schemas/");
    QTest::keyClicks(w.txtName, "tower");
    w.cboFont->setCurrentIndex(0);
    QTest::keyClicks(w.txtTitle[0], "The Tower");
    auto* editor = w.rtbText[0];
    editor->setFocus();
    w.cmdCent[0]->click();
    QTest::keyClicks(editor, "The Tower of Halvane");
    QTest::keyClick(editor, Qt::Key_Return);
    QTest::keyClick(editor, Qt::Key_Return);
    w.cmdLeftJus[0]->click();
    QTest::keyClicks(editor, "Long ago the keep stood alone.");
    QTest::keyClick(editor, Qt::Key_Return);
    w.cmdColor[0]->click();
    w.txtColor[0]->setText("200");
    w.txtColor[1]->setText("30");
    w.txtColor[2]->setText("30");
    w.cmdOK[0]->click();
    QTest::keyClicks(editor, "Beware the tower.");
    w.cmdColor[0]->click();
    QTest::qWait(100);
    w.grab().save(QString::fromLocal8Bit(argv[1]));
    w.tabMain->setCurrentIndex(4);
    QTest::qWait(100);
    w.grab().save(QString::fromLocal8Bit(argv[2]));
    return 0;
}
