#include "ui/main_window.hpp"

#include <QAbstractScrollArea>
#include <QAccessibleWidget>
#include <QDropEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMimeData>
#include <QScreen>
#include <QShortcut>
#include <filesystem>
#include <iostream>

#include "editor/texts.hpp"
#include "schema/schema_document.hpp"
#include "ui/caption_button.hpp"
#include "ui/qt_text.hpp"
#include "ui/window_layout.hpp"

namespace lorekeep::ui {

namespace {

using layout::place;

// Marks the controls that show their own tooltip or none at all.
constexpr const char* kOwnTooltipOnly = "ownTooltipOnly";

// A screen reader takes the window for a window (a frame), not a filler.
QAccessibleInterface* accessibleWindow(const QString&, QObject* object) {
    auto* window = qobject_cast<MainWindow*>(object);
    return window != nullptr ? new QAccessibleWidget(window, QAccessible::Window) : nullptr;
}

QStringList tabCaptions() {
    QStringList captions;
    for (const auto& language : kLanguages) {
        captions << toQString(language.tabCaption);
    }
    for (const auto& language : kLanguages) {
        captions << toQString(language.previewCaption);
    }
    return captions;
}

// The keys of Find and Replace.
const std::array<QKeyCombination, 4> kFindKeys{Qt::CTRL | Qt::Key_F, Qt::CTRL | Qt::Key_H,
                                               QKeyCombination(Qt::Key_F3), Qt::SHIFT | Qt::Key_F3};

bool isFindKey(const QKeyEvent& key) {
    return std::ranges::find(kFindKeys, key.keyCombination()) != kFindKeys.end();
}

}  // namespace

MainWindow::MainWindow(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmMain"));
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(accessibleWindow);
        return true;
    }();
    Q_UNUSED(factoryInstalled);
    setWindowTitle(toQString(texts::kWindowCaption));
    // Laid out for the font the controls will use; the window is created
    // once, so a later change of the desktop's font shows at the next start.
    const layout::Grid grid = gridThatFits();
    setFixedSize(grid.toPixels(layout::kClientArea).size());
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    createControls(grid);
    silenceInheritedTooltips();
    setFocusOrder();
    m_messageBox = std::make_unique<QtMessageBox>(this);
    m_fileDialog = std::make_unique<QtFileDialog>(this);
    m_controls = controlInterfaces();
    m_editor = std::make_unique<editor::SchemaEditor>(m_controls);
    m_find = std::make_unique<editor::FindReplace>(m_controls);
    connectEvents();
    setAcceptDrops(true);
    installEventFilter(this);
    for (QWidget* child : findChildren<QWidget*>()) {
        child->installEventFilter(this);
    }
    folderBox->setFocus(Qt::OtherFocusReason);
}

MainWindow::~MainWindow() {
    // The boxes outlive the window's behaviour by a moment while Qt deletes
    // the children; nothing they say then may reach it.
    for (const Language language : kAllLanguages) {
        bodyEditor(language)->disconnect(this);
        bodyEditor(language)->onCharacterTyped = nullptr;
        previewPane(language)->disconnect(this);
        previewPane(language)->onCharacterTyped = nullptr;
        languagePages[indexOf(language)]->titleBox->disconnect(this);
    }
}

layout::Grid MainWindow::gridThatFits() {
    // Room for the title bar and borders, which the window does not know
    // before it is shown.
    constexpr QSize kDecorations(16, 48);
    layout::Grid grid = layout::Grid::forFont(font());
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) {
        return grid;
    }
    // A window larger than the screen cannot be used: where the desktop's
    // font would make it so, the window takes a font small enough to fit.
    const QSize room = screen->availableGeometry().size() - kDecorations;
    // At the standard font the window has its smallest size: a smaller font
    // would only make it harder to read.
    for (int step = 0; step < 100 && layout::pointSize(font()) > layout::kDefaultPointSize;
         ++step) {
        const QSize needed = grid.toPixels(layout::kClientArea).size();
        if (needed.width() <= room.width() && needed.height() <= room.height()) {
            break;
        }
        QFont smaller = font();
        if (smaller.pointSizeF() > 1) {
            smaller.setPointSizeF(std::max(layout::kDefaultPointSize, smaller.pointSizeF() * 0.95));
        } else if (smaller.pixelSize() > 1) {
            smaller.setPixelSize(std::max(12, smaller.pixelSize() - 1));  // 9 pt at 96 dpi
        } else {
            break;
        }
        setFont(smaller);
        grid = layout::Grid::forFont(font());
    }
    return grid;
}

