#include <QClipboard>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QTimer>
#include <QToolTip>
#include <QtTest>

#include "schema/schema_document.hpp"
#include "ui/main_window.hpp"
#include "ui/window_layout.hpp"

using namespace lorekeep;
using namespace lorekeep::ui;

// The window as the user meets it, with its real dialogs: what it shows,
// which page is up and which pane follows which editor.
class MainWindowTest : public QObject {
    Q_OBJECT

    static QString text(const editor::EditorBox* box) { return toQString(box->plainText()); }
    std::unique_ptr<MainWindow> m_window;

  private slots:
    void init() {
        m_window = std::make_unique<MainWindow>();
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void initialState() {
        MainWindow& w = *m_window;
        const auto locked = w.findChildren<QWidget*>(QRegularExpression(R"(^(txtColor|cmdOK)\()"));
        QCOMPARE(locked.size(), 16);
        QVERIFY(std::ranges::none_of(locked, &QWidget::isEnabled));
        QCOMPARE(w.fontBox->count(), static_cast<int>(kFontNames.size()));
        QCOMPARE(w.fontBox->currentIndex(), -1);
        QCOMPARE(w.fontBox->currentText(), "Font");
        QCOMPARE(w.tabs->currentIndex(), 0);
        QCOMPARE(QApplication::focusWidget(), w.folderBox);
        // Fixed in size, with a close button only.
        QCOMPARE(w.minimumSize(), w.maximumSize());
        QVERIFY(!(w.windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint)));
    }

