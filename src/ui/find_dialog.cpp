#include "ui/find_dialog.hpp"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include "editor/texts.hpp"
#include "ui/qt_text.hpp"

namespace lorekeep::ui {

namespace {

template <class Control>
Control* named(Control* control, const char* objectName, std::u16string_view accessibleName) {
    control->setObjectName(QString::fromLatin1(objectName));
    control->setAccessibleName(toQString(accessibleName));
    return control;
}

QPushButton* button(std::u16string_view caption, std::u16string_view name, const char* objectName,
                    QWidget* parent) {
    return named(new QPushButton(toQString(caption), parent), objectName, name);
}

}  // namespace

FindDialog::FindDialog(editor::FindReplace& find, QWidget* parent) : QDialog(parent), m_find(find) {
    setObjectName(QStringLiteral("frmFind"));
    setWindowTitle(toQString(texts::kFindDialogTitle));
    setModal(false);

    findBox = named(new QLineEdit(this), "txtFind", texts::kFindBox);
    replaceBox = named(new QLineEdit(this), "txtReplaceWith", texts::kReplaceWithBox);
    for (QLineEdit* box : {findBox, replaceBox}) {
        box->setMaxLength(static_cast<int>(kMaxLineLength));
        box->setMinimumWidth(fontMetrics().averageCharWidth() * 32);
    }
    auto* findLabel = new QLabel(toQString(texts::kFindBox) + u':', this);
    auto* replaceLabel = new QLabel(toQString(texts::kReplaceWithBox) + u':', this);
    findLabel->setBuddy(findBox);
    replaceLabel->setBuddy(replaceBox);

    matchCaseBox =
        named(new QCheckBox(toQString(texts::kMatchCase), this), "chkMatchCase", texts::kMatchCase);
    wholeWordsBox = named(new QCheckBox(toQString(texts::kWholeWords), this), "chkWholeWords",
                          texts::kWholeWords);
    skipMarkersBox = named(new QCheckBox(toQString(texts::kSkipMarkers), this), "chkSkipMarkers",
                           texts::kSkipMarkers);
    titlesTooBox =
        named(new QCheckBox(toQString(texts::kTitlesToo), this), "chkTitlesToo", texts::kTitlesToo);
    skipMarkersBox->setChecked(true);
    allLanguagesButton = named(new QRadioButton(toQString(texts::kAllLanguages), this),
                               "optAllLanguages", texts::kAllLanguages);
    thisLanguageButton = named(new QRadioButton(toQString(texts::kThisLanguage), this),
                               "optThisLanguage", texts::kThisLanguage);
    allLanguagesButton->setChecked(true);

    findNextButton = button(texts::kFindNext, texts::kFindNext, "cmdFindNext", this);
    findPreviousButton =
        button(texts::kFindPrevious, texts::kFindPrevious, "cmdFindPrevious", this);
    replaceButton = button(texts::kReplace, texts::kReplace, "cmdReplace", this);
    replaceAllButton = button(texts::kReplaceAllCaption, texts::kReplaceAll, "cmdReplaceAll", this);
    closeButton = button(texts::kClose, texts::kClose, "cmdClose", this);
    // Enter anywhere but on another button finds the next match.
    findNextButton->setDefault(true);

    statusLabel = new QLabel(this);
    statusLabel->setObjectName(QStringLiteral("lblStatus"));
    wrappedLabel = new QLabel(this);
    wrappedLabel->setObjectName(QStringLiteral("lblWrapped"));
    statusLabel->setTextFormat(Qt::PlainText);
    wrappedLabel->setTextFormat(Qt::PlainText);

    auto* fields = new QGridLayout;
    fields->addWidget(findLabel, 0, 0);
    fields->addWidget(findBox, 0, 1, 1, 2);
    fields->addWidget(replaceLabel, 1, 0);
    fields->addWidget(replaceBox, 1, 1, 1, 2);
    fields->addWidget(matchCaseBox, 2, 1);
    fields->addWidget(allLanguagesButton, 2, 2);
    fields->addWidget(wholeWordsBox, 3, 1);
    fields->addWidget(thisLanguageButton, 3, 2);
    fields->addWidget(skipMarkersBox, 4, 1);
    fields->addWidget(titlesTooBox, 5, 1);
    auto* status = new QHBoxLayout;
    status->addWidget(statusLabel, 1);
    status->addWidget(wrappedLabel);
    fields->addLayout(status, 6, 0, 1, 3);
    fields->setRowStretch(7, 1);
    auto* buttons = new QVBoxLayout;
    for (QPushButton* b :
         {findNextButton, findPreviousButton, replaceButton, replaceAllButton, closeButton}) {
        buttons->addWidget(b);
    }
    buttons->addStretch(1);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(fields, 1);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    setTabOrder(findBox, replaceBox);
    setTabOrder(replaceBox, matchCaseBox);
    setTabOrder(matchCaseBox, wholeWordsBox);
    setTabOrder(wholeWordsBox, skipMarkersBox);
    setTabOrder(skipMarkersBox, titlesTooBox);
    setTabOrder(titlesTooBox, allLanguagesButton);
    setTabOrder(allLanguagesButton, thisLanguageButton);
    setTabOrder(thisLanguageButton, findNextButton);
    setTabOrder(findNextButton, findPreviousButton);
    setTabOrder(findPreviousButton, replaceButton);
    setTabOrder(replaceButton, replaceAllButton);
    setTabOrder(replaceAllButton, closeButton);

    connect(findNextButton, &QPushButton::clicked, this, &FindDialog::findNext);
    connect(findPreviousButton, &QPushButton::clicked, this, &FindDialog::findPrevious);
    connect(replaceButton, &QPushButton::clicked, this,
            [this] { showStatus(m_find.replace(request())); });
    connect(replaceAllButton, &QPushButton::clicked, this,
            [this] { showStatus(m_find.replaceAll(request())); });
    connect(closeButton, &QPushButton::clicked, this, &QDialog::close);
    // What was said of the last search no longer holds once it is changed.
    connect(findBox, &QLineEdit::textEdited, this, &FindDialog::clearStatus);
    for (QAbstractButton* option : std::initializer_list<QAbstractButton*>{
             matchCaseBox, wholeWordsBox, skipMarkersBox, titlesTooBox, allLanguagesButton}) {
        connect(option, &QAbstractButton::toggled, this, &FindDialog::clearStatus);
    }
    auto* next = new QShortcut(QKeySequence(Qt::Key_F3), this);
    connect(next, &QShortcut::activated, this, &FindDialog::findNext);
    auto* previous = new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F3), this);
    connect(previous, &QShortcut::activated, this, &FindDialog::findPrevious);
}

