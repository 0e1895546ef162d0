#include "ui/spell_check.hpp"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QPointer>
#include <QTextBlock>
#include <QTextBlockUserData>
#include <exception>
#include <iostream>

#include "editor/texts.hpp"
#include "ui/block_text.hpp"
#include "ui/qt_controls.hpp"
#include "ui/qt_text.hpp"

namespace lorekeep::ui {

namespace {

// As many suggestions as a menu shows.
constexpr std::size_t kMostSuggestions = 7;
// A title box shows one line: a title longer than this (it may hold
// millions of characters) is checked this far, so that a key costs the same.
constexpr std::size_t kCheckedTitleLength = 65536;

using Stretches = std::vector<std::pair<std::size_t, std::size_t>>;

}  // namespace

SpellingService::SpellingService(QObject* parent) : QObject(parent) {}

SpellingService::~SpellingService() {
    if (m_loader != nullptr) {
        m_loader->wait();
    }
}

void SpellingService::start() {
    if (m_loader != nullptr) {
        return;
    }
    m_loader = QThread::create([this] {
        try {
            m_loaded = std::make_unique<spelling::Dictionaries>();
        } catch (const std::exception& error) {
            // Without dictionaries the window simply underlines nothing.
            std::cerr << "lorekeep: spelling is off: " << error.what() << "\n";
        }
    });
    m_loader->setParent(this);
    connect(m_loader, &QThread::finished, this, [this] {
        m_dictionaries = std::move(m_loaded);
        if (m_dictionaries == nullptr) {
            return;
        }
        for (const Language language : kAllLanguages) {
            if (!m_dictionaries->has(language)) {
                std::cerr << "lorekeep: " << m_dictionaries->missingLine(language) << "\n";
            }
        }
        ++m_generation;
        emit changed();
    });
    m_loader->start(QThread::LowPriority);
}

void SpellingService::addToPersonal(Language language, TextView word) {
    if (m_dictionaries != nullptr) {
        m_dictionaries->addToPersonal(language, word);
        ++m_generation;
        emit changed();
    }
}

void SpellingService::ignoreAll(Language language, TextView word) {
    if (m_dictionaries != nullptr) {
        m_dictionaries->ignoreAll(language, word);
        ++m_generation;
        emit changed();
    }
}

void SpellingService::extendMenu(QMenu& menu, Language language, TextView word,
                                 const std::function<void(TextView)>& replace) {
    if (m_dictionaries == nullptr || word.empty()) {
        return;
    }
    QAction* first = menu.actions().value(0);
    for (const Text& suggestion : m_dictionaries->suggestions(language, word, kMostSuggestions)) {
        auto* action = new QAction(toQString(suggestion), &menu);
        connect(action, &QAction::triggered, this, [replace, suggestion] { replace(suggestion); });
        menu.insertAction(first, action);
    }
    const Text misspelt(word);
    auto* add = new QAction(toQString(texts::kAddToDictionary), &menu);
    connect(add, &QAction::triggered, this,
            [this, language, misspelt] { addToPersonal(language, misspelt); });
    auto* ignore = new QAction(toQString(texts::kIgnoreAll), &menu);
    connect(ignore, &QAction::triggered, this,
            [this, language, misspelt] { ignoreAll(language, misspelt); });
    menu.insertActions(first, {add, ignore});
    menu.insertSeparator(first);
}

QTextCharFormat SpellingService::misspeltFormat() {
    QTextCharFormat format;
    format.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
    format.setUnderlineColor(Qt::red);
    return format;
}

// What a block's last check found, kept with the block.
struct BodySpellCheck::Checked : QTextBlockUserData {
    int generation = -1;                       // of the service, when checked
    bool stale = true;                         // an edit has reached the block since
    std::vector<spelling::WordSpan> misspelt;  // from the block's start
};

BodySpellCheck::BodySpellCheck(PlainTextBox* editor, Language language, SpellingService* service,
                               std::function<void(std::size_t, TextView, TextView)> replaceWord)
    : QObject(editor),
      m_editor(editor),
      m_language(language),
      m_service(service),
      m_replaceWord(std::move(replaceWord)) {
    // A scroll, a resize, a page shown or the dictionaries changed: checked
    // once the change has been laid out.
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(0);
    connect(&m_refresh, &QTimer::timeout, this, &BodySpellCheck::refresh);
    auto later = [this] { m_refresh.start(); };
    connect(editor->document(), &QTextDocument::contentsChange, this,
            &BodySpellCheck::documentChanged);
    // An edit's underlines are set at once, laid out with it, so that the
    // edit is painted once, underlines and all.
    connect(editor, &QPlainTextEdit::textChanged, this, [this] {
        m_refresh.stop();
        refresh();
    });
    // A scroll, however made (the scroll bar's own signal stays silent when
    // the caret moves the view).
    connect(editor, &QPlainTextEdit::updateRequest, this, [this](const QRect&, int dy) {
        if (dy != 0) {
            m_refresh.start();
        }
    });
    connect(service, &SpellingService::changed, this, later);
    editor->installEventFilter(this);
    editor->extendContextMenu = [this](QMenu& menu, QPoint at) { extendMenu(menu, at); };
    later();
}

bool BodySpellCheck::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show || event->type() == QEvent::Resize) {
        m_refresh.start();
    }
    return QObject::eventFilter(watched, event);
}