PlainTextBox* MainWindow::bodyEditor(Language language) const {
    return languagePages[indexOf(language)]->bodyEditor;
}

RichTextBox* MainWindow::previewPane(Language language) const {
    return previewPages[indexOf(language)]->pane;
}

void MainWindow::createControls(const layout::Grid& grid) {
    schemaFrame = place(new QGroupBox(toQString(layout::kFrame1Caption), this), grid,
                        layout::kFrame1, "Frame1");
    folderLabel = place(new QLabel(toQString(layout::kLabel1Caption), schemaFrame), grid,
                        layout::kLabel1, "Label1");
    nameLabel = place(new QLabel(toQString(layout::kLabel2Caption), schemaFrame), grid,
                      layout::kLabel2, "Label2");
    folderBox =
        place(new QLineEdit(schemaFrame), grid, layout::kTxtLoc, "txtLoc", layout::kTxtLocTip);
    locationButton = place(new CaptionButton(toQString(layout::kCmdLocCaption), schemaFrame), grid,
                           layout::kCmdLoc, "cmdLoc");
    nameBox =
        place(new QLineEdit(schemaFrame), grid, layout::kTxtName, "txtName", layout::kTxtNameTip);
    folderLabel->setBuddy(folderBox);
    nameLabel->setBuddy(nameBox);
    folderBox->setAccessibleName(toQString(layout::kTxtLocName));
    nameBox->setAccessibleName(toQString(layout::kTxtNameName));
    // "..." read aloud says nothing; the button is named after what it opens.
    locationButton->setAccessibleName(toQString(texts::kLocationDialogTitle));
    folderBox->setMaxLength(static_cast<int>(kMaxLineLength));
    nameBox->setMaxLength(static_cast<int>(kMaxLineLength));

    fontLabel =
        place(new QLabel(toQString(layout::kLabel4Caption), this), grid, layout::kLabel4, "Label4");
    fontBox = place(new QComboBox(this), grid, layout::kCboFont, "cboFont", layout::kCboFontTip);
    fontLabel->setBuddy(fontBox);
    fontBox->setAccessibleName(toQString(layout::kCboFontName));
    fontBox->setEditable(true);
    fontBox->lineEdit()->setAccessibleName(toQString(layout::kCboFontName));
    // Typed names are saved as typed: never added to the list, never completed.
    fontBox->setInsertPolicy(QComboBox::NoInsert);
    fontBox->setCompleter(nullptr);
    fontBox->lineEdit()->setMaxLength(static_cast<int>(kMaxLineLength));
    for (std::u16string_view font : kFontNames) {
        fontBox->addItem(toQString(font), 0);
    }
    fontBox->setCurrentIndex(-1);
    fontBox->setEditText(toQString(layout::kFontBoxInitialText));

    saveButton = place(new CaptionButton(toQString(layout::kCmdSaveCaption), this), grid,
                       layout::kCmdSave, "cmdSave", layout::kCmdSaveTip);
    loadButton = place(new CaptionButton(toQString(layout::kCmdLoadCaption), this), grid,
                       layout::kCmdLoad, "cmdLoad", layout::kCmdLoadTip);

    tabs = place(new TabContainer(tabCaptions(), layout::kTabsPerRow,
                                  grid.pixels(layout::kTabRowHeight), this),
                 grid, layout::kTabMain, "tabMain", layout::kTabMainTip);
    tabs->strip()->setAccessibleName(toQString(layout::kTabStripName));
    for (int i = 0; i < kLanguageCount; ++i) {
        languagePages[i] = new LanguagePage(i, grid, tabs->pageOffset());
        tabs->addPage(languagePages[i]);
    }
    for (int i = 0; i < kLanguageCount; ++i) {
        previewPages[i] = new PreviewPage(i, grid, tabs->pageOffset());
        tabs->addPage(previewPages[i]);
    }
}