void FindDialog::present(const QString& text) {
    if (!text.isEmpty()) {
        findBox->setText(text);
        clearStatus();
    }
    if (!m_placed && parentWidget() != nullptr) {
        // Beside the window, where it hides none of the text it finds, when
        // the screen has room; else where the desktop puts it.
        m_placed = true;
        adjustSize();
        const QRect window = parentWidget()->window()->frameGeometry();
        const QScreen* screen = parentWidget()->screen();
        const QRect besideWindow(window.topRight() + QPoint(1, 0), frameGeometry().size());
        if (screen != nullptr && screen->availableGeometry().contains(besideWindow)) {
            move(besideWindow.topLeft());
        }
    }
    QDialog::show();
    raise();
    activateWindow();
    findBox->setFocus(Qt::ShortcutFocusReason);
    findBox->selectAll();
}

editor::FindRequest FindDialog::request() const {
    editor::FindRequest request;
    request.needle = fromQString(findBox->text());
    request.replacement = fromQString(replaceBox->text());
    request.options.matchCase = matchCaseBox->isChecked();
    request.options.wholeWords = wholeWordsBox->isChecked();
    request.options.skipMarkers = skipMarkersBox->isChecked();
    request.titlesToo = titlesTooBox->isChecked();
    request.allLanguages = allLanguagesButton->isChecked();
    return request;
}

void FindDialog::findNext() {
    showStatus(m_find.findNext(request()));
}

void FindDialog::findPrevious() {
    showStatus(m_find.findPrevious(request()));
}

void FindDialog::findAgain(bool forwards) {
    const editor::FindStatus status =
        forwards ? m_find.findNext(request()) : m_find.findPrevious(request());
    showStatus(status);
    // F3 from the window, the dialog closed: nothing found is heard, as nothing shows it.
    if (!isVisible() && status.message == texts::kNoMatches) {
        QApplication::beep();
    }
}

void FindDialog::showStatus(const editor::FindStatus& status) {
    statusLabel->setText(toQString(status.message));
    wrappedLabel->setText(status.wrapped ? toQString(texts::kSearchWrapped) : QString());
}

void FindDialog::clearStatus() {
    statusLabel->clear();
    wrappedLabel->clear();
}

}  // namespace lorekeep::ui
