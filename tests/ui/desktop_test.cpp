#include <QAccessible>
#include <QComboBox>
#include <QtTest>
#include <map>

#include "ui/caption_button.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

using namespace lorekeep;
using namespace lorekeep::ui;

namespace {

// Every accessible interface under `root`, depth first.
void walk(QAccessibleInterface* root, std::vector<QAccessibleInterface*>& all) {
    all.push_back(root);
    for (int k = 0; k < root->childCount(); ++k) {
        if (QAccessibleInterface* child = root->child(k)) {
            walk(child, all);
        }
    }
}

double luminance(QColor c) {
    auto channel = [](int v) {
        const double s = v / 255.0;
        return s <= 0.03928 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(c.red()) + 0.7152 * channel(c.green()) + 0.0722 * channel(c.blue());
}

}  // namespace

// The window as a desktop user meets it beyond the mouse: through a screen
// reader, in a dark theme and with a larger font.
class DesktopTest : public QObject {
    Q_OBJECT

    std::unique_ptr<MainWindow> m_window;

    MainWindow& shownWindow() {
        m_window = std::make_unique<MainWindow>();
        m_window->show();
        if (!QTest::qWaitForWindowExposed(m_window.get())) {
            qFatal("the window never showed");
        }
        return *m_window;
    }

    // The window as a desktop whose font is DejaVu Sans at `points` shows it.
    MainWindow& shownWindowAtFont(qreal points) {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPointSizeF(points);
        QApplication::setFont(font);
        return shownWindow();
    }

  private slots:
    void cleanup() {
        m_window.reset();
        QApplication::setFont(QFont());
        QApplication::setPalette(QPalette());
    }

    // Every box a user types into has a name of its own, taken from what the
    // window shows beside it.
    void everyControlIsNamed() {
        MainWindow& w = shownWindow();
        std::vector<QAccessibleInterface*> all;
        walk(QAccessible::queryAccessibleInterface(&w), all);
        QCOMPARE(all.front()->role(), QAccessible::Window);
        std::map<QString, QString> names;  // object name -> accessible name
        QStringList editableNames;
        for (QAccessibleInterface* node : all) {
            const QObject* object = node->object();
            if (object == nullptr || object->objectName().isEmpty()) {
                continue;
            }
            const QString name = node->text(QAccessible::Name);
            names[object->objectName()] = name;
            if (node->role() == QAccessible::EditableText) {
                editableNames << name;
            }
            if (object->isWidgetType() &&
                static_cast<const QWidget*>(object)->focusPolicy() != Qt::NoFocus) {
                QVERIFY2(!name.isEmpty(), qPrintable(object->objectName()));
            }
        }
        // Folder, name, 12 colour boxes, 4 titles, 8 rich-text boxes: all told
        // apart, and so are the buttons of the four pages.
        QCOMPARE(editableNames.size(), 26);
        QCOMPARE(QSet<QString>(editableNames.begin(), editableNames.end()).size(), 26);
        QStringList buttonNames;
        for (const QPushButton* button : w.findChildren<QPushButton*>()) {
            buttonNames << names[button->objectName()];
        }
        QCOMPARE(QSet<QString>(buttonNames.begin(), buttonNames.end()).size(), buttonNames.size());
        for (const char* row :
             {"txtLoc=Schema File Folder", "txtName=Schema Name", "cboFont=Font",
              "cmdSave=Save Schema", "txtColor(7)=German Green", "txtTitle(3)=Italian title",
              "rtbText(1)=French text", "rtbText(4)=English preview",
              "cmdLoc=Choose a schema location and name", "cmdCent(0)=Center, English",
              "cmdOK(3)=OK, Italian", "cmdCopy(1)=Copy Text to all Other Languages, French"}) {
            const QStringList expected = QString::fromLatin1(row).split(u'=');
            QCOMPARE(names[expected[0]], expected[1]);
        }
        // A label is announced as its box's label.
        QAccessibleInterface* folder = QAccessible::queryAccessibleInterface(w.folderBox);
        const auto labels = folder->relations(QAccessible::Label);
        QVERIFY(std::ranges::any_of(labels, [&](const auto& relation) {
            return relation.first->object() == w.folderLabel;
        }));
    }

