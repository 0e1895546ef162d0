// The editor as a user meets it: the real program on a real X display (run
// under xvfb-run, or on a desktop), keys typed through the window system with
// XTest, and the editor process's own CPU time and peak memory read from the
// kernel. Nothing is timed inside the program.
//
// - Keystroke: the program opens a schema whose English body is long, with
//   the caret at the start, the middle or the end (--goto); once it is idle,
//   letters are typed one every 20 ms and the CPU time it spent is divided by
//   their number. The file is then saved with Ctrl+S and must have grown by
//   exactly the letters typed.
// - Load: a file of four 4,000,000-character bodies, opened from the command
//   line, against four bare QPlainTextEdits given the same four texts: the
//   time until the process has gone idle and its peak resident memory.
// - Start-up: process start to the window's MapNotify, against a minimal Qt
//   Widgets window of the same size, interleaved; wall time and CPU time.
// - Find and Replace: Find Next and Replace All in long bodies (below).
#include <benchmark/benchmark.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "bench_bodies.hpp"
#include "processes.hpp"
#include "schema/limits.hpp"
#include "schema/schema_file.hpp"

// Xlib's macros (None, Status, ...) would rename the project's own names.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

double seconds(Clock::duration d) {
    return std::chrono::duration<double>(d).count();
}

// A started program: its CPU time and peak memory as the kernel counts them.
class Process {
  public:
    explicit Process(std::vector<std::string> args)
        : started(Clock::now()), m_pid(lorekeep::bench::startOnPlatform(std::move(args), "xcb")) {}
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
    }

    bool running() const { return m_pid > 0 && kill(m_pid, 0) == 0; }

    // Seconds of CPU, user and system, of all the process's threads.
    double cpuSeconds() const {
        clockid_t clock{};
        timespec t{};
        if (clock_getcpuclockid(m_pid, &clock) != 0 || clock_gettime(clock, &t) != 0) {
            return 0;
        }
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
    }

    double peakMegabytes() const {
        return lorekeep::bench::statusMegabytes("VmHWM:", std::to_string(m_pid));
    }

    // Waits until the process has spent less than 2 ms of CPU in 300 ms;
    // returns when it last worked, or nothing if it never settled.
    std::optional<Clock::time_point> waitUntilIdle(double limitSeconds = 300) const {
        double cpu = cpuSeconds();
        Clock::time_point lastBusy = Clock::now();
        const auto deadline = Clock::now() + std::chrono::duration<double>(limitSeconds);
        while (Clock::now() < deadline && running()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            const double now = cpuSeconds();
            if (now - cpu > 0.0005) {
                lastBusy = Clock::now();
                cpu = now;
            } else if (Clock::now() - lastBusy > std::chrono::milliseconds(300)) {
                return lastBusy;
            }
        }
        return std::nullopt;
    }

    Clock::time_point started;

  private:
    pid_t m_pid = 0;
};

// The X display the programs show their windows on.
class Display {
  public:
    Display() : m_display(XOpenDisplay(nullptr)) {
        if (m_display != nullptr) {
            XSelectInput(m_display, DefaultRootWindow(m_display), SubstructureNotifyMask);
            XSync(m_display, True);
        }
    }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    ~Display() {
        if (m_display != nullptr) {
            XCloseDisplay(m_display);
        }
    }
    bool open() const { return m_display != nullptr; }

    // The next top-level window mapped, and when.
    std::optional<std::pair<Window, Clock::time_point>> waitForMap(double limitSeconds) {
        const auto deadline = Clock::now() + std::chrono::duration<double>(limitSeconds);
        pollfd fd{ConnectionNumber(m_display), POLLIN, 0};
        while (Clock::now() < deadline) {
            while (XPending(m_display) > 0) {
                XEvent event;
                XNextEvent(m_display, &event);
                if (event.type == MapNotify && !event.xmap.override_redirect) {
                    return std::pair(event.xmap.window, Clock::now());
                }
            }
            poll(&fd, 1, 5);
        }
        return std::nullopt;
    }