void BodySpellCheck::documentChanged(int position, int removed, int added) {
    Q_UNUSED(removed);
    // The blocks whose words an edit can change: those within reach of it.
    const QTextDocument& document = *m_editor->document();
    const auto reach = static_cast<int>(spelling::kWordContext);
    const int last = position + added + reach;
    for (QTextBlock block = document.findBlock(std::max(0, position - reach));
         block.isValid() && block.position() <= last; block = block.next()) {
        if (auto* checked = static_cast<Checked*>(block.userData())) {
            checked->stale = true;
        }
    }
}

const BodySpellCheck::Checked& BodySpellCheck::checkedBlock(const QTextBlock& block) {
    auto* checked = static_cast<Checked*>(block.userData());
    if (checked == nullptr) {
        checked = new Checked;
        QTextBlock(block).setUserData(checked);  // the document owns it
    }
    if (!checked->stale && checked->generation == m_service->generation()) {
        return *checked;
    }
    // The block's characters (its end stands for one) and enough around them.
    const QTextDocument& document = *m_editor->document();
    const auto start = static_cast<std::size_t>(block.position());
    const std::size_t end = std::min(documentLength(document), start + block.length());
    const std::size_t first = start - std::min(start, spelling::kWordContext);
    const Text text = textBetween(document, first,
                                  std::min(documentLength(document), end + spelling::kWordContext));
    checked->misspelt.clear();
    if (spelling::Dictionaries* dictionaries = m_service->dictionaries()) {
        for (spelling::WordSpan word :
             dictionaries->misspelt(m_language, text, start - first, end - first)) {
            word.start -= start - first;
            checked->misspelt.push_back(word);
        }
    }
    checked->stale = false;
    checked->generation = m_service->generation();
    return *checked;
}

void BodySpellCheck::refresh() {
    if (!m_editor->isVisible()) {
        return;  // checked when it comes into sight
    }
    QList<QTextEdit::ExtraSelection> underlines;
    if (m_service->dictionaries() != nullptr) {
        const QTextCharFormat format = SpellingService::misspeltFormat();
        for (const QTextBlock& block : m_editor->visibleBlocks()) {
            for (const spelling::WordSpan& word : checkedBlock(block).misspelt) {
                QTextCursor cursor(m_editor->document());
                cursor.setPosition(block.position() + static_cast<int>(word.start));
                cursor.setPosition(cursor.position() + static_cast<int>(word.length),
                                   QTextCursor::KeepAnchor);
                underlines.append({cursor, format});
            }
        }
    }
    // Set only when they differ: setting them repaints the editor.
    const QList<QTextEdit::ExtraSelection> shown = m_editor->extraSelections();
    bool same = shown.size() == underlines.size();
    for (qsizetype k = 0; same && k < shown.size(); ++k) {
        same = shown[k].cursor.selectionStart() == underlines[k].cursor.selectionStart() &&
               shown[k].cursor.selectionEnd() == underlines[k].cursor.selectionEnd();
    }
    if (!same) {
        m_editor->setExtraSelections(underlines);
    }
}

Stretches BodySpellCheck::underlined() const {
    Stretches stretches;
    for (const QTextEdit::ExtraSelection& selection : m_editor->extraSelections()) {
        stretches.emplace_back(selection.cursor.selectionStart(), selection.cursor.selectionEnd());
    }
    return stretches;
}

