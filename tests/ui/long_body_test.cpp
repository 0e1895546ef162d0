#include <QClipboard>
#include <QTextBlock>
#include <QtTest>
#include <random>

#include "markup/renderer.hpp"
#include "support/marker_soup.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

using namespace lorekeep;
using namespace lorekeep::ui;

// Long bodies in the real widgets: the editor cuts them into blocks that read
// back exactly, and the preview, changed only where it changes, always shows
// what a full render of the editor's text gives.
class LongBodyTest : public QObject {
    Q_OBJECT

    std::unique_ptr<MainWindow> m_window;

    static Text repeated(TextView piece, int times) {
        Text text;
        while (times-- > 0) {
            text += piece;
        }
        return text;
    }

    // The pane against a full render of the editor: characters, colour of
    // each, alignment of each paragraph, caret and selection.
    static bool paneInStep(const editor::EditorBox* editor, const RichTextBox* pane) {
        const markup::RenderedPreview model = markup::renderPreview(editor->plainText());
        const QTextCursor cursor = pane->textCursor();
        if (pane->plainText() != model.text || pane->caretPosition() != model.caret ||
            std::size_t(cursor.selectionEnd() - cursor.selectionStart()) != model.selectionLength) {
            return false;
        }
        for (std::size_t run = 0, k = 0; run < model.colours.size(); ++run) {
            const auto& c = model.colours[run].colour;
            const QColor expected = c ? QColor(c->red, c->green, c->blue) : QColor();
            const std::size_t end =
                run + 1 < model.colours.size() ? model.colours[run + 1].start : model.text.size();
            for (; k < end; ++k) {
                if (!markup::isParagraphSeparator(model.text[k]) &&
                    pane->characterColour(k) != expected) {
                    return false;
                }
            }
        }
        for (std::size_t p = 0; p < model.paragraphs.size(); ++p) {
            if (pane->paragraphAlignment(static_cast<int>(p)) != model.paragraphs[p]) {
                return false;
            }
        }
        return true;
    }

  private slots:
    void init() {
        m_window = std::make_unique<MainWindow>();
        m_window->show();
    }

    // Random keys on a long marked-up body: typing, Backspace and Delete at
    // random places, selections typed over, pastes, undo and redo. After each,
    // inside the same event, the pane equals a full render.
    void everyKeystrokeLeavesThePreviewInStep() {
        PlainTextBox* editor = m_window->bodyEditor(Language(1));
        const RichTextBox* pane = m_window->previewPane(Language(1));
        testing::MarkerSoup soup(11);
        std::mt19937 random(11);
        editor->replaceText(soup.next(6000) + soup.next(6000));
        QVERIFY(paneInStep(editor, pane));
        // Typing into the pane itself leaves it out of step until the editor changes.
        QTest::keyClicks(m_window->previewPane(Language(1)), "typed into the pane");
        editor->setFocus();
        const QString typed = QStringLiteral("\\n<jcrdp=>,0 x");
        for (int step = 0; step < 400; ++step) {
            const std::size_t length = editor->plainText().size();
            const std::size_t at = random() % (length + 1);
            QTextCursor cursor = editor->textCursor();
            cursor.setPosition(static_cast<int>(at));
            if (random() % 6 == 0) {  // a short selection
                cursor.setPosition(static_cast<int>(std::min(length, at + random() % 40)),
                                   QTextCursor::KeepAnchor);
            }
            editor->setTextCursor(cursor);
            const std::size_t start = static_cast<std::size_t>(cursor.selectionStart());
            const std::size_t selected = static_cast<std::size_t>(cursor.selectionEnd()) - start;
            Text expected = editor->plainText();
            const auto kind = random() % 8;
            if (kind < 3) {
                const QChar c = typed[static_cast<qsizetype>(random() % typed.size())];
                QTest::keyClick(editor, c.toLatin1());
                expected.replace(start, selected, Text(1, c.unicode()));
            } else if (kind == 3) {
                QTest::keyClick(editor, Qt::Key_Backspace);
                if (selected > 0) {
                    expected.erase(start, selected);
                } else if (start > 0) {
                    expected.erase(start - 1, 1);
                }
            } else if (kind == 4) {
                QTest::keyClick(editor, Qt::Key_Delete);
                expected.erase(start, selected > 0 ? selected : 1);
            } else if (kind == 5) {
                const QString piece = toQString(soup.piece() + u"\r\n" + soup.piece());
                QApplication::clipboard()->setText(piece);
                QTest::keyClick(editor, Qt::Key_V, Qt::ControlModifier);
                // A paste makes each line break a line feed.
                expected.replace(start, selected,
                                 fromQString(QString(piece)
                                                 .replace(QStringLiteral("\r\n"), "\n")
                                                 .replace(u'\r', u'\n')));
            } else {
                QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
                QVERIFY2(paneInStep(editor, pane), "after undo");
                QTest::keyClick(editor, Qt::Key_Y, Qt::ControlModifier);
                expected = editor->plainText();  // redo may have nothing to redo
            }
            QVERIFY2(editor->plainText() == expected, qPrintable(QString::number(step)));
            QVERIFY2(paneInStep(editor, pane), qPrintable(QString::number(step)));
        }
    }