void MainWindow::silenceInheritedTooltips() {
    // The named controls only: the tab container's own parts (its strip and
    // the page area) rightly show the container's tooltip.
    for (QWidget* control : findChildren<QWidget*>()) {
        if (control->objectName().isEmpty() || control == tabs) {
            continue;
        }
        control->setProperty(kOwnTooltipOnly, true);
        if (auto* scrollArea = qobject_cast<QAbstractScrollArea*>(control)) {
            scrollArea->viewport()->setProperty(kOwnTooltipOnly, true);
        }
    }
}

bool MainWindow::filterFileDrop(QEvent* event) {
    auto* drop = static_cast<QDropEvent*>(event);  // drag enter and move events are drops too
    if (!drop->mimeData()->hasUrls()) {
        return false;  // dragged text is the text boxes' business
    }
    const QList<QUrl> urls = drop->mimeData()->urls();
    // The path's own bytes, decoded by the core, which keeps names that are
    // not valid UTF-8 (Qt's decoding would lose them).
    const std::string bytes =
        urls.size() == 1 && urls[0].isLocalFile()
            ? QByteArray::fromPercentEncoding(urls[0].path(QUrl::FullyEncoded).toLatin1())
                  .toStdString()
            : std::string();
    const Text path = fromUtf8(bytes);
    std::error_code error;
    if (!hasSchemaExtension(path) || !std::filesystem::is_regular_file(bytes, error)) {
        drop->ignore();
        return true;
    }
    drop->acceptProposedAction();
    if (event->type() == QEvent::Drop) {
        openFile(toQString(path));
    }
    return true;
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::DragEnter || type == QEvent::DragMove || type == QEvent::Drop) {
        return filterFileDrop(event) || QWidget::eventFilter(watched, event);
    }
    if (type == QEvent::ShortcutOverride && isFindKey(*static_cast<QKeyEvent*>(event))) {
        // The line edits' Emacs keys (Ctrl+F forward, Ctrl+H back) would
        // otherwise take Find and Replace's keys before the window sees them.
        event->ignore();
        return true;
    }
    if (type == QEvent::KeyPress) {
        // Qt's text boxes type the letter of an Alt or Meta chord ("s" for
        // Alt+S); here such a chord is a key, never text.
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->modifiers() & (Qt::AltModifier | Qt::MetaModifier)) != 0 &&
            !key->text().isEmpty() && key->text().front().isPrint()) {
            return true;
        }
    }
    if (type == QEvent::ToolTip && watched->property(kOwnTooltipOnly).toBool()) {
        auto* widget = qobject_cast<QWidget*>(watched);
        auto* area = widget != nullptr ? qobject_cast<QAbstractScrollArea*>(widget->parentWidget())
                                       : nullptr;
        if (area != nullptr && area->viewport() == widget) {
            widget = area;  // a text box's viewport speaks for its box
        }
        if (widget != nullptr && widget->toolTip().isEmpty()) {
            // Accepted, so that it goes no further up to the container.
            event->accept();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void MainWindow::setFocusOrder() {
    std::vector<QWidget*> order{folderBox, tabs->strip()};
    // rtbText(0..7): the four editors, then the four panes.
    for (const Language language : kAllLanguages) {
        order.push_back(bodyEditor(language));
    }
    for (const Language language : kAllLanguages) {
        order.push_back(previewPane(language));
    }
    order.push_back(nameBox);
    const LanguagePage& english = *languagePages[0];
    order.insert(order.end(), {english.leftJustifyButton, english.titleBox, english.centreButton,
                               english.rightJustifyButton, english.colourButton});
    for (int i = 1; i < kLanguageCount; ++i) {
        order.push_back(languagePages[i]->titleBox);
    }
    for (int i = 1; i < kLanguageCount; ++i) {
        const LanguagePage& page = *languagePages[i];
        order.insert(order.end(), {page.colourButton, page.rightJustifyButton, page.centreButton,
                                   page.leftJustifyButton});
    }
    order.insert(order.end(), {fontBox, loadButton, saveButton});
    for (const LanguagePage* page : languagePages) {
        order.insert(order.end(), page->colourBoxes.begin(), page->colourBoxes.end());
    }
    std::array<QWidget*, kLanguageCount> okButtons{};
    for (const LanguageInfo& info : kLanguages) {
        okButtons[info.okButtonFocusPlace] = languagePages[indexOf(info.language)]->okButton;
    }
    order.insert(order.end(), okButtons.begin(), okButtons.end());
    for (const LanguagePage* page : languagePages) {
        order.push_back(page->copyButton);
    }
    order.push_back(locationButton);
    for (std::size_t k = 1; k < order.size(); ++k) {
        setTabOrder(order[k - 1], order[k]);
    }
}

editor::WindowControls MainWindow::controlInterfaces() {
    editor::WindowControls c;
    auto textBox = [&](QLineEdit* edit) {
        m_textBoxes.push_back(std::make_unique<LineEditControl>(edit));
        return m_textBoxes.back().get();
    };
    auto button = [&](QPushButton* b) {
        m_buttons.push_back(std::make_unique<PushButtonControl>(b));
        return m_buttons.back().get();
    };
    for (const Language language : kAllLanguages) {
        const LanguagePage& page = *languagePages[indexOf(language)];
        editor::LanguageControls& controls = c.of(language);
        controls.body = page.bodyEditor;
        controls.preview = previewPane(language);
        controls.previewText = previewPane(language);
        controls.title = textBox(page.titleBox);
        controls.colourButton = button(page.colourButton);
        controls.okButton = button(page.okButton);
        for (int b = 0; b < editor::kColourBoxesPerLanguage; ++b) {
            controls.colourBoxes[b] = textBox(page.colourBoxes[b]);
        }
    }
    c.folderBox = textBox(folderBox);
    c.nameBox = textBox(nameBox);
    m_fontBox = std::make_unique<ComboBoxControl>(fontBox);
    c.fontBox = m_fontBox.get();
    c.messages = m_messageBox.get();
    c.fileDialog = m_fileDialog.get();
    std::array<QLineEdit*, kLanguageCount> titleBoxes{};
    for (int i = 0; i < kLanguageCount; ++i) {
        titleBoxes[i] = languagePages[i]->titleBox;
    }
    m_pages = std::make_unique<TabPagesControl>(tabs, titleBoxes);
    c.pages = m_pages.get();
    c.clock = &m_clock;
    c.diagnostics = &std::cerr;
    return c;
}

void MainWindow::connectEvents() {
    using editor::SchemaEditor;
    for (const Language language : kAllLanguages) {
        const LanguagePage& page = *languagePages[indexOf(language)];
        PlainTextBox* body = page.bodyEditor;
        RichTextBox* pane = previewPane(language);
        // The body's change goes down with the notification; a pane's own
        // changes are no event.
        connect(body, &QPlainTextEdit::textChanged, this, [this, language, body] {
            m_find->textChanged(language, false);
            m_editor->bodyChanged(language, body->takeChange());
        });
        connect(page.titleBox, &QLineEdit::textChanged, this,
                [this, language] { m_find->textChanged(language, true); });
        body->onCharacterTyped = [this, language](int& code) {
            m_editor->characterTyped(language, editor::Box::Body, code);
        };
        pane->onCharacterTyped = [this, language](int& code) {
            m_editor->characterTyped(language, editor::Box::Preview, code);
        };
        auto route = [this, language](QPushButton* button,
                                      void (SchemaEditor::*handler)(Language)) {
            connect(button, &QPushButton::clicked, this,
                    [this, language, handler] { ((*m_editor).*handler)(language); });
        };
        route(page.leftJustifyButton, &SchemaEditor::leftJustifyClicked);
        route(page.centreButton, &SchemaEditor::centreClicked);
        route(page.rightJustifyButton, &SchemaEditor::rightJustifyClicked);
        route(page.colourButton, &SchemaEditor::colourClicked);
        route(page.okButton, &SchemaEditor::okClicked);
        route(page.copyButton, &SchemaEditor::copyClicked);
    }
    connect(locationButton, &QPushButton::clicked, this, [this] { m_editor->locationClicked(); });
    connect(saveButton, &QPushButton::clicked, this, [this] { m_editor->saveClicked(); });
    connect(loadButton, &QPushButton::clicked, this, [this] { m_editor->loadClicked(); });
    // Ctrl+S saves as the save button does; Ctrl+O picks a file to open.
    auto* save = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_S), this);
    connect(save, &QShortcut::activated, this, [this] { m_editor->saveClicked(); });
    auto* open = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_O), this);
    connect(open, &QShortcut::activated, this, [this] { m_editor->openClicked(); });
    // Find and Replace: Ctrl+F or Ctrl+H opens it; F3 and Shift+F3 find
    // again from the window.
    for (auto keys : {kFindKeys[0], kFindKeys[1]}) {
        auto* find = new QShortcut(QKeySequence(keys), this);
        connect(find, &QShortcut::activated, this, &MainWindow::openFindDialog);
    }
    // Before anything was looked for, they open the dialog instead.
    for (const bool forwards : {true, false}) {
        auto* again = new QShortcut(QKeySequence(kFindKeys[forwards ? 2 : 3]), this);
        connect(again, &QShortcut::activated, this, [this, forwards] {
            if (m_findDialog == nullptr || m_findDialog->findBox->text().isEmpty()) {
                openFindDialog();
            } else {
                m_findDialog->findAgain(forwards);
            }
        });
    }
    // Ctrl+Tab and Ctrl+Shift+Tab step through the pages, as in any tabbed window.
    auto* next = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Tab), this);
    connect(next, &QShortcut::activated, tabs, [this] { tabs->cycle(1); });
    for (auto keys : {Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab, Qt::CTRL | Qt::SHIFT | Qt::Key_Tab}) {
        auto* previous = new QShortcut(QKeySequence(keys), this);
        connect(previous, &QShortcut::activated, tabs, [this] { tabs->cycle(-1); });
    }
}

