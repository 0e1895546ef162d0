#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "editor/find_replace.hpp"

namespace lorekeep::ui {

// The window's Find and Replace dialog: non-modal, so that the user can
// edit between searches. Each command goes to `find`; the dialog shows what
// it says.
class FindDialog : public QDialog {
    Q_OBJECT

  public:
    FindDialog(editor::FindReplace& find, QWidget* parent);

    // Shows the dialog, raised, with the Find box focused and its text
    // selected; a non-empty `text` takes the box's place first.
    void present(const QString& text);

    editor::FindRequest request() const;

    void findNext();
    void findPrevious();
    // F3 or Shift+F3 from the window, the dialog open or not.
    void findAgain(bool forwards);

    QLineEdit* findBox;
    QLineEdit* replaceBox;
    QCheckBox* matchCaseBox;
    QCheckBox* wholeWordsBox;
    QCheckBox* skipMarkersBox;
    QCheckBox* titlesTooBox;
    QRadioButton* allLanguagesButton;
    QRadioButton* thisLanguageButton;
    QPushButton* findNextButton;
    QPushButton* findPreviousButton;
    QPushButton* replaceButton;
    QPushButton* replaceAllButton;
    QPushButton* closeButton;
    QLabel* statusLabel;   // "3 of 12", "No matches", ...
    QLabel* wrappedLabel;  // "Search wrapped", or nothing

  private:
    void showStatus(const editor::FindStatus& status);
    void clearStatus();

    editor::FindReplace& m_find;
    bool m_placed = false;  // placed on its first showing, then left where the user puts it
};

}  // namespace lorekeep::ui
