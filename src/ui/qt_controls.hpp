#pragma once

#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

#include <array>

#include "editor/controls.hpp"
#include "ui/tab_container.hpp"

// Thin adaptors: the core's control interfaces over real widgets.
namespace lorekeep::ui {

class LineEditControl final : public editor::TextBox {
  public:
    explicit LineEditControl(QLineEdit* edit) : m_edit(edit) {}
    Text text() const override;
    void setText(TextView text) override;
    void setEnabled(bool enabled) override { m_edit->setEnabled(enabled); }
    std::size_t selectionStart() const override;
    std::size_t selectionEnd() const override;
    void select(std::size_t start, std::size_t length) override;
    // One edit that the box's undo takes back on its own.
    void replaceRange(std::size_t start, std::size_t length, TextView text) override;
    void beep() override;
    void giveFocus() override { m_edit->setFocus(Qt::OtherFocusReason); }

  private:
    QLineEdit* m_edit;
};

// The tab strip of the language pages and previews, and the window's caret.
class TabPagesControl final : public editor::Pages {
  public:
    TabPagesControl(TabContainer* tabs, std::array<QLineEdit*, kLanguageCount> titleBoxes)
        : m_tabs(tabs), m_titleBoxes(titleBoxes) {}
    Language shownLanguage() const override;
    bool titleHasCaret() const override;
    void showLanguage(Language language) override { m_tabs->setCurrentIndex(indexOf(language)); }

  private:
    TabContainer* m_tabs;
    std::array<QLineEdit*, kLanguageCount> m_titleBoxes;
};

class PushButtonControl final : public editor::Button {
  public:
    explicit PushButtonControl(QPushButton* button) : m_button(button) {}
    void setEnabled(bool enabled) override { m_button->setEnabled(enabled); }
    void setBackgroundColour(markup::Rgb colour) override;

  private:
    QPushButton* m_button;
};

class ComboBoxControl final : public editor::FontBox {
  public:
    explicit ComboBoxControl(QComboBox* box) : m_box(box) {}
    Text currentText() const override;
    void setCurrentEntry(int position) override;
    void setEditText(TextView text) override;

  private:
    QComboBox* m_box;
};

// The window's one file dialog, in its save form or its open form.
class QtFileDialog final : public editor::FileDialog {
  public:
    explicit QtFileDialog(QWidget* parent) : m_parent(parent) {}
    void setOpenForm(bool open) override;
    void setDefaultSuffix(TextView suffix) override;
    void setTitle(TextView title) override;
    void setFilter(TextView description, TextView pattern) override;
    void exec() override;
    Text chosenPath() const override;
    Text chosenFileName() const override;
    void clearChosenPath() override { m_chosen.clear(); }

  private:
    // Made on first use (it is costly to build) and kept for the window's life.
    QFileDialog* dialog();

    QWidget* m_parent;
    QFileDialog* m_dialog = nullptr;
    QString m_chosen;
};

// Modal, one OK button, no icon.
class QtMessageBox final : public editor::MessageBox {
  public:
    explicit QtMessageBox(QWidget* parent) : m_parent(parent) {}
    void showMessage(TextView text, TextView title) override;

  private:
    QWidget* m_parent;
};

}  // namespace lorekeep::ui