    // Every kind of marker, in both cases and with padded numbers, set and
    // then edited; then edits at the ends of blocks: a removal that begins at
    // a block's start (the toolkit keeps the later block's format) and a block
    // end standing for a character just before a colour change.
    void editsKeepThePreviewInStep() {
        PlainTextBox* editor = m_window->bodyEditor(Language(2));
        const std::tuple<Text, std::size_t, Qt::Key> rows[] = {
            {u"Intro\\n<br>\\n\\n<jc>\\nCentred\\n<dc=255,0,0>\\nred\\n<p>\\n\\n<jr>\\nright"
             u"\\n<dc=0,0,0>\\n\\n<pb>\\n\\n<jl>\\nleft\\n<dc=7,08,100>\\nend\\n<JC>\\n\\n<jc>\\n",
             30, Qt::Key_Backspace},
            {repeated(u"word ", 205) + u"\r\\n<jc>\\nend", 1025, Qt::Key_Delete},
            {Text(256, u'a') + u"b\\n<dc=255,0,0>\\nred", 3, Qt::Key_X}};
        for (const auto& [body, caret, key] : rows) {
            editor->replaceText(body);
            QVERIFY(paneInStep(editor, m_window->previewPane(Language(2))));
            editor->setCaretPosition(caret);
            QTest::keyClick(editor, key);
            QVERIFY(paneInStep(editor, m_window->previewPane(Language(2))));
        }
    }

    // A pane changed while its page was hidden is laid out when the page is
    // shown: the text fills the pane's width and the caret is in view.
    void aPaneChangedWhileHiddenShowsWhenItsPageDoes() {
        PlainTextBox* editor = m_window->bodyEditor(Language(0));
        const RichTextBox* pane = m_window->previewPane(Language(0));
        const Text body = repeated(u"Lore of the keep \\n<br>\\n", 400);
        editor->replaceText(body + u"\\n<jc>\\nthe end");
        m_window->tabs->setCurrentIndex(4);
        QApplication::processEvents();
        m_window->tabs->setCurrentIndex(0);
        editor->setFocus();
        editor->setCaretPosition(body.size() / 2);
        QTest::keyClicks(editor, "typed while the pane is hidden");
        m_window->tabs->setCurrentIndex(4);
        QApplication::processEvents();
        QCOMPARE(pane->document()->pageSize().width(), qreal(pane->viewport()->width()));
        QVERIFY(pane->viewport()->rect().contains(pane->cursorRect().center()));
        QVERIFY(pane->document()->size().height() > pane->viewport()->height());
    }

    // A pane whose page is hidden lays out nothing, however its preview
    // arrives: a whole new one (a load) or a patch (typing).
    void aHiddenPaneLaysOutNothing() {
        PlainTextBox* editor = m_window->bodyEditor(Language(2));
        const RichTextBox* pane = m_window->previewPane(Language(2));
        editor->replaceText(repeated(u"Lore of the keep \\n<br>\\n", 2000));
        QTest::keyClicks(editor, "typed");
        QTest::qWait(100);  // the toolkit's layout goes on in the background
        int laidOut = 0;
        for (QTextBlock block = pane->document()->begin(); block.isValid(); block = block.next()) {
            laidOut += block.layout()->lineCount() > 0 ? 1 : 0;
        }
        QCOMPARE(laidOut, 0);
    }

    // A hidden pane's preview written again whole (the body replaced by
    // another) keeps nothing of the old one: not its alignment, not its
    // colour, not a drawn block end.
    void aPaneWrittenAgainWhileHiddenKeepsNothingOfTheOld() {
        PlainTextBox* editor = m_window->bodyEditor(Language(3));
        const RichTextBox* pane = m_window->previewPane(Language(3));
        editor->replaceText(u"\\n<jr>\\n\\n<dc=255,0,0>\\n" + repeated(u"x", 600));
        QVERIFY(paneInStep(editor, pane));
        for (const Text& body : {Text(u"plain words"), repeated(u"Lore \\n<jc>\\n", 300)}) {
            editor->replaceText(body);
            QVERIFY(paneInStep(editor, pane));
            QVERIFY(!pane->characterColour(0).isValid());
        }
    }

    // Words, a stretch without a space and line breaks of both kinds: the
    // editor holds them in blocks of bounded length, and reading back, copying
    // and cutting across block ends and undoing give exactly the body.
    void longStretchesReadBackExactly() {
        PlainTextBox* editor = m_window->bodyEditor(Language(0));
        const Text body = repeated(u"Lore of the keep ", 400) + Text(5000, u'x') + u"\r\n" +
                          Text(3000, u'\\') + u"\n\r" + u"é€ end";
        editor->replaceText(body);
        QVERIFY(editor->document()->blockCount() >= 8);
        for (QTextBlock block = editor->document()->begin(); block.isValid();
             block = block.next()) {
            QVERIFY(block.length() <= 1024 + 256 + 1);
        }
        QCOMPARE(editor->plainText(), body);
        editor->selectAll();
        editor->copy();
        QCOMPARE(QApplication::clipboard()->text(), toQString(body));
        // A cut from inside one block to inside another, over many block ends.
        QTextCursor cursor = editor->textCursor();
        cursor.setPosition(1500);
        cursor.setPosition(9000, QTextCursor::KeepAnchor);
        editor->setTextCursor(cursor);
        editor->cut();
        QCOMPARE(QApplication::clipboard()->text(), toQString(body.substr(1500, 7500)));
        QCOMPARE(editor->plainText(), body.substr(0, 1500) + body.substr(9000));
        editor->undo();
        QCOMPARE(editor->plainText(), body);
        QCOMPARE(m_window->previewPane(Language(0))->plainText(), markup::renderPreview(body).text);
    }
};

QTEST_MAIN(LongBodyTest)
#include "long_body_test.moc"
