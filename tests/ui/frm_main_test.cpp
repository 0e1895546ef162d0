#include <QtTest>

#include "ui/frm_main.hpp"

using lorekeep::ui::frmMain;

class FrmMainTest : public QObject {
    Q_OBJECT

  private slots:
    void captionAndFixedClientArea() {
        frmMain window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.windowTitle(), QStringLiteral("The Lorekeep by Halvane"));
        QCOMPARE(window.size(), QSize(421, 471));
        QCOMPARE(window.minimumSize(), window.maximumSize());
        QVERIFY(!(window.windowFlags() & Qt::WindowMinimizeButtonHint));
        QVERIFY(!(window.windowFlags() & Qt::WindowMaximizeButtonHint));
        QVERIFY(window.windowFlags() & Qt::WindowCloseButtonHint);
    }
};

QTEST_MAIN(FrmMainTest)
#include "frm_main_test.moc"
