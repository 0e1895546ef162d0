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

#include "document/date_stamp.hpp"
#include "document/window_commands.hpp"
#include "ui/qt_controls.hpp"
#include "ui/rich_text_box.hpp"
#include "ui/tab_container.hpp"

namespace lorekeep::ui {

// The editor's one window: every control at its fixed place, the control
// arrays by their names, and each handled event routed with its index to the
// window's behaviour in the core.
class frmMain : public QWidget {
    Q_OBJECT

  public:
    explicit frmMain(QWidget* parent = nullptr);
    ~frmMain() override;

    // Returns the negation of Data.
    bool Toggle(bool Data) const { return lorekeep::Toggle(Data); }

    // Writes the schema file folder/name.sch from the window's contents.
    void Save(const QString& SchemaName, const QString& filename);

    // Reads the schema file folder/name.sch into the window.
    void Load(const QString& SchemaName, const QString& filename);

    // Replaces the message boxes and the file dialog (tests answer them
    // instead of a user). Also starts the window's command state afresh.
    void setDialogs(MessageBox* messages, FileDialog* dialog);

    // The window's behaviour, for tests that look at its state.
    WindowCommands& commands() { return *commands_; }

    // Controls, by the window's own names.
    QGroupBox* Frame1;
    QLabel* Label1;
    QLabel* Label2;
    QLabel* Label4;
    QLineEdit* txtLoc;
    QLineEdit* txtName;
    QPushButton* cmdLoc;
    QComboBox* cboFont;
    QPushButton* cmdSave;
    QPushButton* cmdLoad;
    TabContainer* tabMain;

    std::array<RichTextBox*, kRichTextBoxCount> rtbText{};
    std::array<QLineEdit*, kLanguageCount> txtTitle{};
    std::array<QPushButton*, kLanguageCount> cmdLeftJus{};
    std::array<QPushButton*, kLanguageCount> cmdCent{};
    std::array<QPushButton*, kLanguageCount> cmdRightJus{};
    std::array<QPushButton*, kLanguageCount> cmdColor{};
    std::array<QPushButton*, kLanguageCount> cmdOK{};
    std::array<QPushButton*, kLanguageCount> cmdCopy{};
    std::array<QLineEdit*, kLanguageCount * kColourBoxesPerLanguage> txtColor{};
    std::array<QLabel*, kLanguageCount> Label3{};
    std::array<QLabel*, kLanguageCount * kColourBoxesPerLanguage> Label5{};

  protected:
    // Keeps a control without a tooltip of its own from showing the tooltip
    // of the container it stands in.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void CreateControls();
    void SilenceInheritedTooltips();
    void CreateLanguagePage(int i);
    void CreatePreviewPage(int i);
    void SetFocusOrder();
    void ConnectEvents();
    WindowControls ControlInterfaces();

    // Interface adaptors over the widgets above, and the window's behaviour.
    std::vector<std::unique_ptr<TextBox>> textBoxes_;
    std::vector<std::unique_ptr<Button>> buttons_;
    std::unique_ptr<FontBox> fontBox_;
    std::unique_ptr<QtMessageBox> messageBox_;
    std::unique_ptr<QtFileDialog> cd1_;
    SystemClock clock_;
    WindowControls controls_;
    std::unique_ptr<WindowCommands> commands_;
};

}  // namespace lorekeep::ui
