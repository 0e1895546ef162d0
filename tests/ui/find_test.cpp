#include <QAccessible>
#include <QtTest>

#include "editor/texts.hpp"
#include "markup/renderer.hpp"
#include "support/fakes.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

using namespace lorekeep;
using namespace lorekeep::ui;

// Find and Replace through the dialog's own widgets, keys and clicks.
class FindTest : public QObject {
    Q_OBJECT

    testing::RecordingMessageBox m_messages;
    testing::FakeFileDialog m_dialog;
    std::unique_ptr<MainWindow> m_window;
    FindDialog* m_find = nullptr;

    PlainTextBox* body(int language) const { return m_window->bodyEditor(Language(language)); }
    QLineEdit* title(int language) const { return m_window->languagePages[language]->titleBox; }
    // What the window shows selected: the page's index, and the selection of
    // the box with the caret.
    QString shown() const {
        QWidget* focus = m_window->focusWidget();
        const int page = m_window->tabs->currentIndex();
        if (focus == title(page)) {
            return QStringLiteral("%1 title %2+%3")
                .arg(page)
                .arg(title(page)->selectionStart())
                .arg(title(page)->selectedText().size());
        }
        if (focus != body(page)) {
            return QStringLiteral("focus elsewhere");
        }
        const QTextCursor cursor = body(page)->textCursor();
        return QStringLiteral("%1 body %2+%3")
            .arg(page)
            .arg(cursor.selectionStart())
            .arg(cursor.selectionEnd() - cursor.selectionStart());
    }
    QString status() const {
        return (m_find->statusLabel->text() + u' ' + m_find->wrappedLabel->text()).trimmed();
    }
    void setBodies(std::array<TextView, kLanguageCount> texts) {
        for (int i = 0; i < kLanguageCount; ++i) {
            body(i)->replaceText(texts[i]);
        }
    }
    // A key pressed in the window, where the box with the caret takes it.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(m_window->focusWidget(), key, modifiers);
    }
    // Types into the dialog's Find box as a user would, after Ctrl+F.
    void lookFor(const QString& text) {
        press(Qt::Key_F, Qt::ControlModifier);
        m_find = m_window->findDialog();
        QVERIFY(m_find != nullptr && m_find->isVisible());
        QVERIFY(QTest::qWaitForWindowActive(m_find));
        QTest::keyClicks(m_find->findBox, text);
    }

  private slots:
    void init() {
        m_window = std::make_unique<MainWindow>();
        m_window->setDialogs(&m_messages, &m_dialog);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void cleanup() {
        QVERIFY(m_messages.shown.empty());  // never a message box
        m_window.reset();
        m_find = nullptr;
    }

    // Ctrl+F and Ctrl+H open one dialog with the Find box focused and its
    // text selected; every control has its name; Tab, Escape, Alt+A.
    void theDialogAndItsKeys() {
        lookFor("cat");
        QCOMPARE(m_find->windowTitle(), "Find and Replace");
        QVERIFY(!m_find->isModal());
        QTRY_COMPARE(QApplication::focusWidget(), m_find->findBox);
        const std::pair<QWidget*, const char*> names[] = {
            {m_find->findBox, "Find"},
            {m_find->replaceBox, "Replace with"},
            {m_find->matchCaseBox, "Match case"},
            {m_find->wholeWordsBox, "Whole words"},
            {m_find->skipMarkersBox, "Skip markers"},
            {m_find->titlesTooBox, "Titles too"},
            {m_find->allLanguagesButton, "All languages"},
            {m_find->thisLanguageButton, "This language"},
            {m_find->findNextButton, "Find Next"},
            {m_find->findPreviousButton, "Find Previous"},
            {m_find->replaceButton, "Replace"},
            {m_find->replaceAllButton, "Replace All"},
            {m_find->closeButton, "Close"},
        };
        for (const auto& [control, name] : names) {
            QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(control);
            QCOMPARE(accessible->text(QAccessible::Name), QString::fromLatin1(name));
        }
        QVERIFY(m_find->skipMarkersBox->isChecked() && m_find->allLanguagesButton->isChecked());
        QVERIFY(!m_find->matchCaseBox->isChecked() && !m_find->titlesTooBox->isChecked());
        QVERIFY(m_find->findNextButton->isDefault());
        QTest::keyClick(m_find->findBox, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), m_find->replaceBox);
        QTest::keyClick(m_find->replaceBox, Qt::Key_Escape);
        QVERIFY(!m_find->isVisible());

        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        press(Qt::Key_H, Qt::ControlModifier);
        QCOMPARE(m_window->findDialog(), m_find);
        QTRY_COMPARE(QApplication::focusWidget(), m_find->findBox);
        QCOMPARE(m_find->findBox->selectedText(), "cat");

        setBodies({u"cat cat", u"", u"", u"cat"});
        QTest::keyClicks(m_find->replaceBox, "dog");
        QTest::keyClick(m_find, Qt::Key_A, Qt::AltModifier);
        QTRY_COMPARE(m_find->statusLabel->text(), "3 replaced in 2 languages");
        QCOMPARE(body(0)->toPlainText(), "dog dog");
    }

    // Enter in the Find box finds the next match, language after language in
    // tab order, showing each page; then it wraps around. F3 and Shift+F3
    // find from the window too; a selection there becomes the Find text.
    void findsAcrossTheLanguagesAndWraps() {
        setBodies({u"a cat", u"le chat", u"cat", u"cat cat"});
        lookFor("cat");
        const char* const expected[][2] = {
            {"0 body 2+3", "1 of 4"},
            {"2 body 0+3", "2 of 4"},
            {"3 body 0+3", "3 of 4"},
            {"3 body 4+3", "4 of 4"},
            {"0 body 2+3", "1 of 4 Search wrapped"},
        };
        for (const auto& [where, said] : expected) {
            QTest::keyClick(m_find->findBox, Qt::Key_Return);
            QCOMPARE(shown(), where);
            QCOMPARE(status(), said);
            QCOMPARE(m_window->tabs->currentIndex(), shown().left(1).toInt());
        }
        QTest::mouseClick(m_find->findPreviousButton, Qt::LeftButton);
        QCOMPARE(shown(), "3 body 4+3");
        QCOMPARE(status(), "4 of 4 Search wrapped");

        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        press(Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(shown(), "3 body 0+3");
        press(Qt::Key_F3);
        QCOMPARE(shown(), "3 body 4+3");
        QCOMPARE(status(), "4 of 4");

        // "No matches" for a text found nowhere, and nothing moves.
        m_find->findBox->setText("dog");
        QTest::keyClick(m_find->findBox, Qt::Key_Return);
        QCOMPARE(status(), "No matches");
        QCOMPARE(shown(), "3 body 4+3");

        // A selection in the window is what Ctrl+F looks for.
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_window->goTo(Language::French, false, 3);
        body(1)->select(3, 4);
        press(Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(m_find->findBox->text(), "chat");
    }

    // The options as a user ticks them: whole words, case, markers, titles,
    // and the scope.
    void optionsChooseWhatIsFound() {
        setBodies({u"Cats \\n<jc>\\n jc cat", u"", u"CAT", u""});
        title(2)->setText("scat");
        lookFor("cat");
        const std::pair<QAbstractButton*, const char*> cases[] = {
            {nullptr, "1 of 3"},
            {m_find->wholeWordsBox, "1 of 2"},
            {m_find->matchCaseBox, "1 of 1"},        // whole words and case
            {m_find->wholeWordsBox, "1 of 1"},       // case only
            {m_find->titlesTooBox, "1 of 2"},        // and the German title
            {m_find->matchCaseBox, "1 of 4"},        // titles, any case
            {m_find->thisLanguageButton, "1 of 2"},  // English only
        };
        for (const auto& [option, count] : cases) {
            if (option != nullptr) {
                QTest::mouseClick(option, Qt::LeftButton);
            }
            body(0)->setCaretPosition(0);
            m_window->tabs->setCurrentIndex(0);
            QTest::mouseClick(m_find->findNextButton, Qt::LeftButton);
            QCOMPARE(status(), count);
        }

        // "jc" is found as a word, never as the marker's tag, unless asked.
        m_find->findBox->setText("jc");
        m_find->thisLanguageButton->setChecked(false);
        m_find->allLanguagesButton->setChecked(true);
        body(0)->setCaretPosition(0);
        QTest::mouseClick(m_find->findNextButton, Qt::LeftButton);
        QCOMPARE(shown(), "0 body 14+2");
        QCOMPARE(status(), "1 of 1");
        QTest::mouseClick(m_find->skipMarkersBox, Qt::LeftButton);
        body(0)->setCaretPosition(0);
        QTest::mouseClick(m_find->findNextButton, Qt::LeftButton);
        QCOMPARE(shown(), "0 body 8+2");
        QCOMPARE(status(), "1 of 2");
    }

    // Replace changes the selected match and finds the next; in a title it
    // is one undoable edit.
    void replaceThenFindNext() {
        setBodies({u"Tom and Tom", u"", u"", u""});
        title(1)->setText("Tom");
        lookFor("Tom");
        QTest::mouseClick(m_find->titlesTooBox, Qt::LeftButton);
        QTest::keyClicks(m_find->replaceBox, "Tim");
        QTest::mouseClick(m_find->replaceButton, Qt::LeftButton);  // nothing selected: finds
        QCOMPARE(shown(), "0 body 0+3");
        QCOMPARE(body(0)->toPlainText(), "Tom and Tom");
        QTest::mouseClick(m_find->replaceButton, Qt::LeftButton);
        QCOMPARE(body(0)->toPlainText(), "Tim and Tom");
        QCOMPARE(shown(), "0 body 8+3");
        QCOMPARE(status(), "1 of 2");
        QTest::mouseClick(m_find->replaceButton, Qt::LeftButton);
        QCOMPARE(shown(), "1 title 0+3");
        QTest::mouseClick(m_find->replaceButton, Qt::LeftButton);
        QCOMPARE(title(1)->text(), "Tim");
        QCOMPARE(status(), "No matches");
        QVERIFY(title(1)->isUndoAvailable());
        title(1)->undo();
        QCOMPARE(title(1)->text(), "Tom");
        QCOMPARE(m_window->previewPane(Language::English)->plainText(), u"Tim and Tim");
    }

    // A replacement in a title is an undo step of its own, even where it only
    // inserts; what was found is forgotten once a title or body changes.
    void titlesUndoAndTypingAfterAReplacement() {
        setBodies({u"cat", u"", u"", u""});
        m_window->goTo(Language::English, true, 0);
        QTest::keyClicks(title(0), "my cat");
        lookFor("cat");
        QTest::mouseClick(m_find->titlesTooBox, Qt::LeftButton);
        QTest::keyClicks(m_find->replaceBox, "cats");
        QTest::mouseClick(m_find->findPreviousButton, Qt::LeftButton);
        QCOMPARE(shown(), "0 title 3+3");
        QTest::mouseClick(m_find->replaceButton, Qt::LeftButton);
        QCOMPARE(title(0)->text(), "my cats");
        QCOMPARE(shown(), "0 body 0+3");
        title(0)->undo();
        QCOMPARE(title(0)->text(), "my cat");  // the typing before it stays
        body(0)->moveCursor(QTextCursor::End);
        QTest::keyClicks(body(0), " cat");
        QTest::mouseClick(m_find->findNextButton, Qt::LeftButton);
        QCOMPARE(status(), "1 of 3 Search wrapped");
        QCOMPARE(shown(), "0 title 3+3");
    }

    // Replace All: one undo step in each editor changed, each preview in
    // step, and what it did said in the dialog.
    void replaceAllIsOneUndoStepPerEditor() {
        const std::array<TextView, kLanguageCount> before{u"red\\n<br>\\nred red", u"rouge", u"red",
                                                          u"Red!"};
        setBodies(before);
        lookFor("red");
        QTest::keyClicks(m_find->replaceBox, "blue");
        QTest::mouseClick(m_find->replaceAllButton, Qt::LeftButton);
        QCOMPARE(status(), "5 replaced in 3 languages");
        const char* after[] = {"blue\\n<br>\\nblue blue", "rouge", "blue", "blue!"};
        for (int i = 0; i < kLanguageCount; ++i) {
            QCOMPARE(body(i)->toPlainText(), after[i]);
            QCOMPARE(m_window->previewPane(Language(i))->plainText(),
                     markup::renderPreview(body(i)->plainText()).text);
            if (i != 1) {
                body(i)->undo();
                QCOMPARE(body(i)->plainText(), before[i]);
            }
        }
    }

    // A replacement that would take a body past its limit is refused whole:
    // no text changes anywhere.
    void replacingNeverPassesTheLimit() {
        Text full(kMaxBodyLength - 1, u'a');
        full.append(u"b");
        setBodies({u"b", u"", full, u""});
        lookFor("b");
        QTest::keyClicks(m_find->replaceBox, "bb");
        QTest::mouseClick(m_find->replaceAllButton, Qt::LeftButton);
        QCOMPARE(status(), toQString(texts::kReplaceTooLong));
        QCOMPARE(body(0)->toPlainText(), "b");
        QCOMPARE(body(2)->textLength(), kMaxBodyLength);
        QTest::mouseClick(m_find->findPreviousButton, Qt::LeftButton);
        QCOMPARE(shown(), QStringLiteral("2 body %1+1").arg(kMaxBodyLength - 1));
        QTest::mouseClick(m_find->replaceButton, Qt::LeftButton);
        QCOMPARE(body(2)->textLength(), kMaxBodyLength);
        QCOMPARE(body(2)->textBetween(kMaxBodyLength - 2, kMaxBodyLength), u"ab");
    }
};

QTEST_MAIN(FindTest)
#include "find_test.moc"