    // The strip is a page tab list: its tabs carry their captions, their
    // place and which one is up, and pressing one brings its page up.
    void tabStripIsAPageTabList() {
        MainWindow& w = shownWindow();
        QAccessibleInterface* strip = QAccessible::queryAccessibleInterface(w.tabs->strip());
        QCOMPARE(strip->role(), QAccessible::PageTabList);
        QCOMPARE(strip->text(QAccessible::Name), "Pages");
        QCOMPARE(strip->childCount(), 8);
        const QStringList captions{"English",       "French",         "German",
                                   "Italian",       "English Parsed", "French Parsed",
                                   "German Parsed", "Italian Parsed"};
        for (int k = 0; k < 8; ++k) {
            QAccessibleInterface* tab = strip->child(k);
            QCOMPARE(tab->role(), QAccessible::PageTab);
            QCOMPARE(tab->text(QAccessible::Name), captions[k]);
            QCOMPARE(tab->state().selected, k == 0);
            QCOMPARE(tab->parent(), strip);
            QCOMPARE(strip->indexOfChild(tab), k);
            QCOMPARE(strip->childAt(tab->rect().center().x(), tab->rect().center().y()), tab);
            // The tab controls its page, which is named after it; nothing
            // controls the tab.
            QVERIFY(tab->relations(QAccessible::Controller).isEmpty());
            const auto controlled = tab->relations(QAccessible::Controlled);
            QCOMPARE(controlled.size(), 1);
            QCOMPARE(controlled.front().first->object(), w.tabs->page(k));
            QCOMPARE(controlled.front().first->text(QAccessible::Name), captions[k]);
        }
        QAccessibleInterface* germanParsed = strip->child(6);
        QAccessibleActionInterface* actions = germanParsed->actionInterface();
        QVERIFY(actions != nullptr);
        QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
        actions->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(w.tabs->currentIndex(), 6);
        QVERIFY(w.previewPages[2]->isVisible());
        QVERIFY(germanParsed->state().selected);
        QVERIFY(!strip->child(0)->state().selected);
    }

