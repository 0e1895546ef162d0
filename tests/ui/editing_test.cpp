#include <QTemporaryDir>
#include <QtTest>

#include "support/fake_window.hpp"
#include "ui/frm_main.hpp"

using lorekeep::testing::FakeFileDialog;
using lorekeep::testing::RecordingMessageBox;
using lorekeep::ui::frmMain;
using lorekeep::ui::RichTextBox;

namespace {

QString Text(RichTextBox* box) {
    return QString::fromStdU16String(box->PlainText());
}

}  // namespace

// The editing commands through real clicks and real keys.
class EditingTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        window_ = std::make_unique<frmMain>();
        window_->setDialogs(&messages_, &dialog_);
        window_->show();
        window_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window_.get()));
        messages_.shown.clear();
    }
    void cleanup() { window_.reset(); }

    void centerButtonWritesItsMarkerAndFocusesTheEditor() {
        frmMain& w = *window_;
        QTest::mouseClick(w.cmdCent[0], Qt::LeftButton);
        QCOMPARE(Text(w.rtbText[0]), QStringLiteral("\\n<jc>\\n"));
        QCOMPARE(w.rtbText[0]->Caret(), std::size_t{8});
        QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(w.rtbText[0]));
        QTest::mouseClick(w.cmdCent[0], Qt::LeftButton);
        QCOMPARE(Text(w.rtbText[0]), QStringLiteral("\\n<jc>\\n"));
        QTest::mouseClick(w.cmdLeftJus[0], Qt::LeftButton);
        QCOMPARE(Text(w.rtbText[0]), QStringLiteral("\\n<jc>\\n\\n<jl>\\n"));
    }

    void enterKeysWriteBreakMarkersAndUndoRedoRestore() {
        frmMain& w = *window_;
        RichTextBox* editor = w.rtbText[0];
        editor->setFocus();
        QTest::keyClicks(editor, "ab");
        QTest::keyClick(editor, Qt::Key_Return);
        QCOMPARE(Text(editor), QStringLiteral("ab\\n<br>\\n"));
        QCOMPARE(editor->Caret(), std::size_t{10});
        QTest::keyClick(editor, Qt::Key_Enter);  // the keypad's Enter too
        QCOMPARE(Text(editor), QStringLiteral("ab\\n<p>\\n"));
        QCOMPARE(Text(w.rtbText[4]), QStringLiteral("ab\r\r"));

        QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(Text(editor), QStringLiteral("ab\\n<br>\\n"));
        QCOMPARE(Text(w.rtbText[4]), QStringLiteral("ab\r"));  // undo refreshes the preview
        QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(Text(editor), QStringLiteral("ab"));
        QTest::keyClick(editor, Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(Text(editor), QStringLiteral("ab\\n<br>\\n"));
        QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(Text(editor), QStringLiteral("ab\\n<p>\\n"));
        QCOMPARE(Text(w.rtbText[4]), QStringLiteral("ab\r\r"));
        QVERIFY(!Text(editor).contains('\n') && !Text(editor).contains('\r'));
    }

    void enterWithModifiersIsStillABreakKey() {
        RichTextBox* editor = window_->rtbText[0];
        editor->setFocus();
        for (auto modifiers : {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier}) {
            editor->SetPlainText(u"");
            QTest::keyClick(editor, Qt::Key_Return, modifiers);
            QCOMPARE(Text(editor), QStringLiteral("\\n<br>\\n"));
        }
    }

    void markerCanBeUndone() {
        frmMain& w = *window_;
        w.rtbText[1]->SetPlainText(u"Bonjour");
        w.rtbText[1]->SetCaret(3);
        QTest::mouseClick(w.cmdRightJus[1], Qt::LeftButton);
        QCOMPARE(Text(w.rtbText[1]), QStringLiteral("Bon\\n<jr>\\njour"));
        QTest::keyClick(w.rtbText[1], Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(Text(w.rtbText[1]), QStringLiteral("Bonjour"));
        QCOMPARE(Text(w.rtbText[5]), QStringLiteral("Bonjour"));
    }

    void colourEntryThroughTheBoxes() {
        frmMain& w = *window_;
        QTest::mouseClick(w.cmdColor[2], Qt::LeftButton);
        for (int k = 6; k < 9; ++k) {
            QVERIFY(w.txtColor[k]->isEnabled());
        }
        QVERIFY(w.cmdOK[2]->isEnabled());
        QVERIFY(!w.cmdOK[0]->isEnabled());
        const char* values[] = {"255", "128", "0"};
        for (int c = 0; c < 3; ++c) {
            w.txtColor[6 + c]->selectAll();
            QTest::keyClicks(w.txtColor[6 + c], values[c]);
        }
        QTest::mouseClick(w.cmdOK[2], Qt::LeftButton);
        QCOMPARE(Text(w.rtbText[2]), QStringLiteral("\\n<dc=255,128,0>\\n"));
        for (int k = 6; k < 9; ++k) {
            QVERIFY(!w.txtColor[k]->isEnabled());
            QCOMPARE(w.txtColor[k]->text(), QStringLiteral("0"));
        }
        QVERIFY(!w.cmdOK[2]->isEnabled());
        QCOMPARE(w.cmdColor[2]->palette().color(QPalette::Button), QColor(255, 128, 0));
        QCOMPARE(w.rtbText[6]->CharacterColour(0), QColor(255, 128, 0));
    }

    void copyCanBeUndoneInEachTarget() {
        frmMain& w = *window_;
        for (int i = 0; i < 4; ++i) {
            w.rtbText[i]->SetPlainText(QStringLiteral("text %1").arg(i).toStdU16String());
            w.txtTitle[i]->setText(QStringLiteral("title %1").arg(i));
        }
        QTest::mouseClick(w.cmdCopy[1], Qt::LeftButton);
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(Text(w.rtbText[i]), QStringLiteral("text 1"));
            QCOMPARE(Text(w.rtbText[4 + i]), QStringLiteral("text 1"));
            QCOMPARE(w.txtTitle[i]->text(), QStringLiteral("title %1").arg(i));
        }
        w.rtbText[2]->setFocus();
        QTest::keyClick(w.rtbText[2], Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(Text(w.rtbText[2]), QStringLiteral("text 2"));
        QCOMPARE(Text(w.rtbText[6]), QStringLiteral("text 2"));
        QCOMPARE(Text(w.rtbText[3]), QStringLiteral("text 1"));
    }

    void loadCanBeUndone() {
        frmMain& w = *window_;
        QTemporaryDir dir;
        w.rtbText[0]->SetPlainText(u"saved");
        w.Save("s", dir.path());
        w.rtbText[0]->SetPlainText(u"typed since");
        w.Load("s", dir.path());
        QCOMPARE(Text(w.rtbText[0]), QStringLiteral("saved"));
        w.rtbText[0]->setFocus();
        QTest::keyClick(w.rtbText[0], Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(Text(w.rtbText[0]), QStringLiteral("typed since"));
        QCOMPARE(Text(w.rtbText[4]), QStringLiteral("typed since"));
        QVERIFY(messages_.shown.empty());
    }

  private:
    std::unique_ptr<frmMain> window_;
    RecordingMessageBox messages_;
    FakeFileDialog dialog_;
};

QTEST_MAIN(EditingTest)
#include "editing_test.moc"
