#include <benchmark/benchmark.h>

#include <QApplication>
#include <QKeyEvent>

#include "bench_bodies.hpp"
#include "markup/mod_schema_parse.hpp"
#include "ui/frm_main.hpp"
#include "ui/qt_text.hpp"

namespace {

using lorekeep::ui::frmMain;

constexpr std::size_t kBodyLength = 32767;

void Type(QWidget* target, int key, const QString& text) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(target, &release);
}

// One character typed at the end of a long marked-up body, through the real
// editor: the key event, the text change, the render and the preview pane's
// new document, all inside the one event.
void BM_KeystrokeToPreview(benchmark::State& state) {
    frmMain window;
    window.show();
    auto* editor = window.rtbText[0];
    editor->SetPlainText(lorekeep::bench::MarkedUpBody(kBodyLength));
    editor->setFocus();
    editor->SetCaret(kBodyLength);
    for (auto _ : state) {
        Type(editor, Qt::Key_X, QStringLiteral("x"));
        state.PauseTiming();
        Type(editor, Qt::Key_Backspace, QString());
        state.ResumeTiming();
    }
    state.counters["preview_chars"] = static_cast<double>(window.rtbText[4]->PlainText().size());
}

// The same keystroke into a box of the same body whose changes render
// nothing (a preview pane, shown on its page): what the editor widget itself
// costs per keystroke on a 32,767-character paragraph, preview or not.
void BM_KeystrokeWithoutPreview(benchmark::State& state) {
    frmMain window;
    window.show();
    window.tabMain->setCurrentIndex(4);
    auto* box = window.rtbText[4];
    box->SetPlainText(lorekeep::bench::MarkedUpBody(kBodyLength));
    box->setFocus();
    box->SetCaret(kBodyLength);
    for (auto _ : state) {
        Type(box, Qt::Key_X, QStringLiteral("x"));
        state.PauseTiming();
        Type(box, Qt::Key_Backspace, QString());
        state.ResumeTiming();
    }
}

// From the editor's text-changed notification to the finished preview: the
// render and the pane's new document.
void BM_TextChangeToPreview(benchmark::State& state) {
    frmMain window;
    window.show();
    window.rtbText[0]->SetPlainText(lorekeep::bench::MarkedUpBody(kBodyLength));
    auto* editor = window.rtbText[0];
    for (auto _ : state) {
        emit editor->textChanged();
    }
}

// What showing the rendered text costs at the least: setPlainText of it alone
// into the same pane.
void BM_SetPlainTextOfRenderedText(benchmark::State& state) {
    frmMain window;
    window.show();
    const auto rendered =
        lorekeep::modSchemaParse::RenderPreview(lorekeep::bench::MarkedUpBody(kBodyLength));
    const QString text = lorekeep::ui::ToQString(rendered.text);
    auto* pane = window.rtbText[4];
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