void MainWindow::openFile(const QString& path) {
    // An absolute path keeps every byte of a name that is not UTF-8 (see
    // fromUtf8); only a relative one goes through Qt, which may not.
    m_editor->openFile(
        fromQString(QFileInfo(path).isAbsolute() ? path : QFileInfo(path).absoluteFilePath()));
}

void MainWindow::goTo(Language language, bool title, std::size_t position) {
    tabs->setCurrentIndex(indexOf(language));
    LanguagePage& page = *languagePages[indexOf(language)];
    if (title) {
        page.titleBox->setCursorPosition(
            static_cast<int>(std::min<std::size_t>(position, page.titleBox->text().size())));
        page.titleBox->setFocus(Qt::OtherFocusReason);
    } else {
        page.bodyEditor->setCaretPosition(position);
        page.bodyEditor->centerCursor();
        page.bodyEditor->setFocus(Qt::OtherFocusReason);
    }
}

FindDialog* MainWindow::openFindDialog() {
    if (m_findDialog == nullptr) {
        m_findDialog = new FindDialog(*m_find, this);
        // Alt chords and dropped files as everywhere in the window.
        for (QWidget* child : m_findDialog->findChildren<QWidget*>()) {
            child->installEventFilter(this);
        }
    }
    // A selection of more than one line is no text to find.
    QString selected;
    if (auto* box = dynamic_cast<editor::EditorBox*>(focusWidget())) {
        selected = toQString(box->textBetween(box->caretPosition(), box->selectionEnd()));
    } else if (auto* line = qobject_cast<QLineEdit*>(focusWidget())) {
        selected = line->selectedText();
    }
    constexpr qsizetype kLongestSelectionFound = 1000;
    if (selected.size() > kLongestSelectionFound || selected.contains(u'\r') ||
        selected.contains(u'\n')) {
        selected.clear();
    }
    m_findDialog->present(selected);
    return m_findDialog;
}

void MainWindow::startSpelling() {
    if (m_spelling != nullptr) {
        return;
    }
    m_spelling = new SpellingService(this);
    for (const Language language : kAllLanguages) {
        new BodySpellCheck(bodyEditor(language), language, m_spelling,
                           [this, language](std::size_t start, TextView word, TextView with) {
                               m_editor->replaceWord(language, start, word, with);
                           });
        new TitleSpellCheck(languagePages[indexOf(language)]->titleBox, language, m_spelling);
    }
    m_spelling->start();
}

void MainWindow::save(const QString& schemaName, const QString& schemaFolder) {
    m_editor->save(fromQString(schemaName), fromQString(schemaFolder));
}

void MainWindow::load(const QString& schemaName, const QString& schemaFolder) {
    m_editor->load(fromQString(schemaName), fromQString(schemaFolder));
}

void MainWindow::setDialogs(editor::MessageBox* messages, editor::FileDialog* dialog) {
    m_controls.messages = messages;
    m_controls.fileDialog = dialog;
    m_editor = std::make_unique<editor::SchemaEditor>(m_controls);
}

}  // namespace lorekeep::ui
