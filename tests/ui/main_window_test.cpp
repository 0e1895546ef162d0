#include <QAbstractButton>
#include <QClipboard>
#include <QGroupBox>
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QTimer>
#include <QToolTip>
#include <QtTest>

#include "markup/mod_schema_parse.hpp"
#include "support/fakes.hpp"
#include "ui/frm_main.hpp"
#include "ui/qt_text.hpp"

using lorekeep::ui::frmMain;
using lorekeep::ui::FromQString;
using lorekeep::ui::RichTextBox;
using lorekeep::ui::ToQString;

namespace {

// The three containers whose client corner positions are measured from.
enum class In { Window, Frame1, TabMain };

QWidget* Container(frmMain& w, In in) {
    switch (in) {
        case In::Frame1:
            return w.Frame1;
        case In::TabMain:
            return w.tabMain;
        case In::Window:
            break;
    }
    return &w;
}

QWidget* Named(frmMain& w, const QString& name) {
    if (w.objectName() == name) {
        return &w;
    }
    return w.findChild<QWidget*>(name);
}

// Every text a control shows, whatever kind of control it is.
QString Caption(QWidget* widget) {
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        return button->text();
    }
    if (auto* label = qobject_cast<QLabel*>(widget)) {
        return label->text();
    }
    if (auto* group = qobject_cast<QGroupBox*>(widget)) {
        return group->title();
    }
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        return edit->text();
    }
    if (auto* combo = qobject_cast<QComboBox*>(widget)) {
        return combo->currentText();
    }
    if (auto* rich = qobject_cast<QTextEdit*>(widget)) {
        return rich->toPlainText();
    }
    return {};
}

QString Name(const char* name, int index) {
    return QStringLiteral("%1(%2)").arg(name).arg(index);
}

}  // namespace

class FrmMainTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        window_ = std::make_unique<frmMain>();
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    }
    void cleanup() { window_.reset(); }

    void windowIsFixedWithCloseButtonOnly() {
        QCOMPARE(window_->windowTitle(), QStringLiteral("The Lorekeep by Halvane"));
        QCOMPARE(window_->size(), QSize(421, 471));
        QCOMPARE(window_->minimumSize(), QSize(421, 471));
        QCOMPARE(window_->maximumSize(), QSize(421, 471));
        const auto flags = window_->windowFlags();
        QVERIFY(!(flags & Qt::WindowMinimizeButtonHint));
        QVERIFY(!(flags & Qt::WindowMaximizeButtonHint));
        QVERIFY(flags & Qt::WindowCloseButtonHint);
    }

    // Every control against the window's tables: where it stands (twips from
    // its container's corner), what it shows and its tooltip. A row per control,
    // so a wrong number or text fails one clear case.
    void controls_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("in");
        QTest::addColumn<QRect>("twips");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("tip");
        auto row = [](const QString& name, In in, QRect twips, const char* caption,
                      const char* tip) {
            QTest::newRow(qPrintable(name))
                << name << int(in) << twips << QString::fromUtf8(caption) << QString::fromUtf8(tip);
        };
        const char* ingame = "This is what your text will look like in-game";
        row("Frame1", In::Window, {120, 0, 6135, 1455}, "Schema", "");
        row("Label4", In::Window, {120, 1560, 495, 255}, "Font:", "");
        row("cboFont", In::Window, {720, 1560, 1575, 315}, "Font",
            "Fonts compatible with the game");
        row("cmdSave", In::Window, {2400, 1560, 1215, 255}, "Save Schema",
            "Save the Current Schema File");
        row("cmdLoad", In::Window, {3720, 1560, 1215, 255}, "Load Schema", "Load a Schema File");
        row("tabMain", In::Window, {120, 1920, 6135, 5055}, "", ingame);
        row("Label1", In::Frame1, {120, 240, 5895, 255}, "Schema File Folder:", "");
        row("txtLoc", In::Frame1, {120, 480, 5535, 285}, "",
            "Folder where the schema file will be saved to");
        row("cmdLoc", In::Frame1, {5640, 480, 375, 255}, "...", "");
        row("Label2", In::Frame1, {120, 840, 5895, 255}, "Schema Name: (Do not include extension)",
            "");
        row("txtName", In::Frame1, {120, 1080, 5895, 285}, "",
            "The name of the schema file. No file extension is needed as it is added "
            "automatically.");
        const char* colourTips[] = {"Unlocks RGB Boxes for colour choice",
                                    "Unlocks RGB Boxes for color choice"};
        const char* copyTips[] = {
            "This copies the text currently in English to the French, German and Italian sections.",
            "This copies the text currently in French to the English, German and Italian sections.",
            "This copies the text currently in German to the French, English and Italian sections.",
            "This copies the text currently in Italian to the French, German and English "
            "sections."};
        const char* rgb[] = {"R", "G", "B"};
        for (int i = 0; i < 4; ++i) {
            row(Name("cmdLeftJus", i), In::TabMain, {120, 720, 975, 255}, "Left Justify",
                "Adds Left Justified Markers");
            row(Name("cmdRightJus", i), In::TabMain, {1080, 720, 975, 255}, "Right Justify",
                "Adds Right Justified Markers");
            row(Name("cmdCent", i), In::TabMain, {120, 960, 975, 255}, "Center",
                "Adds Centered Markers");
            row(Name("cmdColor", i), In::TabMain, {1080, 960, 975, 255}, "Colour",
                colourTips[i > 0]);
            for (int c = 0; c < 3; ++c) {
                row(Name("Label5", 3 * i + c), In::TabMain, {2160 + 720 * c, 720, 255, 255}, rgb[c],
                    "");
                row(Name("txtColor", 3 * i + c), In::TabMain, {2280 + 720 * c, 720, 495, 285}, "0",
                    "");
            }
            row(Name("cmdOK", i), In::TabMain, {2280, 960, 1935, 255}, "OK", "Adds Colour Markers");
            row(Name("cmdCopy", i), In::TabMain, {4320, 720, 1455, 495},
                "Copy Text to all Other Languages", copyTips[i]);
            row(Name("Label3", i), In::TabMain, {120, 1320, 495, 255}, "Title:", "");
            row(Name("txtTitle", i), In::TabMain, {600, 1320, 5175, 285}, "",
                "Title to appear at the top of your text.");
            row(Name("rtbText", i), In::TabMain, {120, 1680, 5655, 3255}, "",
                "Type your text here. This text will be modified and saved to the schema file. "
                "You may add special syntax here manually.");
            row(Name("rtbText", 4 + i), In::TabMain, {120, 720, 5655, 4215}, "",
                i < 2 ? ingame : "");
        }
    }
    void controls() {
        QFETCH(QString, name);
        QFETCH(int, in);
        QFETCH(QRect, twips);
        QFETCH(QString, caption);
        QFETCH(QString, tip);
        QWidget* widget = Named(*window_, name);
        QVERIFY2(widget, qPrintable(name));
        const QPoint corner = widget->mapTo(Container(*window_, In(in)), QPoint(0, 0));
        QCOMPARE(QRect(corner, widget->size()), QRect(twips.left() / 15, twips.top() / 15,
                                                      twips.width() / 15, twips.height() / 15));
        if (name != "tabMain") {
            QCOMPARE(Caption(widget), caption);
        }
        QCOMPARE(widget->toolTip(), tip);
    }

    // What the user sees when resting the mouse on a control: its own tooltip,
    // or none at all, never the tooltip of the container it stands in.
    void tooltipsShown_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("page");
        QTest::addColumn<QString>("shown");
        const QString ingame = QStringLiteral("This is what your text will look like in-game");
        QTest::newRow("German pane") << "rtbText(6)" << 6 << QString();
        QTest::newRow("Italian pane") << "rtbText(7)" << 7 << QString();
        QTest::newRow("English pane") << "rtbText(4)" << 4 << ingame;
        QTest::newRow("title label") << "Label3(0)" << 0 << QString();
        QTest::newRow("colour box") << "txtColor(0)" << 0 << QString();
        QTest::newRow("editor")
            << "rtbText(1)" << 1
            << "Type your text here. This text will be modified and saved to the schema file. "
               "You may add special syntax here manually.";
        QTest::newRow("tab strip") << "strip" << 0 << ingame;
    }
    void tooltipsShown() {
        QFETCH(QString, name);
        QFETCH(int, page);
        QFETCH(QString, shown);
        frmMain& w = *window_;
        w.tabMain->setCurrentIndex(page);
        w.txtColor[0]->setEnabled(true);
        QWidget* target = name == "strip" ? w.tabMain->strip() : Named(w, name);
        QVERIFY(target);
        if (auto* area = qobject_cast<QAbstractScrollArea*>(target)) {
            target = area->viewport();
        }
        QToolTip::hideText();
        const QPoint at(5, 5);
        QHelpEvent help(QEvent::ToolTip, at, target->mapToGlobal(at));
        QApplication::sendEvent(target, &help);
        QCOMPARE(QToolTip::text(), shown);
        QToolTip::hideText();
    }

    void initialState() {
        frmMain& w = *window_;
        for (QLineEdit* box : w.txtColor) {
            QVERIFY(!box->isEnabled());
        }
        for (int i = 0; i < 4; ++i) {
            QVERIFY(!w.cmdOK[i]->isEnabled());
            for (QWidget* enabled : std::initializer_list<QWidget*>{
                     w.cmdLeftJus[i], w.cmdCent[i], w.cmdRightJus[i], w.cmdColor[i], w.cmdCopy[i],
                     w.txtTitle[i], w.rtbText[i], w.rtbText[4 + i]}) {
                QVERIFY2(enabled->isEnabled(), qPrintable(enabled->objectName()));
            }
            QVERIFY(!w.rtbText[i]->isReadOnly());
            QVERIFY(!w.rtbText[4 + i]->isReadOnly());
        }
        QCOMPARE(w.cboFont->count(), 5);
        const QStringList fonts{"Papyrus14", "Papyrus20", "SmallFont10", "MediumFont14",
                                "MediumFont16"};
        for (int k = 0; k < 5; ++k) {
            QCOMPARE(w.cboFont->itemText(k), fonts[k]);
            QCOMPARE(w.cboFont->itemData(k).toInt(), 0);
        }
        QCOMPARE(w.cboFont->currentIndex(), -1);
        QVERIFY(w.cboFont->isEditable());
        QCOMPARE(w.tabMain->currentIndex(), 0);
        const QStringList tabs{"English",       "French",         "German",
                               "Italian",       "English Parsed", "French Parsed",
                               "German Parsed", "Italian Parsed"};
        for (int k = 0; k < 8; ++k) {
            QCOMPARE(w.tabMain->strip()->tabText(k), tabs[k]);
        }
        QVERIFY(w.rtbText[0]->isVisible());
        QVERIFY(!w.rtbText[4]->isVisible());
        w.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(w.txtLoc));
        QVERIFY(w.Toggle(false));
        QVERIFY(!w.Toggle(true));
    }

    void focusOrderFollowsTheList() {
        frmMain& w = *window_;
        QList<QWidget*> expected{w.txtLoc, w.tabMain->strip()};
        for (auto* box : w.rtbText) {
            expected << box;
        }
        expected << w.txtName << w.cmdLeftJus[0] << w.txtTitle[0] << w.cmdCent[0]
                 << w.cmdRightJus[0] << w.cmdColor[0] << w.txtTitle[1] << w.txtTitle[2]
                 << w.txtTitle[3];
        for (int i = 1; i < 4; ++i) {
            expected << w.cmdColor[i] << w.cmdRightJus[i] << w.cmdCent[i] << w.cmdLeftJus[i];
        }
        expected << w.cboFont << w.cmdLoad << w.cmdSave;
        for (auto* box : w.txtColor) {
            expected << box;
        }
        expected << w.cmdOK[3] << w.cmdOK[2] << w.cmdOK[0] << w.cmdOK[1];
        for (auto* button : w.cmdCopy) {
            expected << button;
        }
        expected << w.cmdLoc;

        // Walk the window's focus chain and keep the controls that take focus.
        QList<QWidget*> chain;
        for (QWidget* next = w.txtLoc; chain.size() < expected.size();) {
            chain << next;
            do {
                next = next->nextInFocusChain();
            } while (next != w.txtLoc && !expected.contains(next));
            if (next == w.txtLoc) {
                break;
            }
        }
        QCOMPARE(chain, expected);
        for (QWidget* widget : expected) {
            QVERIFY2(widget->focusPolicy() & Qt::TabFocus, qPrintable(widget->objectName()));
        }
        for (QWidget* label : {static_cast<QWidget*>(w.Label1), static_cast<QWidget*>(w.Label3[0]),
                               static_cast<QWidget*>(w.Frame1)}) {
            QCOMPARE(label->focusPolicy(), Qt::NoFocus);
        }
    }

    void tabsSwitchOnlyWhenTheUserAsks() {
        frmMain& w = *window_;
        auto* strip = w.tabMain->strip();
        QTest::mouseClick(strip, Qt::LeftButton, {}, strip->tabRect(5).center());
        QCOMPARE(w.tabMain->currentIndex(), 5);
        QVERIFY(w.rtbText[5]->isVisible());
        QTest::keyClicks(w.rtbText[0], "typing does not switch");
        w.cmdCent[0]->click();
        QCOMPARE(w.tabMain->currentIndex(), 5);

        w.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        w.txtName->setFocus();
        QTest::keyClick(w.txtName, Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(w.tabMain->currentIndex(), 6);
        QTest::keyClick(w.txtName, Qt::Key_Tab, Qt::ControlModifier);
        QTest::keyClick(w.txtName, Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(w.tabMain->currentIndex(), 0);
        QTest::keyClick(w.txtName, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(w.tabMain->currentIndex(), 7);
        // From inside an editor too, which keeps Ctrl+Tab for the pages.
        w.tabMain->setCurrentIndex(1);
        w.rtbText[1]->setFocus();
        QTest::keyClick(w.rtbText[1], Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(w.tabMain->currentIndex(), 2);
        QVERIFY(w.rtbText[1]->PlainText().find(u'\t') == std::u16string::npos);
    }

    // Typing into editor i refreshes pane i + 4 and no other.
    void typingRefreshesOnlyItsOwnPane_data() {
        QTest::addColumn<int>("language");
        for (int i = 0; i < 4; ++i) {
            QTest::newRow(qPrintable(QString::number(i))) << i;
        }
    }
    void typingRefreshesOnlyItsOwnPane() {
        QFETCH(int, language);
        frmMain& w = *window_;
        w.tabMain->setCurrentIndex(language);
        w.rtbText[language]->setFocus();
        QTest::keyClicks(w.rtbText[language], "A\\n<br>\\nB");
        for (int k = 0; k < 4; ++k) {
            const QString expected = k == language ? QStringLiteral("A\nB") : QString();
            QCOMPARE(w.rtbText[4 + k]->toPlainText(), expected);
        }
        QCOMPARE(w.rtbText[4 + language]->PlainText(), std::u16string(u"A\rB"));
    }

    void otherControlsRefreshNothing() {
        frmMain& w = *window_;
        w.rtbText[0]->SetPlainText(u"body");
        w.rtbText[4]->SetPlainText(u"left alone");
        QTest::keyClicks(w.txtTitle[0], "\\n<br>\\n");
        QTest::keyClicks(w.cboFont->lineEdit(), "X");
        w.txtColor[0]->setEnabled(true);
        QTest::keyClicks(w.txtColor[0], "5");
        QTest::keyClicks(w.txtLoc, "folder");
        QCOMPARE(w.rtbText[4]->PlainText(), std::u16string(u"left alone"));
        // Typing into a pane renders nothing and changes no other box.
        w.rtbText[4]->SetCaret(99);
        QTest::keyClicks(w.rtbText[4], "\\n<br>\\n");
        QCOMPARE(w.rtbText[4]->PlainText(), std::u16string(u"left alone\\n<br>\\n"));
        QCOMPARE(w.rtbText[0]->PlainText(), std::u16string(u"body"));
    }

    // The pane's characters, colours and paragraph alignments, read back from
    // the widget, are the renderer's.
    void paneShowsExactlyWhatTheRendererComputed() {
        frmMain& w = *window_;
        const std::u16string body =
            u"\\n<font=Papyrus14>\\n\\n<title=T>\\nIntro\\n<br>\\n\\n<jc>\\nCentred"
            u"\\n<dc=255,0,0>\\nred\\n<p>\\n\\n<jr>\\nright\\n<dc=0,0,0>\\n\\n<pb>\\n"
            u"\\n<jl>\\nleft\\n<dc=7,08,100>\\nend\\n<JC>\\n\\n<br>\\n\\n<jc>\\n";
        w.rtbText[1]->SetPlainText(body);
        const auto model = lorekeep::modSchemaParse::RenderPreview(body);
        RichTextBox* pane = w.rtbText[5];
        QCOMPARE(pane->PlainText(), model.text);
        const auto colours = lorekeep::markup::ColourOfEachCharacter(model);
        for (std::size_t k = 0; k < model.text.size(); ++k) {
            if (lorekeep::markup::IsParagraphSeparator(model.text[k])) {
                continue;  // a paragraph end carries no character format of its own
            }
            const QColor shown = pane->CharacterColour(k);
            const QColor expected =
                colours[k] ? QColor(colours[k]->red, colours[k]->green, colours[k]->blue)
                           : QColor();
            QVERIFY2(shown == expected, qPrintable(QStringLiteral("character %1").arg(k)));
        }
        QCOMPARE(pane->document()->blockCount(), static_cast<int>(model.paragraphs.size()));
        for (std::size_t p = 0; p < model.paragraphs.size(); ++p) {
            QVERIFY2(pane->ParagraphAlignment(static_cast<int>(p)) == model.paragraphs[p],
                     qPrintable(QStringLiteral("paragraph %1").arg(p)));
        }
        QCOMPARE(pane->Caret(), model.caret);
        QCOMPARE(static_cast<std::size_t>(pane->textCursor().selectedText().size()),
                 model.selectionLength);
    }

    void pastingKeepsPlainTextOnly() {
        RichTextBox* box = window_->rtbText[0];
        auto* mime = new QMimeData;
        mime->setHtml("<b>bold</b> <span style='color:red'>red</span>");
        mime->setText("bold red");
        QApplication::clipboard()->setMimeData(mime);
        box->paste();
        QCOMPARE(box->PlainText(), std::u16string(u"bold red"));
        QVERIFY(!box->toHtml().contains("font-weight:700"));
        QVERIFY(!box->toHtml().contains("color:"));
    }

    void pastingMoreThanABodyCanHoldIsRefused() {
        RichTextBox* box = window_->rtbText[0];
        box->SetPlainText(u"kept");
        auto* mime = new QMimeData;
        mime->setText(QString(static_cast<qsizetype>(lorekeep::kMaxBodyLength), QChar('x')));
        QApplication::clipboard()->setMimeData(mime);
        box->paste();
        QCOMPARE(box->PlainText(), std::u16string(u"kept"));
    }

    // The real message box, shown modally and closed by a timer.
    void realMessageBoxShowsTextAndTitle() {
        lorekeep::ui::QtMessageBox messages(window_.get());
        QString title;
        QString text;
        int buttons = 0;
        bool noIcon = false;
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            title = box->windowTitle();
            text = box->text();
            buttons = static_cast<int>(box->buttons().size());
            noIcon = box->icon() == QMessageBox::NoIcon;
            box->button(QMessageBox::Ok)->click();
        });
        messages.ShowMessage(u"An error occured", u"Lorekeep");
        QCOMPARE(title, QStringLiteral("Lorekeep"));
        QCOMPARE(text, QStringLiteral("An error occured"));
        QCOMPARE(buttons, 1);
        QVERIFY(noIcon);
    }

  private:
    std::unique_ptr<frmMain> window_;
};

QTEST_MAIN(FrmMainTest)
#include "frm_main_test.moc"
