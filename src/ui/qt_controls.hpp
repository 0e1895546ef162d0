#pragma once

#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

#include "document/controls.hpp"

// Thin adaptors: the core's control interfaces over real widgets.
namespace lorekeep::ui {

class LineEditControl final : public TextBox {
  public:
    explicit LineEditControl(QLineEdit* edit) : edit_(edit) {}
    Text GetText() const override;
    void SetText(TextView text) override;
    void SetEnabled(bool enabled) override { edit_->setEnabled(enabled); }
    bool IsEnabled() const override { return edit_->isEnabled(); }

  private:
    QLineEdit* edit_;
};

class PushButtonControl final : public Button {
  public:
    explicit PushButtonControl(QPushButton* button) : button_(button) {}
    void SetEnabled(bool enabled) override { button_->setEnabled(enabled); }
    bool IsEnabled() const override { return button_->isEnabled(); }
    void SetBackColour(markup::Rgb colour) override;

  private:
    QPushButton* button_;
};

class ComboBoxControl final : public FontBox {
  public:
    explicit ComboBoxControl(QComboBox* box) : box_(box) {}
    int EntryCount() const override { return box_->count(); }
    Text EntryText(int position) const override;
    void SelectEntry(int position) override;
    Text CurrentText() const override;
    void SetCurrentText(TextView text) override;

  private:
    QComboBox* box_;
};

// The window's one file dialog, shown in its save form.
class QtFileDialog final : public FileDialog {
  public:
    explicit QtFileDialog(QWidget* parent);
    void SetDefaultExtension(TextView extension) override;
    void SetTitle(TextView title) override;
    void SetFilter(TextView description, TextView pattern) override;
    void ShowSave() override;
    Text FileName() const override;
    Text FileTitle() const override;
    void ClearFileName() override { chosen_.clear(); }

    // Made on first use (it is costly to build) and kept for the window's life.
    QFileDialog* dialog();

  private:
    QWidget* parent_;
    QFileDialog* dialog_ = nullptr;
    QString chosen_;
};

// Modal, one OK button, no icon.
class QtMessageBox final : public MessageBox {
  public:
    explicit QtMessageBox(QWidget* parent) : parent_(parent) {}
    void ShowMessage(TextView text, TextView title) override;

  private:
    QWidget* parent_;
};

}  // namespace lorekeep::ui
