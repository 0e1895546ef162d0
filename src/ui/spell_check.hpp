#pragma once

#include <QLineEdit>
#include <QMenu>
#include <QObject>
#include <QTextCharFormat>
#include <QThread>
#include <QTimer>
#include <functional>
#include <memory>

#include "schema/language.hpp"
#include "spelling/dictionaries.hpp"
#include "ui/text_box.hpp"

namespace lorekeep::ui {

// The spelling dictionaries of the four languages. Opening them takes a
// third of a second, so they open on a thread of their own once asked to;
// until then, and for a language without one, nothing is underlined.
class SpellingService : public QObject {
    Q_OBJECT

  public:
    explicit SpellingService(QObject* parent = nullptr);
    ~SpellingService() override;

    // Starts opening the dictionaries; changed() follows when they are open.
    // A language without a dictionary gets one line on stderr.
    void start();
    // Null until the dictionaries are open.
    spelling::Dictionaries* dictionaries() const { return m_dictionaries.get(); }
    // Counts the changes of what is right: the dictionaries opening, a word
    // added or ignored. A check made under another count is stale.
    int generation() const { return m_generation; }

    void addToPersonal(Language language, TextView word);
    void ignoreAll(Language language, TextView word);

    // Puts the suggestions for `word` (chosen ones go to `replace`), "Add to
    // Dictionary" and "Ignore All" above the entries of `menu`.
    void extendMenu(QMenu& menu, Language language, TextView word,
                    const std::function<void(TextView)>& replace);

    // How a misspelt word is drawn: the desktop's spelling underline, in red.
    static QTextCharFormat misspeltFormat();

  signals:
    void changed();

  private:
    QThread* m_loader = nullptr;
    std::unique_ptr<spelling::Dictionaries> m_loaded;  // handed over by the loader
    std::unique_ptr<spelling::Dictionaries> m_dictionaries;
    int m_generation = 0;
};

// Underlines the misspelt words of a body editor. A block is checked when it
// first comes into sight and again only when an edit reaches it, so that a
// body of any length costs only what is shown.
class BodySpellCheck : public QObject {
    Q_OBJECT

  public:
    // `replaceWord(start, word, replacement)` applies a chosen suggestion.
    BodySpellCheck(PlainTextBox* editor, Language language, SpellingService* service,
                   std::function<void(std::size_t, TextView, TextView)> replaceWord);

    // The underlined stretches, as [start, end) positions of the body.
    std::vector<std::pair<std::size_t, std::size_t>> underlined() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Checked;
    void documentChanged(int position, int removed, int added);
    void refresh();
    // The block's misspelt words, checked now if its check is stale.
    const Checked& checkedBlock(const QTextBlock& block);
    void extendMenu(QMenu& menu, QPoint at);

    PlainTextBox* m_editor;
    Language m_language;
    SpellingService* m_service;
    std::function<void(std::size_t, TextView, TextView)> m_replaceWord;
    QTimer m_refresh;
};

// Underlines the misspelt words of a title box.
class TitleSpellCheck : public QObject {
    Q_OBJECT

  public:
    TitleSpellCheck(QLineEdit* box, Language language, SpellingService* service);

    std::vector<std::pair<std::size_t, std::size_t>> underlined() const { return m_underlined; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void refresh();
    // Gives the box the underlines of m_underlined.
    void underline();

    QLineEdit* m_box;
    Language m_language;
    SpellingService* m_service;
    std::vector<std::pair<std::size_t, std::size_t>> m_underlined;
    bool m_underlining = false;  // the input method event is ours
    bool m_composing = false;    // an input method is composing text in the box
};

}  // namespace lorekeep::ui