    void focus(Window window) {
        XSetInputFocus(m_display, window, RevertToParent, CurrentTime);
        XSync(m_display, False);
    }

    void press(KeySym symbol, bool control = false, bool alt = false) {
        const KeyCode key = XKeysymToKeycode(m_display, symbol);
        const KeyCode ctrl = XKeysymToKeycode(m_display, XK_Control_L);
        const KeyCode altKey = XKeysymToKeycode(m_display, XK_Alt_L);
        if (control) {
            XTestFakeKeyEvent(m_display, ctrl, True, 0);
        }
        if (alt) {
            XTestFakeKeyEvent(m_display, altKey, True, 0);
        }
        XTestFakeKeyEvent(m_display, key, True, 0);
        XTestFakeKeyEvent(m_display, key, False, 0);
        if (alt) {
            XTestFakeKeyEvent(m_display, altKey, False, 0);
        }
        if (control) {
            XTestFakeKeyEvent(m_display, ctrl, False, 0);
        }
        XFlush(m_display);
    }

    // Lower-case letters and Tab, a key at a time.
    void type(const std::string& keys) {
        for (const char c : keys) {
            press(c == '\t' ? XK_Tab : XK_a + static_cast<KeySym>(c - 'a'));
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

  private:
    ::Display* m_display;
};

// The editor measured: this build's, or another (an installed one) named by
// LOREKEEP_BENCH_EDITOR.
std::string editorProgram() {
    const char* other = std::getenv("LOREKEEP_BENCH_EDITOR");
    return other != nullptr && *other != 0 ? other : LOREKEEP_EDITOR;
}

enum Kind { kWords = 0, kNoSpaces = 1 };
enum Place { kStart = 0, kMiddle = 1, kEnd = 2 };

lorekeep::Text bodyOf(Kind kind, std::size_t length) {
    return kind == kWords ? lorekeep::bench::markedUpBody(length)
                          : lorekeep::bench::unbrokenBody(length);
}

// A schema in a folder of its own: `body` in English (or in all four), a short
// text in the others.
fs::path writeSchema(const std::string& name, const lorekeep::Text& body, bool allFour) {
    const fs::path folder = fs::temp_directory_path() / ("lorekeep-x11-bench-" + name);
    fs::create_directories(folder);
    lorekeep::SchemaDocument document;
    document.folder = lorekeep::fromUtf8(folder.string());
    document.name = lorekeep::fromUtf8(name);
    document.font = u"Papyrus14";
    for (const lorekeep::Language language : lorekeep::kAllLanguages) {
        document.entry(language) = {u"Title", allFour || language == lorekeep::Language::English
                                                  ? body
                                                  : lorekeep::Text(u"Short text")};
    }
    if (!lorekeep::saveSchema(document, lorekeep::LocalDateTime{2026, 11, 25, 12, 0, 0})) {
        return {};
    }
    return folder / (name + ".sch");
}

// The editor's window once it is up, settled and focused; nothing when it
// never came up.
std::optional<Window> focusedWindow(Display& display, const Process& editor) {
    const auto mapped = display.waitForMap(60);
    if (!mapped || !editor.waitUntilIdle()) {
        return std::nullopt;
    }
    display.focus(mapped->first);
    editor.waitUntilIdle();
    return mapped->first;
}

void BM_KeystrokeThroughX(benchmark::State& state) {
    const auto kind = static_cast<Kind>(state.range(1));
    const auto place = static_cast<Place>(state.range(2));
    constexpr int kKeys = 100;
    // A body at the limit takes no more letters: it ends where typing reaches it.
    const std::size_t length =
        std::min(static_cast<std::size_t>(state.range(0)), lorekeep::kMaxBodyLength - kKeys);
    const fs::path file = writeSchema("keys", bodyOf(kind, length), false);
    const std::size_t caret = place == kStart ? 0 : place == kMiddle ? length / 2 : length;
    Display display;
    if (!display.open() || file.empty()) {
        state.SkipWithError("no X display (run under xvfb-run), or no file");
        return;
    }
    for (auto _ : state) {
        const auto before = fs::file_size(file);
        Process editor(
            {editorProgram(), "--goto", "English:body:" + std::to_string(caret), file.string()});
        if (!focusedWindow(display, editor)) {
            state.SkipWithError("the window did not come up and settle");
            return;
        }
        const double cpu = editor.cpuSeconds();
        const auto begun = Clock::now();
        for (int k = 0; k < kKeys; ++k) {
            display.press(XK_a + static_cast<KeySym>(k % 26));
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        editor.waitUntilIdle();
        const double spent = editor.cpuSeconds() - cpu;
        state.SetIterationTime(seconds(Clock::now() - begun));
        state.counters["cpu_ms_per_key"] = spent * 1000 / kKeys;
        display.press(XK_s, true);
        editor.waitUntilIdle();
        if (fs::file_size(file) != before + kKeys) {
            state.SkipWithError("the typed letters did not all reach the body");
        }
    }
    fs::remove_all(file.parent_path());
}

// Find and Replace: the program opens a schema with a long English body, the
// caret at its start; Ctrl+F opens the dialog and the search is typed into
// it. Then, timed from the key to the last CPU the program spends on it:
// - Find Next (Enter) from the start of a 16,000,000-character body of words
//   with markers to its one match, the body's last word; a letter typed over
//   the selected match and a save check that it was selected;
// - Replace All (Alt+A) of the 100,000 "tower"s of a 4,000,000-character
//   body by "spire"; a save checks that all were replaced.
enum FindCommand { kFindNext = 0, kReplaceAll = 1 };

void BM_FindThroughX(benchmark::State& state) {
    const auto command = static_cast<FindCommand>(state.range(0));
    lorekeep::Text body;
    if (command == kFindNext) {
        body = lorekeep::bench::markedUpBody(lorekeep::kMaxBodyLength - 8) + u"Zanzibar";
    } else {
        body = lorekeep::bench::towerBody(4'000'000);
    }
    const fs::path file = writeSchema("find", body, false);
    Display display;
    if (!display.open() || file.empty()) {
        state.SkipWithError("no X display (run under xvfb-run), or no file");
        return;
    }
    for (auto _ : state) {
        const auto before = fs::file_size(file);
        Process editor({editorProgram(), "--goto", "English:body:0", file.string()});
        const auto window = focusedWindow(display, editor);
        if (!window) {
            state.SkipWithError("the window did not come up and settle");
            return;
        }
        display.press(XK_f, true);
        const auto dialog = display.waitForMap(10);
        if (!dialog) {
            state.SkipWithError("Ctrl+F opened no dialog");
            return;
        }
        display.focus(dialog->first);
        display.type(command == kFindNext ? "zanzibar" : "tower\tspire");
        editor.waitUntilIdle();
        const double cpu = editor.cpuSeconds();
        const auto begun = Clock::now();
        display.press(command == kFindNext ? XK_Return : XK_a, false, command == kReplaceAll);
        const auto done = editor.waitUntilIdle();
        if (!done) {
            state.SkipWithError("never settled");
            return;
        }
        state.SetIterationTime(seconds(std::max(*done - begun, Clock::duration(0))));
        state.counters["cpu_ms"] = (editor.cpuSeconds() - cpu) * 1000;
        state.counters["peak_MB"] = editor.peakMegabytes();
        // The check: a letter over the selection (Find Next), then a save.
        display.focus(*window);
        if (command == kFindNext) {
            display.press(XK_q);
        }
        display.press(XK_s, true);
        editor.waitUntilIdle();
        std::ifstream saved(file, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(saved)), {});
        std::size_t spires = 0;
        for (auto at = bytes.find("spire"); at != std::string::npos;
             at = bytes.find("spire", at + 1)) {
            ++spires;
        }
        if (command == kFindNext
                ? fs::file_size(file) + 7 != before || bytes.find("Zanzibar") != std::string::npos
                : spires != 100'000) {
            state.SkipWithError("the file saved does not show the command done");
        }
    }
    fs::remove_all(file.parent_path());
}

// The four 4,000,000-character bodies of words with markers: the editor opens
// the file, the bare program gives the same texts to four QPlainTextEdits.
constexpr std::size_t kLoadLength = 4'000'000;

void measureLoad(benchmark::State& state, const std::vector<std::string>& args) {
    Display display;
    if (!display.open()) {
        state.SkipWithError("no X display (run under xvfb-run)");
        return;
    }
    for (auto _ : state) {
        Process program(args);
        if (!display.waitForMap(60)) {
            state.SkipWithError("no window");
            return;
        }
        const auto idle = program.waitUntilIdle();
        if (!idle) {
            state.SkipWithError("never settled");
            return;
        }
        state.SetIterationTime(seconds(*idle - program.started));
        state.counters["peak_MB"] = program.peakMegabytes();
        state.counters["cpu_s"] = program.cpuSeconds();
    }
}

void BM_LoadFourBodiesThroughX(benchmark::State& state) {
    const fs::path file = writeSchema("load", bodyOf(kWords, kLoadLength), true);
    measureLoad(state, {editorProgram(), file.string()});
    fs::remove_all(file.parent_path());
}

void BM_BarePlainTextEditsLoadThroughX(benchmark::State& state) {
    const fs::path folder = fs::temp_directory_path() / "lorekeep-x11-bench-bare";
    fs::create_directories(folder);
    const fs::path text = folder / "body.txt";
    std::ofstream(text, std::ios::binary) << lorekeep::toUtf8(bodyOf(kWords, kLoadLength));
    measureLoad(state, {LOREKEEP_BARE_EDITORS, text.string()});
    fs::remove_all(folder);
}

// Start-up: the minimal window and the editor started in turn, 20 times each.
void BM_StartupThroughX(benchmark::State& state) {
    Display display;
    if (!display.open()) {
        state.SkipWithError("no X display (run under xvfb-run)");
        return;
    }
    constexpr int kRuns = 20;
    for (auto _ : state) {
        std::vector<double> wall[2];
        std::vector<double> cpu[2];
        for (int run = 0; run < 2 * kRuns; ++run) {
            const int which = run % 2;
            Process program(which == 0
                                ? std::vector<std::string>{LOREKEEP_STARTUP_MINIMAL, "--stay"}
                                : std::vector<std::string>{editorProgram()});
            const auto mapped = display.waitForMap(30);
            if (!mapped) {
                state.SkipWithError("no window");
                return;
            }
            cpu[which].push_back(program.cpuSeconds());
            wall[which].push_back(seconds(mapped->second - program.started));
        }
        const auto median = [](std::vector<double> v) {
            std::sort(v.begin(), v.end());
            return (v[v.size() / 2] + v[(v.size() - 1) / 2]) / 2;
        };
        state.SetIterationTime(median(wall[1]));
        state.counters["minimal_ms"] = median(wall[0]) * 1000;
        state.counters["editor_ms"] = median(wall[1]) * 1000;
        state.counters["ratio"] = median(wall[1]) / median(wall[0]);
        state.counters["minimal_cpu_ms"] = median(cpu[0]) * 1000;
        state.counters["editor_cpu_ms"] = median(cpu[1]) * 1000;
        state.counters["cpu_ratio"] = median(cpu[1]) / median(cpu[0]);
    }
}

void keystrokeArgs(benchmark::internal::Benchmark* b) {
    b->ArgNames({"length", "nospace", "place"});
    for (const int64_t length : {32'767, 1'000'000, 4'000'000, 16'000'000}) {
        for (const int64_t kind : {kWords, kNoSpaces}) {
            for (const int64_t place : {kStart, kMiddle, kEnd}) {
                b->Args({length, kind, place});
            }
        }
    }
}

BENCHMARK(BM_StartupThroughX)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeystrokeThroughX)
    ->Apply(keystrokeArgs)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindThroughX)
    ->ArgName("replace_all")
    ->Arg(kFindNext)
    ->Arg(kReplaceAll)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadFourBodiesThroughX)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BarePlainTextEditsLoadThroughX)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
