// Typing and loading in the real window (Qt offscreen, window shown), against
// what the toolkit's own plain-text editor costs for the same text:
// - a character typed at the start, in the middle and at the end of a long
//   marked-up body, timed from the key event to the finished preview, all
//   inside the event (x11_bench measures the same through a real display);
// - the same keystroke into a bare QPlainTextEdit holding the same text;
// - a keystroke with spelling on and off, until the underlines are set;
// - four 4,000,000-character bodies loaded from a schema file, against four
//   setPlainText calls on bare editors, with the peak memory of each;
// - pasting a body of plain words, of words with markers, one without a
//   space and one made only of markers;
// - Find Next from the far end of a 16,000,000-character body, and Replace
//   All of 100,000 matches in a 4,000,000-character one.
#include <benchmark/benchmark.h>

#include <malloc.h>
#include <QApplication>
#include <QClipboard>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTemporaryDir>

#include <array>
#include <fstream>
#include <memory>

#include "bench_bodies.hpp"
#include "markup/markers.hpp"
#include "processes.hpp"
#include "schema/schema_writer.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

namespace {

using lorekeep::Text;
using lorekeep::bench::statusMegabytes;
using lorekeep::ui::MainWindow;
using lorekeep::ui::toQString;

enum Place { kAtEnd, kInMiddle, kAtStart };

std::size_t placeIn(std::size_t length, int64_t place) {
    return place == kAtEnd ? length : place == kInMiddle ? length / 2 : 0;
}

void type(QWidget* target, int key, const QString& text) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &release);
}

// One keystroke typed and taken back per iteration; only the typing is timed.
template <typename Box>
void typeAndTakeBack(benchmark::State& state, Box* box, std::size_t at) {
    QTextCursor cursor = box->textCursor();
    cursor.setPosition(static_cast<int>(at));
    box->setTextCursor(cursor);
    QApplication::processEvents();
    for (auto _ : state) {
        type(box, Qt::Key_X, QStringLiteral("x"));
        state.PauseTiming();
        type(box, Qt::Key_Backspace, QString());
        state.ResumeTiming();
    }
}

// Heap in use, in MB: what the program holds, whatever the allocator keeps.
double heapMegabytes() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / (1024.0 * 1024.0);
}

void resetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

void BM_KeystrokeToPreview(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    MainWindow window;
    window.show();
    auto* editor = window.bodyEditor(lorekeep::Language(0));
    editor->replaceText(lorekeep::bench::markedUpBody(length));
    // The preview looked at once, as a modder does, before going on typing.
    window.tabs->setCurrentIndex(4);
    QApplication::processEvents();
    window.tabs->setCurrentIndex(0);
    editor->setFocus();
    typeAndTakeBack(state, editor, placeIn(length, state.range(1)));
    state.counters["preview_chars"] = static_cast<double>(
        window.previewPane(lorekeep::Language(0))->document()->characterCount() - 1);
}

// Opens the window's dictionaries and waits until they are open.
void startSpelling(MainWindow& window) {
    window.startSpelling();
    while (window.spelling()->dictionaries() == nullptr) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
}