    // Resting the mouse on a control shows its own tooltip or none at all,
    // never the tooltip of the container it stands in (whose own tab strip
    // rightly shows the container's).
    void tooltipsShown_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("page");
        QTest::addColumn<QString>("shown");
        const QString ingame = toQString(layout::kTabMainTip);
        QTest::newRow("German pane") << "rtbText(6)" << 6 << QString();
        QTest::newRow("English pane") << "rtbText(4)" << 4 << ingame;
        QTest::newRow("title label") << "Label3(0)" << 0 << QString();
        QTest::newRow("tab strip") << "tabMain" << 0 << ingame;
    }
    void tooltipsShown() {
        QFETCH(QString, name);
        QFETCH(int, page);
        QFETCH(QString, shown);
        m_window->tabs->setCurrentIndex(page);
        const QWidget* named = m_window->findChild<QWidget*>(name);
        QVERIFY(named);
        const QPoint at = named->mapToGlobal(QPoint(5, 5));
        QWidget* under = QApplication::widgetAt(at);
        QToolTip::hideText();
        QHelpEvent help(QEvent::ToolTip, under->mapFromGlobal(at), at);
        QApplication::sendEvent(under, &help);
        QCOMPARE(QToolTip::text(), shown);
    }

    // Typing into editor i refreshes pane 4 + i and no other; typing anywhere
    // else (a pane, a title, the font, the folder) refreshes nothing. Pages
    // switch only when the user asks: neither typing nor a button does it.
    void onlyAnEditorRefreshesAPane() {
        MainWindow& w = *m_window;
        QTest::mouseClick(w.tabs->strip(), Qt::LeftButton, {},
                          w.tabs->strip()->tabRect(5).center());
        QCOMPARE(w.tabs->currentIndex(), 5);
        for (int language = 0; language < kLanguageCount; ++language) {
            QTest::keyClicks(w.bodyEditor(Language(language)), "A\\n<br>\\nB");
            for (int k = 0; k < kLanguageCount; ++k) {
                QCOMPARE(text(w.previewPane(Language(k))), k <= language ? "A\rB" : "");
            }
        }
        QTest::keyClicks(w.previewPane(Language(0)), "\\n<br>\\n");
        QTest::keyClicks(w.languagePages[0]->titleBox, "\\n<br>\\n");
        QTest::keyClicks(w.fontBox->lineEdit(), "X");
        QTest::keyClicks(w.folderBox, "folder");
        // Typed at the pane's caret, which the preview left behind the marker.
        QCOMPARE(text(w.previewPane(Language(0))), "A\r\\n<br>\\nB");
        QCOMPARE(text(w.bodyEditor(Language(0))), "A\\n<br>\\nB");
        w.languagePages[0]->centreButton->click();
        QCOMPARE(w.tabs->currentIndex(), 5);
    }

    // Pasting drops formatting, and a paste that would make the body longer
    // than a box can lay out is refused whole.
    void pasting() {
        PlainTextBox* box = m_window->bodyEditor(Language(0));
        auto* mime = new QMimeData;
        mime->setHtml("<b>bold</b> <span style='color:red'>red</span>");
        mime->setText("bold red");
        QApplication::clipboard()->setMimeData(mime);
        box->paste();
        QCOMPARE(text(box), "bold red");
        const QString html = box->document()->toHtml();
        QVERIFY(!html.contains("font-weight:700") && !html.contains("color:"));
        // Unwrapped, a paste let through wrongly costs a second to lay out, not minutes.
        box->setLineWrapMode(QPlainTextEdit::NoWrap);
        QApplication::clipboard()->setText(
            QString(static_cast<qsizetype>(lorekeep::kMaxBodyLength) - 7, QChar('x')));
        box->paste();
        QCOMPARE(text(box), "bold red");
    }

    // --goto: the language's page, the caret at the place, the box focused,
    // a place past the end at the end.
    void goingToAFinding() {
        MainWindow& w = *m_window;
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        w.bodyEditor(Language::French)->replaceText(u"Bonjour le monde");
        w.languagePages[2]->titleBox->setText("Der Turm");
        w.goTo(Language::French, false, 8);
        QCOMPARE(w.tabs->currentIndex(), 1);
        QCOMPARE(w.bodyEditor(Language::French)->caretPosition(), 8u);
        QCOMPARE(QApplication::focusWidget(), w.bodyEditor(Language::French));
        w.goTo(Language::German, true, 99);
        QCOMPARE(w.tabs->currentIndex(), 2);
        QCOMPARE(w.languagePages[2]->titleBox->cursorPosition(), 8);
        QCOMPARE(QApplication::focusWidget(), w.languagePages[2]->titleBox);
        QCOMPARE(languageFromName("italian"), Language::Italian);
        QCOMPARE(languageFromName("DE"), Language::German);
        QVERIFY(!languageFromName("Englis"));
    }

    // The real dialogs, each answered by a timer once it is up. The message
    // box: modal, OK only, no icon. The location dialog saves without asking
    // to replace a file: choosing an existing one is how a schema is picked
    // for loading too.
    void realDialogs() {
        QStringList seen;
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            seen << box->windowTitle() << box->text() << QString::number(box->buttons().size())
                 << QString::number(box->icon());
            box->button(QMessageBox::Ok)->click();
        });
        QtMessageBox(m_window.get()).showMessage(u"An error occured", u"Lorekeep");
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            seen << dialog->windowTitle() << dialog->defaultSuffix() << dialog->nameFilters()
                 << QString::number(dialog->testOption(QFileDialog::DontConfirmOverwrite));
            dialog->selectFile(QDir::temp().filePath("intro"));
            QMetaObject::invokeMethod(dialog, "accept");
        });
        m_window->locationButton->click();
        QCOMPARE(seen,
                 (QStringList{"Lorekeep", "An error occured", "1", "0",
                              "Choose a schema location and name", "sch", "Schemas (*.sch)", "1"}));
        QCOMPARE(m_window->folderBox->text(), QDir::tempPath() + "/");
        QCOMPARE(m_window->nameBox->text(), "intro");
        // Ctrl+O: the same dialog in its open form, for existing files; cancelled.
        seen.clear();
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            seen << dialog->windowTitle() << dialog->nameFilters()
                 << QString::number(dialog->acceptMode()) << QString::number(dialog->fileMode());
            dialog->reject();
        });
        // The offscreen platform leaves the closed dialog the active window.
        QApplication::setActiveWindow(m_window.get());
        QTest::keyClick(m_window->folderBox, Qt::Key_O, Qt::ControlModifier);
        QCOMPARE(seen, (QStringList{"Open a schema file", "Schema files (*.sch)",
                                    QString::number(QFileDialog::AcceptOpen),
                                    QString::number(QFileDialog::ExistingFile)}));
        QCOMPARE(m_window->nameBox->text(), "intro");
    }
};

QTEST_MAIN(MainWindowTest)
#include "main_window_test.moc"