    // Under a dark desktop theme the editors follow the theme, while the
    // preview stays the game's light page with readable black text, both
    // for text in the pane's own colour and for text after a black marker.
    void previewKeepsTheGamesPageInADarkTheme_data() {
        QTest::addColumn<QString>("body");
        QTest::newRow("default colour") << "MMMM WWWW";
        QTest::newRow("black marker") << "\\n<dc=200,0,0>\\nx\\n<dc=0,0,0>\\nMMMM WWWW";
    }
    void previewKeepsTheGamesPageInADarkTheme() {
        QFETCH(QString, body);
        QPalette dark(QColor(53, 53, 53));
        dark.setColor(QPalette::Base, QColor(42, 42, 42));
        dark.setColor(QPalette::Text, Qt::white);
        QApplication::setPalette(dark);
        MainWindow& w = shownWindow();
        PlainTextBox* editor = w.bodyEditor(Language(0));
        QCOMPARE(editor->palette().color(QPalette::Base), QColor(42, 42, 42));
        editor->replaceText(fromQString(body));
        w.tabs->setCurrentIndex(4);
        RichTextBox* pane = w.previewPane(Language(0));
        const QImage picture = pane->viewport()->grab().toImage();
        const QColor page = picture.pixelColor(picture.width() - 2, picture.height() - 2);
        // The darkest pixel: the words in black, in both bodies.
        QColor darkest = page;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor c = picture.pixelColor(x, y);
                if (luminance(c) < luminance(darkest)) {
                    darkest = c;
                }
            }
        }
        const double contrast = (luminance(page) + 0.05) / (luminance(darkest) + 0.05);
        QVERIFY2(contrast >= 7.0, qPrintable(QString::number(contrast)));
    }

    // At the toolkit's default font the window has its twips' exact pixel
    // geometry. A larger font scales every place and size alike, at least in
    // proportion to the font, and every caption fits its control in the full
    // font.
    void largerFontsScaleTheWindow_data() {
        QTest::addColumn<qreal>("points");
        QTest::newRow("default") << 9.0;
        QTest::newRow("11 pt") << 11.0;
        QTest::newRow("12 pt") << 12.0;
    }
    void largerFontsScaleTheWindow() {
        QFETCH(qreal, points);
        MainWindow& w = shownWindowAtFont(points);
        const QRect copy =
            w.languagePages[1]->copyButton->geometry().translated(w.tabs->pageOffset());
        if (points == 9.0) {
            QCOMPARE(w.size(), QSize(421, 471));
            QCOMPARE(copy, QRect(288, 48, 97, 33));
            QCOMPARE(w.fontBox->geometry(), QRect(48, 104, 105, 21));
            return;  // the default font's own captions are drawn as they fit
        }
        const double scale = w.width() / 421.0;
        QVERIFY(scale >= points / 9.0 - 0.01);
        QVERIFY(std::abs(w.height() - 471 * scale) <= 1.0);
        QVERIFY((copy.topLeft() - QPointF(288, 48) * scale).manhattanLength() <= 2.0);
        QVERIFY(std::abs(copy.width() - 97 * scale) <= 1.0);
        for (const QWidget* control : w.findChildren<QWidget*>()) {
            QVERIFY2(control->font().pointSizeF() >= points, qPrintable(control->objectName()));
        }
        for (const auto* label : w.findChildren<QLabel*>()) {
            const QFontMetrics metrics(label->font());
            QVERIFY2(metrics.horizontalAdvance(label->text()) <= label->contentsRect().width() &&
                         metrics.height() <= label->contentsRect().height(),
                     qPrintable(label->objectName()));
        }
        for (const auto* button : w.findChildren<CaptionButton*>()) {
            QVERIFY2(button->captionFont().pointSizeF() == points,
                     qPrintable(button->objectName()));
        }
        for (int k = 0; k < w.tabs->strip()->count(); ++k) {
            QCOMPARE(w.tabs->strip()->captionFont(k).pointSizeF(), points);
        }
        const QFontMetrics metrics(QApplication::font());  // the desktop's, as set
        for (int k = 0; k < w.fontBox->count(); ++k) {
            QVERIFY2(
                metrics.horizontalAdvance(w.fontBox->itemText(k)) <= w.fontBox->lineEdit()->width(),
                qPrintable(w.fontBox->itemText(k)));
        }
        for (const auto* box : w.findChildren<QLineEdit*>()) {
            QVERIFY2(metrics.height() <= box->height(), qPrintable(box->objectName()));
        }
    }

    // However large the desktop's font, the window fits the screen (frame
    // included): it takes a smaller font where it must.
    void windowFitsTheScreen_data() {
        QTest::addColumn<qreal>("points");
        QTest::newRow("14 pt") << 14.0;
        QTest::newRow("24 pt") << 24.0;
    }
    void windowFitsTheScreen() {
        QFETCH(qreal, points);
        MainWindow& w = shownWindowAtFont(points);
        const QSize room = w.screen()->availableGeometry().size();
        // Where even the standard font's window is too large (a small
        // panel), the font stops there: a smaller one would not shrink it.
        const qreal shown = layout::pointSize(w.font());
        QVERIFY2(shown >= layout::kDefaultPointSize, qPrintable(QString::number(shown)));
        QVERIFY2((w.frameGeometry().width() <= room.width() &&
                  w.frameGeometry().height() <= room.height()) ||
                     shown == layout::kDefaultPointSize,
                 qPrintable(QStringLiteral("%1 x %2").arg(w.width()).arg(w.height())));
        if (room.height() >= 700) {  // no smaller than need be
            QVERIFY(w.width() * 9 >= 421 * std::min(points, 12.0) - 9);
        }
    }
};

QTEST_MAIN(DesktopTest)
#include "desktop_test.moc"