void BodySpellCheck::extendMenu(QMenu& menu, QPoint at) {
    if (m_service->dictionaries() == nullptr) {
        return;
    }
    const QTextCursor cursor = m_editor->cursorForPosition(at);
    const QTextBlock block = cursor.block();
    const auto position = static_cast<std::size_t>(cursor.position());
    const auto blockStart = static_cast<std::size_t>(block.position());
    for (const spelling::WordSpan& word : checkedBlock(block).misspelt) {
        const std::size_t start = blockStart + word.start;
        if (start <= position && position <= start + word.length) {
            const Text misspelt = m_editor->textBetween(start, start + word.length);
            m_service->extendMenu(menu, m_language, misspelt,
                                  [this, start, misspelt](TextView replacement) {
                                      m_replaceWord(start, misspelt, replacement);
                                  });
            return;
        }
    }
}

TitleSpellCheck::TitleSpellCheck(QLineEdit* box, Language language, SpellingService* service)
    : QObject(box), m_box(box), m_language(language), m_service(service) {
    connect(box, &QLineEdit::textChanged, this, &TitleSpellCheck::refresh);
    connect(service, &SpellingService::changed, this, &TitleSpellCheck::refresh);
    box->installEventFilter(this);
    refresh();
}

void TitleSpellCheck::refresh() {
    Stretches misspelt;
    spelling::Dictionaries* dictionaries = m_service->dictionaries();
    const Text text = fromQString(
        m_box->text().left(static_cast<qsizetype>(kCheckedTitleLength + spelling::kWordContext)));
    const std::vector<spelling::WordSpan> words =
        dictionaries != nullptr ? dictionaries->misspelt(m_language, text, 0, kCheckedTitleLength)
                                : std::vector<spelling::WordSpan>();
    for (const spelling::WordSpan& word : words) {
        misspelt.emplace_back(word.start, word.start + word.length);
    }
    m_underlined = misspelt;
    underline();
}

void TitleSpellCheck::underline() {
    // Never while an input method composes: the box would take the event
    // for the end of the composition.
    if (m_composing) {
        return;
    }
    // A line box takes formats for its text only as an input method gives
    // them: an event that commits nothing and carries only the formats,
    // placed from the caret. Each event of a real input method replaces
    // them, so they are given again after each.
    QList<QInputMethodEvent::Attribute> formats;
    const int caret = m_box->cursorPosition();
    for (const auto& [start, end] : m_underlined) {
        formats.append({QInputMethodEvent::TextFormat, static_cast<int>(start) - caret,
                        static_cast<int>(end - start), SpellingService::misspeltFormat()});
    }
    QInputMethodEvent event(QString(), formats);
    m_underlining = true;
    QCoreApplication::sendEvent(m_box, &event);
    m_underlining = false;
}

bool TitleSpellCheck::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::InputMethod && !m_underlining) {
        m_composing = !static_cast<QInputMethodEvent*>(event)->preeditString().isEmpty();
        QTimer::singleShot(0, this, &TitleSpellCheck::underline);
    }
    if (event->type() != QEvent::ContextMenu || m_service->dictionaries() == nullptr) {
        return QObject::eventFilter(watched, event);
    }
    auto* request = static_cast<QContextMenuEvent*>(event);
    const auto position = static_cast<std::size_t>(request->reason() == QContextMenuEvent::Keyboard
                                                       ? m_box->cursorPosition()
                                                       : m_box->cursorPositionAt(request->pos()));
    QPointer<QMenu> menu = m_box->createStandardContextMenu();
    for (const auto& [start, end] : m_underlined) {
        if (start <= position && position <= end) {
            const Text word = fromQString(m_box->text().mid(static_cast<qsizetype>(start),
                                                            static_cast<qsizetype>(end - start)));
            m_service->extendMenu(*menu, m_language, word, [this, start, word](TextView with) {
                LineEditControl box(m_box);
                editor::replaceStretch(box, start, word, with,
                                       static_cast<std::size_t>(m_box->maxLength()));
            });
            break;
        }
    }
    menu->exec(
        request->reason() == QContextMenuEvent::Keyboard
            ? m_box->mapToGlobal(m_box->inputMethodQuery(Qt::ImCursorRectangle).toRect().center())
            : request->globalPos());
    delete menu;  // unless the box, its parent, went while it was open
    return true;
}

}  // namespace lorekeep::ui
