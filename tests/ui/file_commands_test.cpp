#include <QFileDialog>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "support/fake_window.hpp"
#include "ui/frm_main.hpp"

using lorekeep::Text;
using lorekeep::testing::FakeFileDialog;
using lorekeep::testing::RecordingMessageBox;
using lorekeep::ui::frmMain;

// The file buttons of the real window, with the real dialog shown once.
class FileCommandsTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        window_ = std::make_unique<frmMain>();
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    }
    void cleanup() { window_.reset(); }

    void realLocationDialogFillsTheBoxes() {
        QTemporaryDir dir;
        QString title, suffix;
        QStringList filters;
        bool confirms = true;
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            title = dialog->windowTitle();
            suffix = dialog->defaultSuffix();
            filters = dialog->nameFilters();
            confirms = !dialog->testOption(QFileDialog::DontConfirmOverwrite);
            dialog->selectFile(dir.filePath("intro"));
            QMetaObject::invokeMethod(dialog, "accept");
        });
        window_->cmdLoc->click();
        QCOMPARE(title, QStringLiteral("Choose a schema location and name"));
        QCOMPARE(suffix, QStringLiteral("sch"));
        QCOMPARE(filters, QStringList{QStringLiteral("Schemas (*.sch)")});
        QVERIFY(!confirms);
        QCOMPARE(window_->txtLoc->text(), dir.path() + "/");
        QCOMPARE(window_->txtName->text(), QStringLiteral("intro"));
    }

    void saveThenLoadThroughTheButtons() {
        QTemporaryDir dir;
        RecordingMessageBox messages;
        FakeFileDialog dialog;
        window_->setDialogs(&messages, &dialog);
        dialog.nextPath = (dir.filePath("tower.sch")).toStdU16String();
        dialog.nextName = u"tower.sch";
        window_->cmdLoc->click();
        window_->txtTitle[0]->setText("The Tower");
        window_->rtbText[0]->SetPlainText(u"Hello\\n<br>\\nWorld");
        window_->cboFont->setCurrentIndex(1);
        window_->cmdSave->click();
        QVERIFY(messages.shown.empty());

        window_->txtTitle[0]->setText("changed");
        window_->rtbText[0]->SetPlainText(u"changed");
        window_->cboFont->setEditText("changed");
        window_->cmdLoad->click();
        QVERIFY(messages.shown.empty());
        QCOMPARE(window_->txtTitle[0]->text(), QStringLiteral("The Tower"));
        QCOMPARE(window_->rtbText[0]->PlainText(), std::u16string(u"Hello\\n<br>\\nWorld"));
        QCOMPARE(window_->cboFont->currentText(), QStringLiteral("Papyrus20"));
        QCOMPARE(window_->cboFont->currentIndex(), 1);
        QCOMPARE(window_->rtbText[4]->PlainText(), std::u16string(u"Hello\rWorld"));
    }

  private:
    std::unique_ptr<frmMain> window_;
};

QTEST_MAIN(FileCommandsTest)
#include "file_commands_test.moc"