// A keystroke with spelling on or off: timed from the key event until the
// window has nothing left to do (the underlines are set a moment after the
// key, once the edit is laid out).
void BM_KeystrokeSpelling(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    MainWindow window;
    window.show();
    if (state.range(2) != 0) {
        startSpelling(window);
    }
    auto* editor = window.bodyEditor(lorekeep::Language(0));
    editor->replaceText(lorekeep::bench::markedUpBody(length));
    editor->setFocus();
    QTextCursor cursor = editor->textCursor();
    cursor.setPosition(static_cast<int>(placeIn(length, state.range(1))));
    editor->setTextCursor(cursor);
    editor->ensureCursorVisible();
    QApplication::processEvents();
    for (auto _ : state) {
        type(editor, Qt::Key_X, QStringLiteral("x"));
        QApplication::processEvents();
        state.PauseTiming();
        type(editor, Qt::Key_Backspace, QString());
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["underlined"] = static_cast<double>(editor->extraSelections().size());
}

// The toolkit's own editor with the same text, as setPlainText leaves it.
void BM_BarePlainTextEditKeystroke(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    QPlainTextEdit bare;
    bare.resize(600, 400);
    bare.show();
    bare.setPlainText(toQString(lorekeep::bench::markedUpBody(length)));
    bare.setFocus();
    typeAndTakeBack(state, &bare, placeIn(length, state.range(1)));
}

// The four bodies' schema file, written once.
const QString& fourBodiesFile(std::size_t length) {
    static QTemporaryDir folder;
    static const QString path = [&] {
        lorekeep::SchemaDocument document;
        for (auto& entry : document.entries) {
            entry.body = lorekeep::bench::markedUpBody(length);
        }
        document.font = u"Papyrus14";
        const std::string bytes = lorekeep::composeSchemaBytes(document, {2005, 3, 14, 14, 5, 9});
        const QString file = folder.filePath(QStringLiteral("four.sch"));
        std::ofstream(file.toStdString(), std::ios::binary) << bytes;
        return file;
    }();
    return path;
}

// The Load button on a file of four long bodies: reading, the four editors and
// the four previews.
void BM_LoadFourBodies(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    const bool spelling = state.range(1) != 0;
    const QString file = fourBodiesFile(length);
    double peak = 0;
    double held = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto window = std::make_unique<MainWindow>();
        window->show();
        if (spelling) {
            startSpelling(*window);
        }
        window->folderBox->setText(QFileInfo(file).absolutePath());
        window->nameBox->setText(QStringLiteral("four"));
        QApplication::processEvents();
        const double before = statusMegabytes("VmRSS:");
        const double heapBefore = heapMegabytes();
        resetPeak();
        state.ResumeTiming();
        window->loadButton->click();
        QApplication::processEvents();
        state.PauseTiming();
        peak = statusMegabytes("VmHWM:") - before;
        held = heapMegabytes() - heapBefore;
        if (window->bodyEditor(lorekeep::Language(3))->document()->characterCount() - 1 !=
            static_cast<int>(length)) {
            state.SkipWithError("the file did not load");
        }
        window.reset();
        state.ResumeTiming();
    }
    // The heap still held afterwards counts whatever ran before.
    state.counters["peak_MB"] = peak;
    state.counters["heap_MB"] = held;
}

// What the same four texts cost four bare editors: setPlainText each.
void BM_SetPlainTextFourBodies(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    const QString body = toQString(lorekeep::bench::markedUpBody(length));
    double peak = 0;
    double held = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::array<std::unique_ptr<QPlainTextEdit>, 4> editors;
        for (auto& editor : editors) {
            editor = std::make_unique<QPlainTextEdit>();
            editor->resize(600, 400);
            editor->show();
        }
        QApplication::processEvents();
        const double before = statusMegabytes("VmRSS:");
        const double heapBefore = heapMegabytes();
        resetPeak();
        state.ResumeTiming();
        for (auto& editor : editors) {
            editor->setPlainText(body);
        }
        QApplication::processEvents();
        state.PauseTiming();
        peak = statusMegabytes("VmHWM:") - before;
        held = heapMegabytes() - heapBefore;
        for (auto& editor : editors) {
            editor.reset();
        }
        state.ResumeTiming();
    }
    // The heap still held afterwards counts whatever ran before.
    state.counters["peak_MB"] = peak;
    state.counters["heap_MB"] = held;
}

enum BodyKind { kWords, kMarkedUpWords, kWithoutSpaces, kOnlyMarkers };

Text bodyOf(BodyKind kind, std::size_t length) {
    Text body;
    switch (kind) {
        case kWords:
            while (body.size() < length) {
                body += u"Lore of the tower keep ";
            }
            body.resize(length);
            return body;
        case kMarkedUpWords:
            return lorekeep::bench::markedUpBody(length);
        case kWithoutSpaces:
            return Text(length, u'x');
        case kOnlyMarkers:
            while (body.size() < length) {
                body += lorekeep::markup::kLineBreak;
                body += lorekeep::markup::colourMarker(u"255", u"128", u"0");
            }
            body.resize(length);
            return body;
    }
    return body;
}

