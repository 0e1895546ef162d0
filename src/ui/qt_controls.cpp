#include "ui/qt_controls.hpp"

#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>

#include "ui/qt_text.hpp"

namespace lorekeep::ui {

Text LineEditControl::text() const {
    return fromQString(m_edit->text());
}

void LineEditControl::setText(TextView text) {
    m_edit->setText(toQString(text));
}

std::size_t LineEditControl::selectionStart() const {
    return static_cast<std::size_t>(m_edit->hasSelectedText() ? m_edit->selectionStart()
                                                              : m_edit->cursorPosition());
}

std::size_t LineEditControl::selectionEnd() const {
    return static_cast<std::size_t>(m_edit->hasSelectedText() ? m_edit->selectionEnd()
                                                              : m_edit->cursorPosition());
}

void LineEditControl::select(std::size_t start, std::size_t length) {
    m_edit->setSelection(static_cast<int>(start), static_cast<int>(length));
}

void LineEditControl::replaceRange(std::size_t start, std::size_t length, TextView text) {
    // A move of the cursor ends the box's current undo step; without one, an
    // insertion with nothing selected would join the typing before it.
    m_edit->setCursorPosition(0);
    m_edit->setCursorPosition(static_cast<int>(m_edit->text().size()));
    // Through the selection, so that the box's undo takes it back as one edit.
    m_edit->setSelection(static_cast<int>(start), static_cast<int>(length));
    m_edit->insert(toQString(text));
}

void LineEditControl::beep() {
    QApplication::beep();
}

Language TabPagesControl::shownLanguage() const {
    return kAllLanguages[static_cast<std::size_t>(m_tabs->currentIndex() % kLanguageCount)];
}

bool TabPagesControl::titleHasCaret() const {
    const QWidget* focus = m_tabs->window()->focusWidget();
    return focus != nullptr && focus == m_titleBoxes[indexOf(shownLanguage())];
}

void PushButtonControl::setBackgroundColour(markup::Rgb colour) {
    QPalette palette = m_button->palette();
    palette.setColor(QPalette::Button, QColor(colour.red, colour.green, colour.blue));
    m_button->setPalette(palette);
    m_button->update();
}

Text ComboBoxControl::currentText() const {
    return fromQString(m_box->currentText());
}

void ComboBoxControl::setCurrentEntry(int position) {
    m_box->setCurrentIndex(position);
    m_box->setEditText(m_box->itemText(position));
}

void ComboBoxControl::setEditText(TextView text) {
    m_box->setCurrentIndex(-1);
    m_box->setEditText(toQString(text));
}

QFileDialog* QtFileDialog::dialog() {
    if (m_dialog == nullptr) {
        m_dialog = new QFileDialog(m_parent);
        m_dialog->setObjectName(QStringLiteral("cd1"));
        m_dialog->setAcceptMode(QFileDialog::AcceptSave);
        m_dialog->setFileMode(QFileDialog::AnyFile);
        // Choosing an existing file is how a schema is picked for loading
        // too: no question about replacing it.
        m_dialog->setOption(QFileDialog::DontConfirmOverwrite);
        // Qt's own dialog everywhere: a desktop's native one may ignore the
        // default extension that completes a typed name.
        m_dialog->setOption(QFileDialog::DontUseNativeDialog);
    }
    return m_dialog;
}

void QtFileDialog::setOpenForm(bool open) {
    QFileDialog* d = dialog();
    d->setAcceptMode(open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    d->setFileMode(open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
}

void QtFileDialog::setDefaultSuffix(TextView suffix) {
    dialog()->setDefaultSuffix(toQString(suffix));
}

void QtFileDialog::setTitle(TextView title) {
    dialog()->setWindowTitle(toQString(title));
}

void QtFileDialog::setFilter(TextView description, TextView pattern) {
    // Qt reads the pattern from the parentheses of the description; add it
    // when the description does not carry it.
    QString filter = toQString(description);
    const QString wildcard = toQString(pattern);
    if (!filter.contains(wildcard)) {
        filter += QStringLiteral(" (%1)").arg(wildcard);
    }
    dialog()->setNameFilter(filter);
}

void QtFileDialog::exec() {
    QFileDialog* d = dialog();
    d->selectFile(QString());
    if (d->exec() == QDialog::Accepted && !d->selectedFiles().isEmpty()) {
        m_chosen = d->selectedFiles().constFirst();
    }
}

Text QtFileDialog::chosenPath() const {
    return fromQString(m_chosen);
}

Text QtFileDialog::chosenFileName() const {
    return fromQString(QFileInfo(m_chosen).fileName());
}

void QtMessageBox::showMessage(TextView text, TextView title) {
    QMessageBox box(QMessageBox::NoIcon, toQString(title), toQString(text), QMessageBox::Ok,
                    m_parent);
    box.exec();
}

}  // namespace lorekeep::ui
