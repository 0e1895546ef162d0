#pragma once

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>
#include <array>
#include <memory>
#include <vector>

#include "editor/find_replace.hpp"
#include "editor/schema_editor.hpp"
#include "ui/find_dialog.hpp"
#include "ui/language_page.hpp"
#include "ui/qt_controls.hpp"
#include "ui/spell_check.hpp"
#include "ui/tab_container.hpp"
#include "ui/window_layout.hpp"

namespace lorekeep::ui {

// The editor's one window: the schema's folder and name, the font, the file
// buttons and the eight pages, every control at its fixed place and named as
// its control (txtLoc, cmdSave, rtbText(5), ...). Each handled event goes,
// with its index, to the window's behaviour in the core.
class MainWindow : public QWidget {
    Q_OBJECT

  public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // Opens a schema file by its path, as the load button would load it:
    // from the command line, a file manager or a drop onto the window.
    void openFile(const QString& path);

    // Shows a language's page with the caret at `position` of its title or
    // body (as lorekeep-tool's findings count), in sight and focused.
    void goTo(Language language, bool title, std::size_t position);

    // Writes the schema file schemaFolder/schemaName.sch from the window.
    void save(const QString& schemaName, const QString& schemaFolder);

    // Reads the schema file schemaFolder/schemaName.sch into the window.
    void load(const QString& schemaName, const QString& schemaFolder);

    // Replaces the message boxes and the file dialog (tests answer them
    // instead of a user). Also starts the window's marker state afresh.
    void setDialogs(editor::MessageBox* messages, editor::FileDialog* dialog);

    // Starts checking the spelling of the titles and bodies: the
    // dictionaries open in the background, then misspelt words are
    // underlined. Without this call, nothing is checked.
    void startSpelling();
    // Null until startSpelling.
    SpellingService* spelling() const { return m_spelling; }

    // Opens the Find and Replace dialog, made on first use; the selection of
    // the box with the caret, if on one line, becomes what it finds.
    FindDialog* openFindDialog();
    // Null until first opened.
    FindDialog* findDialog() const { return m_findDialog; }

    // The rtbText boxes: a language's body editor and its preview pane.
    PlainTextBox* bodyEditor(Language language) const;
    RichTextBox* previewPane(Language language) const;

    QGroupBox* schemaFrame;
    QLabel* folderLabel;
    QLineEdit* folderBox;
    QPushButton* locationButton;
    QLabel* nameLabel;
    QLineEdit* nameBox;
    QLabel* fontLabel;
    QComboBox* fontBox;
    QPushButton* saveButton;
    QPushButton* loadButton;
    TabContainer* tabs;
    std::array<LanguagePage*, kLanguageCount> languagePages{};
    std::array<PreviewPage*, kLanguageCount> previewPages{};

  protected:
    // Keeps a control without a tooltip of its own from showing the tooltip
    // of the container it stands in.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // Takes a drop of one schema file anywhere on the window and refuses any
    // other drop of files, so that no text box ever types a file's address.
    bool filterFileDrop(QEvent* event);
    // The grid for the desktop's font, or for a smaller font that the window
    // then takes, so that the window fits the screen.
    layout::Grid gridThatFits();
    void createControls(const layout::Grid& grid);
    void silenceInheritedTooltips();
    void setFocusOrder();
    void connectEvents();
    editor::WindowControls controlInterfaces();

    // Interface adaptors over the widgets above, and the window's behaviour.
    std::vector<std::unique_ptr<editor::TextBox>> m_textBoxes;
    std::vector<std::unique_ptr<editor::Button>> m_buttons;
    std::unique_ptr<editor::FontBox> m_fontBox;
    std::unique_ptr<QtMessageBox> m_messageBox;
    std::unique_ptr<QtFileDialog> m_fileDialog;
    SystemClock m_clock;
    editor::WindowControls m_controls;
    std::unique_ptr<editor::SchemaEditor> m_editor;
    std::unique_ptr<TabPagesControl> m_pages;
    std::unique_ptr<editor::FindReplace> m_find;
    FindDialog* m_findDialog = nullptr;
    SpellingService* m_spelling = nullptr;
};

}  // namespace lorekeep::ui
