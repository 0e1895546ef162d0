#include <QMenu>
#include <QTemporaryDir>
#include <QtTest>

#include "editor/texts.hpp"
#include "markup/renderer.hpp"
#include "support/fakes.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

using namespace lorekeep;
using namespace lorekeep::ui;

using Stretches = std::vector<std::pair<std::size_t, std::size_t>>;

// Spelling in the window, against the real dictionaries; the personal word
// lists live in a temporary folder.
class SpellingTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_enchant;
    testing::RecordingMessageBox m_messages;
    testing::FakeFileDialog m_dialog;
    std::unique_ptr<MainWindow> m_window;

    void open() {
        m_window = std::make_unique<MainWindow>();
        m_window->setDialogs(&m_messages, &m_dialog);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->startSpelling();
        QTRY_VERIFY_WITH_TIMEOUT(m_window->spelling()->dictionaries() != nullptr, 20000);
    }
    PlainTextBox* body(Language language) {
        m_window->tabs->setCurrentIndex(indexOf(language));
        return m_window->bodyEditor(language);
    }
    BodySpellCheck* bodyCheck(Language language) {
        return m_window->bodyEditor(language)->findChild<BodySpellCheck*>();
    }
    TitleSpellCheck* titleCheck(Language language) {
        return m_window->languagePages[indexOf(language)]->titleBox->findChild<TitleSpellCheck*>();
    }
    // Opens the context menu at `at` as a right click does, and hands it
    // to `choose` while it is open.
    static void rightClick(QWidget* target, QPoint at, const std::function<void(QMenu&)>& choose) {
        bool shown = false;
        QTimer::singleShot(0, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            QVERIFY(menu != nullptr);
            shown = true;
            choose(*menu);
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, target->mapToGlobal(at));
        QApplication::sendEvent(target, &event);
        QVERIFY(shown);
    }
    static QStringList captions(const QMenu& menu) {
        QStringList list;
        for (const QAction* action : menu.actions()) {
            list << (action->isSeparator() ? QStringLiteral("|") : action->text());
        }
        return list;
    }
    static QAction* entry(const QMenu& menu, std::u16string_view text) {
        for (QAction* action : menu.actions()) {
            if (action->text() == toQString(text)) {
                return action;
            }
        }
        return nullptr;
    }
    // The middle of the body's character at `position`, in its viewport.
    static QPoint placeOf(PlainTextBox* editor, int position) {
        QTextCursor cursor(editor->document());
        cursor.setPosition(position);
        return editor->cursorRect(cursor).center() + QPoint(2, 0);
    }

    // The underline's red, drawn smoothed, somewhere in the picture.
    static bool hasRed(const QImage& image) {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                if (c.red() >= 220 && c.green() <= 120 && c.blue() <= 120) {
                    return true;
                }
            }
        }
        return false;
    }

  private slots:
    void initTestCase() { qputenv("ENCHANT_CONFIG_DIR", m_enchant.path().toUtf8()); }
    void init() {
        qunsetenv("LOREKEEP_DICTIONARIES");
        open();
    }
    void cleanup() { m_window.reset(); }

    // Each language against its own dictionary: "Welt" is right in German
    // and wrong in French; markers, separators and numbers are never words.
    void underlinesEachLanguagesMisspeltWords() {
        body(Language::German)->replaceText(u"Die Welt\\n<jc>\\n 1234 Hauss");
        QTRY_COMPARE(bodyCheck(Language::German)->underlined(), (Stretches{{22, 27}}));
        PlainTextBox* french = body(Language::French);
        french->replaceText(u"\\n<dc=255,0,0>\\nLe mondde est grand. Die Welt\\n<br>\\n3e");
        QTRY_COMPARE(bodyCheck(Language::French)->underlined(), (Stretches{{19, 25}, {41, 45}}));
        m_window->languagePages[1]->titleBox->setText(QStringLiteral("La Tourr, 2"));
        QCOMPARE(titleCheck(Language::French)->underlined(), (Stretches{{3, 8}}));
        // A title of millions of characters is checked in its first 65,536.
        m_window->languagePages[1]->titleBox->setText(
            QStringLiteral("La Tourr ") + QString(70000, u'a') + QStringLiteral(" mondde"));
        QCOMPARE(titleCheck(Language::French)->underlined(), (Stretches{{3, 8}}));
        QVERIFY(m_window->previewPane(Language::French)->extraSelections().isEmpty());
    }

    // What an input method sends (an accent composed, a commit) leaves the
    // underline drawn; a word being composed is never cut short by it.
    void titleUnderlineOutlivesTheInputMethod() {
        QLineEdit* title = m_window->languagePages[1]->titleBox;
        m_window->tabs->setCurrentIndex(1);
        title->setFocus();
        title->setText(QStringLiteral("La Tourr"));
        QVERIFY(hasRed(title->grab().toImage()));
        QInputMethodEvent commit(QString(), {});
        commit.setCommitString(QStringLiteral(" \u00e0"));
        QApplication::sendEvent(title, &commit);
        QCOMPARE(title->text(), QStringLiteral("La Tourr \u00e0"));
        QTRY_VERIFY(hasRed(title->grab().toImage()));

        QInputMethodEvent compose(QStringLiteral("WWWW"), {});
        QApplication::sendEvent(title, &compose);
        QApplication::processEvents();
        const QImage composing = title->grab().toImage();
        m_window->spelling()->ignoreAll(Language::French, u"Quuxelle");  // the checks run again
        QApplication::processEvents();
        QCOMPARE(title->grab().toImage(), composing);
        QInputMethodEvent done(QString(), {});
        done.setCommitString(QStringLiteral("W"));
        QApplication::sendEvent(title, &done);
        QCOMPARE(title->text(), QStringLiteral("La Tourr \u00e0W"));
        QTRY_VERIFY(hasRed(title->grab().toImage()));
    }

    // A keystroke checks its block again, in time for the edit's own paint.
    void typingUnderlinesAndCorrects() {
        PlainTextBox* french = body(Language::French);
        french->setFocus();
        QTest::keyClicks(french, "Le mondde ");
        QCOMPARE(bodyCheck(Language::French)->underlined(), (Stretches{{3, 9}}));
        french->setCaretPosition(8);
        QTest::keyClick(french, Qt::Key_Backspace);
        QCOMPARE(bodyCheck(Language::French)->underlined(), Stretches{});
    }

    // A suggestion goes in as one undo step and the preview follows.
    void suggestionReplacesTheWord() {
        PlainTextBox* french = body(Language::French);
        french->replaceText(u"Le mondde est grand.");
        QTRY_COMPARE(bodyCheck(Language::French)->underlined(), (Stretches{{3, 9}}));
        rightClick(french->viewport(), placeOf(french, 5), [](QMenu& menu) {
            const QStringList shown = captions(menu);
            const auto add = shown.indexOf(toQString(texts::kAddToDictionary));
            QVERIFY2(add >= 1 && add <= 7, qPrintable(shown.join(u',')));
            QCOMPARE(shown[0], QStringLiteral("monde"));
            QCOMPARE(shown.mid(add, 3),
                     (QStringList{toQString(texts::kAddToDictionary), toQString(texts::kIgnoreAll),
                                  QStringLiteral("|")}));
            QVERIFY(shown.size() > add + 3);  // the editor's own entries follow
            menu.actions()[0]->trigger();
        });
        QCOMPARE(toQString(french->plainText()), QStringLiteral("Le monde est grand."));
        QCOMPARE(french->caretPosition(), 8u);
        QCOMPARE(m_window->previewPane(Language::French)->toPlainText(),
                 QStringLiteral("Le monde est grand."));
        QTRY_COMPARE(bodyCheck(Language::French)->underlined(), Stretches{});
        french->undo();
        QCOMPARE(toQString(french->plainText()), QStringLiteral("Le mondde est grand."));
        QCOMPARE(m_window->previewPane(Language::French)->toPlainText(),
                 QStringLiteral("Le mondde est grand."));

        QLineEdit* title = m_window->languagePages[1]->titleBox;
        title->setText(QStringLiteral("La Tourr"));
        rightClick(title, QPoint(title->width() / 2, title->height() / 2), [](QMenu& menu) {
            QAction* tour = entry(menu, u"Tour");
            QVERIFY(tour != nullptr);
            tour->trigger();
        });
        QCOMPARE(title->text(), QStringLiteral("La Tour"));
        QCOMPARE(titleCheck(Language::French)->underlined(), Stretches{});
        title->undo();
        QCOMPARE(title->text(), QStringLiteral("La Tourr"));
    }

    // Added words last; ignored ones last for the run.
    void addAndIgnore() {
        PlainTextBox* french = body(Language::French);
        french->replaceText(u"Zorbaxe et Quuxelle");
        QTRY_COMPARE(bodyCheck(Language::French)->underlined(), (Stretches{{0, 7}, {11, 19}}));
        rightClick(french->viewport(), placeOf(french, 2),
                   [](QMenu& menu) { entry(menu, texts::kAddToDictionary)->trigger(); });
        rightClick(french->viewport(), placeOf(french, 13),
                   [](QMenu& menu) { entry(menu, texts::kIgnoreAll)->trigger(); });
        QTRY_COMPARE(bodyCheck(Language::French)->underlined(), Stretches{});
        QCOMPARE(toQString(french->plainText()), QStringLiteral("Zorbaxe et Quuxelle"));

        open();  // a new run
        body(Language::French)->replaceText(u"Zorbaxe et Quuxelle");
        QTRY_COMPARE(bodyCheck(Language::French)->underlined(), (Stretches{{11, 19}}));
    }

    // Without its dictionary a language is simply not checked.
    void missingDictionary() {
        qputenv("LOREKEEP_DICTIONARIES", "fr=xx_NOWHERE");
        open();
        body(Language::English)->replaceText(u"Hello wrold");
        QTRY_COMPARE(bodyCheck(Language::English)->underlined(), (Stretches{{6, 11}}));
        body(Language::French)->replaceText(u"Le mondde");
        QTest::qWait(50);
        QCOMPARE(bodyCheck(Language::French)->underlined(), Stretches{});
        QVERIFY(m_messages.shown.empty());
        QCOMPARE(QApplication::activeModalWidget(), nullptr);
    }

    // Only what is shown is checked: a long body costs its visible part.
    void checksWhatIsShown() {
        PlainTextBox* french = body(Language::French);
        Text text;
        for (int k = 0; k < 100000; ++k) {
            text += u"mondde ";
        }
        french->replaceText(text);
        QTRY_VERIFY(!bodyCheck(Language::French)->underlined().empty());
        Stretches shown = bodyCheck(Language::French)->underlined();
        QVERIFY(shown.size() < 1000);
        QCOMPARE(shown.front(), (std::pair<std::size_t, std::size_t>{0, 6}));
        french->setCaretPosition(text.size());
        french->ensureCursorVisible();
        QTRY_COMPARE(bodyCheck(Language::French)->underlined().back(),
                     (std::pair<std::size_t, std::size_t>{text.size() - 7, text.size() - 1}));
        QVERIFY(bodyCheck(Language::French)->underlined().size() < 1000);
    }
};

QTEST_MAIN(SpellingTest)
#include "spelling_test.moc"