// A whole body pasted into an empty English editor, preview included.
void BM_PasteBody(benchmark::State& state) {
    const auto kind = static_cast<BodyKind>(state.range(0));
    const auto length = static_cast<std::size_t>(state.range(1));
    auto* mime = new QMimeData;
    mime->setText(toQString(bodyOf(kind, length)));
    QApplication::clipboard()->setMimeData(mime);
    for (auto _ : state) {
        state.PauseTiming();
        auto window = std::make_unique<MainWindow>();
        window->show();
        QApplication::processEvents();
        state.ResumeTiming();
        window->bodyEditor(lorekeep::Language(0))->paste();
        QApplication::processEvents();
        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
}

// Find Next in the window: the first search after an edit (nothing found is
// remembered), from the start of the body to its one match at the far end,
// until the page shows the match selected.
void BM_FindNextFromFarEnd(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    MainWindow window;
    window.show();
    auto* editor = window.bodyEditor(lorekeep::Language(0));
    Text body = lorekeep::bench::markedUpBody(length - 8);
    editor->replaceText(body.append(u"Zanzibar"));
    lorekeep::ui::FindDialog* find = window.openFindDialog();
    find->findBox->setText(QStringLiteral("zanzibar"));
    editor->setFocus();
    for (auto _ : state) {
        state.PauseTiming();
        editor->setCaretPosition(0);
        type(editor, Qt::Key_X, QStringLiteral("x"));
        type(editor, Qt::Key_Backspace, QString());
        QApplication::processEvents();
        state.ResumeTiming();
        find->findNextButton->click();
        QApplication::processEvents();
    }
    state.counters["found_at"] = static_cast<double>(editor->caretPosition());
}

// Replace All in the window: a body of 4,000,000 characters with a match
// every 40, replaced by a longer word, until the editor shows the result and
// its preview pane holds the new preview; with the second argument 1, also
// until the preview's page, clicked next, shows it (the pane lays out a
// hidden page's text only then). Undo, untimed, brings the body back.
void BM_ReplaceAll(benchmark::State& state) {
    MainWindow window;
    window.show();
    auto* editor = window.bodyEditor(lorekeep::Language(0));
    editor->replaceText(lorekeep::bench::towerBody(static_cast<std::size_t>(state.range(0))));
    lorekeep::ui::FindDialog* find = window.openFindDialog();
    find->findBox->setText(QStringLiteral("tower"));
    find->replaceBox->setText(QStringLiteral("spire"));
    for (auto _ : state) {
        find->replaceAllButton->click();
        QApplication::processEvents();
        if (state.range(1) != 0) {
            window.tabs->setCurrentIndex(4);
            QApplication::processEvents();
        }
        state.PauseTiming();
        window.tabs->setCurrentIndex(0);
        editor->undo();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.SetLabel(find->statusLabel->text().toStdString());
}

constexpr int kSmall = 32'767;
constexpr int kMillion = 1'000'000;
constexpr int kFourMillion = 4'000'000;
constexpr int kSixteenMillion = 15'999'000;  // room for the letter typed

BENCHMARK(BM_KeystrokeToPreview)
    ->ArgNames({"chars", "place"})
    ->ArgsProduct({{kSmall, kMillion, kFourMillion, kSixteenMillion},
                   {kAtStart, kInMiddle, kAtEnd}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeystrokeSpelling)
    ->ArgNames({"chars", "place", "spelling"})
    ->ArgsProduct({{kFourMillion}, {kAtEnd, kInMiddle}, {0, 1}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindNextFromFarEnd)->Arg(kSixteenMillion)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReplaceAll)
    ->ArgNames({"chars", "preview_page"})
    ->ArgsProduct({{kFourMillion}, {0, 1}})
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BarePlainTextEditKeystroke)
    ->ArgNames({"chars", "place"})
    ->ArgsProduct({{kSmall}, {kAtStart, kInMiddle, kAtEnd}})
    ->Unit(benchmark::kMillisecond);
// One iteration each: the peak is that of a process that has not yet held
// such texts (run each alone for that).
BENCHMARK(BM_LoadFourBodies)
    ->ArgNames({"chars", "spelling"})
    ->ArgsProduct({{kFourMillion}, {0, 1}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetPlainTextFourBodies)
    ->ArgNames({"chars"})
    ->Arg(kFourMillion)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PasteBody)
    ->ArgNames({"kind", "chars"})
    ->ArgsProduct({{kWords, kMarkedUpWords, kWithoutSpaces, kOnlyMarkers}, {kFourMillion}})
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
