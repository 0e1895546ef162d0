#include <benchmark/benchmark.h>

#include <QApplication>
#include <QKeyEvent>

#include "bench_bodies.hpp"
#include "markup/renderer.hpp"
#include "ui/main_window.hpp"
#include "ui/qt_text.hpp"

namespace {

using lorekeep::ui::MainWindow;

constexpr std::size_t kBodyLength = 32767;

void type(QWidget* target, int key, const QString& text) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &release);
}

// One character typed at the end of a long marked-up body, through the real
// editor: the key event, the text change, the render and the preview pane's
// new document, all inside the one event.
void BM_KeystrokeToPreview(benchmark::State& state) {
    MainWindow window;
    window.show();
    auto* editor = window.richTextBox(0);
    editor->replaceText(lorekeep::bench::markedUpBody(kBodyLength));
    editor->setFocus();
    editor->setCaretPosition(kBodyLength);
    for (auto _ : state) {
        type(editor, Qt::Key_X, QStringLiteral("x"));
        state.PauseTiming();
        type(editor, Qt::Key_Backspace, QString());
        state.ResumeTiming();
    }
    state.counters["preview_chars"] =
        static_cast<double>(window.richTextBox(4)->plainText().size());
}

// The same keystroke into a box of the same body whose changes render
// nothing (a preview pane, shown on its page): what the editor widget itself
// costs per keystroke on a 32,767-character paragraph, preview or not.
void BM_KeystrokeWithoutPreview(benchmark::State& state) {
    MainWindow window;
    window.show();
    window.tabs->setCurrentIndex(4);
    auto* box = window.richTextBox(4);
    box->replaceText(lorekeep::bench::markedUpBody(kBodyLength));
    box->setFocus();
    box->setCaretPosition(kBodyLength);
    for (auto _ : state) {
        type(box, Qt::Key_X, QStringLiteral("x"));
        state.PauseTiming();
        type(box, Qt::Key_Backspace, QString());
        state.ResumeTiming();
    }
}

// From the editor's text-changed notification to the finished preview: the
// render and the pane's new document.
void BM_TextChangeToPreview(benchmark::State& state) {
    MainWindow window;
    window.show();
    auto* editor = window.richTextBox(0);
    editor->replaceText(lorekeep::bench::markedUpBody(kBodyLength));
    for (auto _ : state) {
        emit editor->textChanged();
    }
}

// What showing the rendered text costs at the least: setPlainText of it alone
// into the same pane.
void BM_SetPlainTextOfRenderedText(benchmark::State& state) {
    MainWindow window;
    window.show();
    const auto rendered =
        lorekeep::markup::renderPreview(lorekeep::bench::markedUpBody(kBodyLength));
    const QString text = lorekeep::ui::toQString(rendered.text);
    auto* pane = window.richTextBox(4);
    for (auto _ : state) {
        pane->setPlainText(text);
    }
    state.counters["preview_chars"] = static_cast<double>(text.size());
}

BENCHMARK(BM_KeystrokeToPreview)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeystrokeWithoutPreview)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TextChangeToPreview)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetPlainTextOfRenderedText)->Unit(benchmark::kMillisecond);

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
