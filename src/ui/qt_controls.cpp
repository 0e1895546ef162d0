#include "ui/qt_controls.hpp"

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

void QtMessageBox::ShowMessage(TextView text, TextView title) {
    QMessageBox box(QMessageBox::NoIcon, ToQString(title), ToQString(text), QMessageBox::Ok,
                    parent_);
    box.exec();
}

}  // namespace lorekeep::ui
