#include "ui/qt_controls.hpp"

#include <QFileInfo>
#include <QMessageBox>

#include "ui/qt_text.hpp"

namespace lorekeep::ui {

Text LineEditControl::GetText() const {
    return FromQString(edit_->text());
}

void LineEditControl::SetText(TextView text) {
    edit_->setText(ToQString(text));
}

void PushButtonControl::SetBackColour(markup::Rgb colour) {
    QPalette palette = button_->palette();
    palette.setColor(QPalette::Button, QColor(colour.red, colour.green, colour.blue));
    button_->setPalette(palette);
    button_->update();
}

Text ComboBoxControl::EntryText(int position) const {
    return FromQString(box_->itemText(position));
}

void ComboBoxControl::SelectEntry(int position) {
    box_->setCurrentIndex(position);
    box_->setEditText(box_->itemText(position));
}

Text ComboBoxControl::CurrentText() const {
    return FromQString(box_->currentText());
}

void ComboBoxControl::SetCurrentText(TextView text) {
    box_->setCurrentIndex(-1);
    box_->setEditText(ToQString(text));
}

QtFileDialog::QtFileDialog(QWidget* parent) : parent_(parent) {}

QFileDialog* QtFileDialog::dialog() {
    if (dialog_ == nullptr) {
        dialog_ = new QFileDialog(parent_);
        dialog_->setObjectName(QStringLiteral("cd1"));
        dialog_->setAcceptMode(QFileDialog::AcceptSave);
        dialog_->setFileMode(QFileDialog::AnyFile);
        // Choosing an existing file is how a schema is picked for loading
        // too: no question about replacing it.
        dialog_->setOption(QFileDialog::DontConfirmOverwrite);
        // Qt's own dialog everywhere: a desktop's native one may ignore the
        // default extension that completes a typed name.
        dialog_->setOption(QFileDialog::DontUseNativeDialog);
    }
    return dialog_;
}

void QtFileDialog::SetDefaultExtension(TextView extension) {
    dialog()->setDefaultSuffix(ToQString(extension));
}

void QtFileDialog::SetTitle(TextView title) {
    dialog()->setWindowTitle(ToQString(title));
}

void QtFileDialog::SetFilter(TextView description, TextView pattern) {
    // Qt reads the pattern from the parentheses of the description; add it
    // when the description does not carry it.
    QString filter = ToQString(description);
    const QString wildcard = ToQString(pattern);
    if (!filter.contains(wildcard)) {
        filter += QStringLiteral(" (%1)").arg(wildcard);
    }
    dialog()->setNameFilter(filter);
}

void QtFileDialog::ShowSave() {
    QFileDialog* d = dialog();
    d->selectFile(QString());
    if (d->exec() == QDialog::Accepted && !d->selectedFiles().isEmpty()) {
        chosen_ = d->selectedFiles().constFirst();
    }
}

Text QtFileDialog::FileName() const {
    return FromQString(chosen_);
}

Text QtFileDialog::FileTitle() const {
    return FromQString(QFileInfo(chosen_).fileName());
}

void QtMessageBox::ShowMessage(TextView text, TextView title) {
    QMessageBox box(QMessageBox::NoIcon, ToQString(title), ToQString(text), QMessageBox::Ok,
                    parent_);
    box.exec();
}

}  // namespace lorekeep::ui
