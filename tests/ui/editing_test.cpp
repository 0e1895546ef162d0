#include <QClipboard>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QtTest>
#include <random>

#include "editor/texts.hpp"
#include "markup/renderer.hpp"
#include "support/fakes.hpp"
#include "support/test_support.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

using namespace lorekeep;
using namespace lorekeep::ui;

// The commands through real clicks and real keys, the dialogs answered by
// fakes.
class EditingTest : public QObject {
    Q_OBJECT

    static QString text(const editor::EditorBox* box) { return toQString(box->plainText()); }
    // What the pane of `editor` must show for what the editor holds now.
    static QString rendered(const editor::EditorBox* e) {
        return toQString(markup::renderPreview(e->plainText()).text);
    }
    testing::RecordingMessageBox m_messages;
    testing::FakeFileDialog m_dialog;
    std::unique_ptr<MainWindow> m_window;

  private slots:
    void init() {
        m_window = std::make_unique<MainWindow>();
        m_messages.shown.clear();
        m_window->setDialogs(&m_messages, &m_dialog);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    // A marker goes in at the caret, which moves behind it, and the editor
    // takes the focus; a second click switches centring off; the colour boxes
    // open for their marker and close again; Ctrl+Z takes a marker out.
    void markerButtons() {
        const LanguagePage& page = *m_window->languagePages[2];
        m_window->tabs->setCurrentIndex(2);
        page.bodyEditor->replaceText(u"Bonjour");
        page.bodyEditor->setCaretPosition(3);
        QTest::mouseClick(page.centreButton, Qt::LeftButton);
        QCOMPARE(text(page.bodyEditor), "Bon\\n<jc>\\njour");
        QCOMPARE(QApplication::focusWidget(), page.bodyEditor);
        QTest::mouseClick(page.centreButton, Qt::LeftButton);
        QTest::mouseClick(page.colourButton, Qt::LeftButton);
        QVERIFY(!m_window->languagePages[0]->okButton->isEnabled());
        const char* values[] = {"255", "128", "0"};
        for (int c = 0; c < 3; ++c) {
            page.colourBoxes[c]->selectAll();
            QTest::keyClicks(page.colourBoxes[c], values[c]);
        }
        QTest::mouseClick(page.okButton, Qt::LeftButton);
        QCOMPARE(text(page.bodyEditor), "Bon\\n<jc>\\n\\n<dc=255,128,0>\\njour");
        for (const QLineEdit* box : page.colourBoxes) {
            QVERIFY(!box->isEnabled() && box->text() == "0");
        }
        QVERIFY(!page.okButton->isEnabled());
        QCOMPARE(page.colourButton->palette().color(QPalette::Button), QColor(255, 128, 0));
        // The last letter of the preview, behind the colour marker.
        QCOMPARE(m_window->previewPane(Language(2))->characterColour(24), QColor(255, 128, 0));
        QTest::keyClick(page.bodyEditor, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(text(page.bodyEditor), "Bon\\n<jc>\\njour");
        QCOMPARE(text(m_window->previewPane(Language(2))), rendered(page.bodyEditor));
    }

    // Enter, on either key and with any modifier, writes the next break
    // marker; undo and redo step through them; the preview follows each step.
    void enterKeysUndoAndRedo() {
        PlainTextBox* editor = m_window->bodyEditor(Language(0));
        QTest::keyClicks(editor, "ab");
        const std::tuple<Qt::Key, Qt::KeyboardModifiers, const char*> steps[] = {
            {Qt::Key_Return, Qt::NoModifier, "ab\\n<br>\\n"},
            {Qt::Key_Enter, Qt::ShiftModifier, "ab\\n<p>\\n"},
            {Qt::Key_Return, Qt::ControlModifier, "ab\\n<pb>\\n"},
            {Qt::Key_Return, Qt::AltModifier, "ab\\n<pb>\\n\\n<br>\\n"},
            {Qt::Key_Z, Qt::ControlModifier, "ab\\n<pb>\\n"},
            {Qt::Key_Z, Qt::ControlModifier, "ab\\n<p>\\n"},
            {Qt::Key_Y, Qt::ControlModifier, "ab\\n<pb>\\n"},
            {Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier, "ab\\n<pb>\\n\\n<br>\\n"}};
        for (const auto& [key, modifiers, expected] : steps) {
            QTest::keyClick(editor, key, modifiers);
            QCOMPARE(text(editor), expected);
            QCOMPARE(text(m_window->previewPane(Language(0))), rendered(editor));
        }
    }

    // Typing after a command, a copy, a load or a deleted selection is an undo
    // step of its own: Ctrl+Z takes back the typing, then the edit before it,
    // never to a text that was never there.
    void typingAfterAnEditIsItsOwnUndoStep() {
        MainWindow& w = *m_window;
        QTemporaryDir dir;
        PlainTextBox* english = w.bodyEditor(Language(0));
        PlainTextBox* french = w.bodyEditor(Language(1));
        english->replaceText(u"Hello");
        w.save("undo", dir.path());
        const std::tuple<const char*, PlainTextBox*, std::function<void()>> edits[] = {
            {"command", english,
             [&] { QTest::mouseClick(w.languagePages[0]->centreButton, Qt::LeftButton); }},
            {"copy", french,
             [&] { QTest::mouseClick(w.languagePages[0]->copyButton, Qt::LeftButton); }},
            {"load", english, [&] { w.load("undo", dir.path()); }},
            {"redo", english,
             [&] {
                 english->replaceText(u"Hello there");
                 QTest::keyClick(english, Qt::Key_Z, Qt::ControlModifier);
                 QTest::keyClick(english, Qt::Key_Y, Qt::ControlModifier);
             }},
            {"deleted selection", english,
             [&] {
                 english->selectAll();
                 QTest::keyClick(english, Qt::Key_Delete);
             }},
        };
        for (const auto& [what, box, edit] : edits) {
            const QString before = text(box);
            edit();
            const QString edited = text(box);
            QVERIFY2(edited != before, what);
            box->setFocus();
            box->moveCursor(QTextCursor::End);
            QTest::keyClicks(box, "xy");
            QCOMPARE(text(box), edited + "xy");
            QTest::keyClick(box, Qt::Key_Z, Qt::ControlModifier);
            QVERIFY2(text(box) == edited, what);
            QTest::keyClick(box, Qt::Key_Z, Qt::ControlModifier);
            QVERIFY2(text(box) == before, what);
            QTest::keyClick(box, Qt::Key_Y, Qt::ControlModifier);
            QTest::keyClick(box, Qt::Key_Y, Qt::ControlModifier);
            QVERIFY2(text(box) == edited + "xy", what);
            QCOMPARE(text(w.previewPane(box == english ? Language::English : Language::French)),
                     rendered(box));
        }
    }

    // A copy from a preview pane carries the exact text and the formatted
    // text (its colours and alignment); a copy from an editor plain text only.
    void copyingFromAPreviewKeepsItsFormatting() {
        PlainTextBox* editor = m_window->bodyEditor(Language(0));
        RichTextBox* pane = m_window->previewPane(Language(0));
        // A run without spaces and a long sentence, which the box holds in
        // several blocks each, are still one paragraph with every character.
        const QString run(300, u'x');
        const QString sentence = QStringLiteral("one word  ").repeated(120);
        editor->replaceText(fromQString("\\n<jc>\\n\\n<dc=255,128,0>\\nGold " + run + "\\n<br>\\n" +
                                        sentence + "<&>"));
        const auto copyAll = [](auto* box) {
            box->selectAll();
            box->copy();
            const QMimeData* copied = QApplication::clipboard()->mimeData();
            return std::pair(copied->text() == text(box), copied->hasHtml());
        };
        QCOMPARE(copyAll(editor), std::pair(true, false));
        QCOMPARE(copyAll(pane), std::pair(true, true));
        const QString html = QApplication::clipboard()->mimeData()->html();
        QTextDocument pasted;
        pasted.setHtml(html);
        QCOMPARE(pasted.toPlainText(), text(pane).replace(u'\r', u'\n'));
        QCOMPARE(pasted.blockCount(), 2);
        QCOMPARE(pasted.begin().blockFormat().alignment() & Qt::AlignHorizontal_Mask,
                 Qt::AlignHCenter);
        QTextCursor gold(&pasted);
        gold.setPosition(static_cast<int>(text(pane).indexOf("Gold")) + 1);
        QCOMPARE(gold.charFormat().foreground().color(), QColor(255, 128, 0));
    }

    // A schema file handed over by path (the command line, a file manager) or
    // dropped anywhere on the window loads as the load button loads it; a
    // drop of anything else is refused, and no text box types a file's address.
    void openingAndDroppingFiles() {
        MainWindow& w = *m_window;
        QTemporaryDir dir;
        w.bodyEditor(Language(0))->replaceText(u"Hello, world");
        w.save("tower", dir.path());
        w.bodyEditor(Language(0))->replaceText(u"typed");
        QFile(dir.filePath("notes.txt")).open(QIODevice::WriteOnly);
        auto drop = [&](QWidget* target, const QStringList& names) {
            QMimeData mime;
            QList<QUrl> urls;
            for (const QString& name : names) {
                urls << QUrl::fromLocalFile(dir.filePath(name));
            }
            mime.setUrls(urls);
            QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, {});
            QApplication::sendEvent(target, &enter);
            QDropEvent event(QPointF(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, {});
            QApplication::sendEvent(target, &event);
            return enter.isAccepted() && event.isAccepted();
        };
        QVERIFY(!drop(w.bodyEditor(Language(0))->viewport(), {"notes.txt"}));
        QVERIFY(!drop(w.nameBox, {"tower.sch", "tower.sch"}));
        QCOMPARE(text(w.bodyEditor(Language(0))), "typed");
        QVERIFY(w.nameBox->text().isEmpty());
        QVERIFY(drop(w.bodyEditor(Language(0))->viewport(), {"tower.sch"}));
        QCOMPARE(text(w.bodyEditor(Language(0))), "Hello, world");
        QCOMPARE(w.folderBox->text() + w.nameBox->text(), dir.path() + "/tower");
        w.openFile(dir.filePath("missing.sch"));
        QCOMPARE(m_messages.shown.size(), std::size_t{1});
        QCOMPARE(toQString(m_messages.shown[0].text), toQString(texts::kLoadFailed));
        QCOMPARE(w.nameBox->text(), "missing");
    }

    // Ctrl+S saves as the save button does and Ctrl+O opens the file picked
    // in the dialog's open form; neither they nor an Alt chord type a thing.
    void keyboardShortcuts() {
        MainWindow& w = *m_window;
        QTemporaryDir dir;
        w.folderBox->setText(dir.path() + "/");
        w.nameBox->setText("tower");
        PlainTextBox* body = w.bodyEditor(Language(0));
        body->setFocus();
        QTest::keyClicks(body, "Hello");
        QTest::keyClick(body, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(QFile::exists(dir.filePath("tower.sch")));
        QTest::keyClick(body, Qt::Key_S, Qt::AltModifier);
        QTest::keyClick(w.nameBox, Qt::Key_O, Qt::AltModifier);
        QTest::keyClick(w.nameBox, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(text(body), "Hello");
        QCOMPARE(w.nameBox->text(), "tower");
        QTest::keyClicks(body, " world");
        w.nameBox->clear();
        m_dialog.nextPath = fromQString(dir.filePath("tower.sch"));
        QTest::keyClick(body, Qt::Key_O, Qt::ControlModifier);
        QVERIFY(m_dialog.openForm);
        QCOMPARE(text(body), "Hello");
        QCOMPARE(w.nameBox->text(), "tower");
        QVERIFY(m_messages.shown.empty());
    }

    // Copy, then a save and a load through the buttons; copy and load are each
    // one undo step of every editor they change.
    void copySaveAndLoadThroughTheButtons() {
        MainWindow& w = *m_window;
        QTemporaryDir dir;
        m_dialog.nextPath = dir.filePath("tower.sch").toStdU16String();
        w.locationButton->click();
        for (int i = 0; i < kLanguageCount; ++i) {
            w.bodyEditor(Language(i))
                ->replaceText(QStringLiteral("text %1").arg(i).toStdU16String());
        }
        QTest::mouseClick(w.languagePages[1]->copyButton, Qt::LeftButton);
        for (int i = 0; i < kLanguageCount; ++i) {
            QCOMPARE(text(w.bodyEditor(Language(i))), "text 1");
            QCOMPARE(text(w.previewPane(Language(i))), "text 1");
        }
        QTest::keyClick(w.bodyEditor(Language(2)), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(text(w.bodyEditor(Language(2))), "text 2");
        QCOMPARE(text(w.previewPane(Language(2))), "text 2");
        QCOMPARE(text(w.bodyEditor(Language(3))), "text 1");

        w.languagePages[0]->titleBox->setText("The Tower");
        w.bodyEditor(Language(0))->replaceText(u"Hello\\n<br>\\nWorld");
        w.fontBox->setCurrentIndex(1);
        w.saveButton->click();
        w.languagePages[0]->titleBox->setText("changed");
        w.bodyEditor(Language(0))->replaceText(u"changed");
        w.fontBox->setCurrentIndex(3);
        w.loadButton->click();
        QCOMPARE(w.languagePages[0]->titleBox->text(), "The Tower");
        QCOMPARE(text(w.bodyEditor(Language(0))), "Hello\\n<br>\\nWorld");
        QCOMPARE(text(w.previewPane(Language(0))), "Hello\rWorld");
        QCOMPARE(w.fontBox->currentIndex(), 1);
        QTest::keyClick(w.bodyEditor(Language(0)), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(text(w.bodyEditor(Language(0))), "changed");
        QCOMPARE(text(w.previewPane(Language(0))), "changed");
        QVERIFY(m_messages.shown.empty());
    }

    // A text set as its smallest change reads back exactly, whatever line
    // breaks the change cuts through or adds.
    void smallestChangesKeepEveryCharacter() {
        PlainTextBox* editor = m_window->bodyEditor(Language(0));
        std::mt19937 random(7);
        Text next;
        for (int step = 0; step < 300; ++step) {
            const std::size_t at = random() % (next.size() + 1);
            Text piece;
            for (auto n = random() % 4; n > 0; --n) {
                piece.push_back(u"ab\r\n"[random() % 4]);
            }
            next.replace(at, std::min<std::size_t>(random() % 4, next.size() - at), piece);
            editor->replaceText(next);
            QCOMPARE(text(editor), toQString(next));
        }
    }

    // A thousand commands on long bodies: the program's memory stays within
    // 16 MB, as each undo step holds its change and not a copy of the body.
    // (A load or copy that differs in two places holds the text between them.)
    void commandsKeepMemoryFlat() {
        MainWindow& w = *m_window;
        QTemporaryDir dir;
        Text body;
        while (body.size() < 40'000) {
            body += u"words and more words\n<jc>\n";
        }
        w.bodyEditor(Language(0))->replaceText(body);
        const std::function<void()> kinds[] = {
            [&] { QTest::keyClick(w.bodyEditor(Language(0)), Qt::Key_Return); },
            [&] { w.languagePages[0]->copyButton->click(); },
            [&] { w.languagePages[0]->centreButton->click(); },
            [&] { w.languagePages[0]->copyButton->click(); },
            [&] { w.save("soak", dir.path()); },
            [&] { w.load("soak", dir.path()); }};
        auto commands = [&](int count) {
            for (int k = 0; k < count; ++k) {
                w.bodyEditor(Language(0))
                    ->setCaretPosition(20'000 + 7 * static_cast<std::size_t>(k));
                kinds[k % 6]();
            }
        };
        commands(100);
        const long before = testing::memoryKb("VmRSS");
        commands(1000);
        const long grown = testing::memoryKb("VmRSS") - before;
        QVERIFY2(grown < 16 * 1024, qPrintable(QString::number(grown)));
        QVERIFY(m_messages.shown.empty());
    }
};

QTEST_MAIN(EditingTest)
#include "editing_test.moc"
