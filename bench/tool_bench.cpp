// lorekeep-tool check over a mod's folder: time and peak memory for 100 to
// 3,000 schema files of about 10 KB each (the target: 1,000 files in under
// 2 s, memory that does not grow with the number of files); and check
// --spelling over 1,000 files of real sentences in the four languages, one
// file in ten with a typo (the target: under 5 s); and replace over the same
// files (the target: under 2 s).
//   build/release/bench/tool_bench
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "bench_bodies.hpp"
#include "markup/markers.hpp"
#include "processes.hpp"
#include "schema/schema_writer.hpp"
#include "tool/cli.hpp"

namespace {

namespace fs = std::filesystem;
using lorekeep::bench::statusMegabytes;

std::string fileName(int n) {
    std::string name = std::to_string(n);
    name.insert(0, 1, 's');
    name += ".sch";
    return name;
}

// `count` schema files of about 10 KB, made once per count.
fs::path modFolder(int count) {
    const fs::path folder =
        fs::temp_directory_path() / "lorekeep-bench-mod" / std::to_string(count);
    if (fs::exists(folder / fileName(count - 1))) {
        return folder;
    }
    fs::create_directories(folder / "quests");
    lorekeep::SchemaDocument document;
    document.font = u"Papyrus14";
    for (int i = 0; i < lorekeep::kLanguageCount; ++i) {
        document.entries[i] = {u"The Tower " + lorekeep::Text(1, char16_t(u'A' + i)),
                               lorekeep::bench::markedUpBody(2400 + 10 * i)};
    }
    for (int n = 0; n < count; ++n) {
        document.name = u"s" + lorekeep::fromUtf8(std::to_string(n));
        std::ofstream(folder / (n % 2 ? "quests" : ".") / fileName(n), std::ios::binary)
            << lorekeep::composeSchemaBytes(document, {2026, 11, 25, 10, 0, 0});
    }
    return folder;
}

void BM_CheckFolder(benchmark::State& state) {
    const fs::path folder = modFolder(static_cast<int>(state.range(0)));
    std::ofstream("/proc/self/clear_refs") << "5";  // peak memory counted from here
    const double before = statusMegabytes("VmRSS:");
    for (auto _ : state) {
        // Findings go where a terminal would take them, not into memory.
        std::ofstream out("/dev/null");
        benchmark::DoNotOptimize(lorekeep::tool::runTool({"check", folder.string()}, out, out));
    }
    state.counters["files"] = static_cast<double>(state.range(0));
    state.counters["peak_MB"] = statusMegabytes("VmHWM:") - before;
}
BENCHMARK(BM_CheckFolder)->Arg(100)->Arg(1000)->Arg(3000)->Unit(benchmark::kMillisecond);

// Sentences of the kind a mod holds, per language, and typos of their words.
struct Prose {
    std::u16string_view title;
    std::array<std::u16string_view, 6> sentences;
    std::array<std::u16string_view, 10> typos;
};
constexpr std::array<Prose, lorekeep::kLanguageCount> kProse{{
    {u"The Keep",
     {u"The old keep stands on the hill above the village. ",
      u"Nobody has climbed its stairs since the winter of the great storm. ",
      u"Bring the lantern and the key, and do not wake the guards. ",
      u"A merchant waits by the gate with bread, wine and a map of the forest. ",
      u"The river is cold and deep, so cross it at the bridge. ",
      u"When the bell rings twice, the doors of the hall will open. "},
     {u"teh", u"stiars", u"wniter", u"lantren", u"merchnat", u"forrest", u"brigde", u"rivver",
      u"dors", u"vilage"}},
    {u"Le Donjon",
     {u"Le vieux donjon se dresse sur la colline au-dessus du village. ",
      u"Personne n'a monté ses escaliers depuis l'hiver de la grande tempête. ",
      u"Apportez la lanterne et la clé, et ne réveillez pas les gardes. ",
      u"Un marchand attend près de la porte avec du pain, du vin et une carte de la forêt. ",
      u"La rivière est froide et profonde, alors traversez-la au pont. ",
      u"Quand la cloche sonne deux fois, les portes de la salle s'ouvrent. "},
     {u"mondde", u"dnojon", u"collinne", u"escalliers", u"lanterrne", u"marchnad", u"forêtt",
      u"rivièer", u"clohce", u"sallle"}},
    {u"Der Turm",
     {u"Der alte Turm steht auf dem Hügel über dem Dorf. ",
      u"Niemand hat seit dem Winter des großen Sturms seine Treppen erklommen. ",
      u"Bringt die Laterne und den Schlüssel und weckt die Wachen nicht. ",
      u"Ein Händler wartet am Tor mit Brot, Wein und einer Karte des Waldes. ",
      u"Der Fluss ist kalt und tief, also überquert ihn an der Brücke. ",
      u"Wenn die Glocke zweimal läutet, öffnen sich die Türen der Halle. "},
     {u"Turmm", u"Hüggel", u"Wintter", u"Laterrne", u"Schlüsel", u"Händlr", u"Waldess", u"Brüke",
      u"Glokce", u"Hallle"}},
    {u"Il Mastio",
     {u"Il vecchio mastio sorge sulla collina sopra il villaggio. ",
      u"Nessuno ha salito le sue scale dall'inverno della grande tempesta. ",
      u"Portate la lanterna e la chiave, e non svegliate le guardie. ",
      u"Un mercante aspetta vicino alla porta con pane, vino e una mappa della foresta. ",
      u"Il fiume è freddo e profondo, quindi attraversatelo al ponte. ",
      u"Quando la campana suona due volte, le porte della sala si aprono. "},
     {u"mastoi", u"collinna", u"villagio", u"invenro", u"lanterrna", u"chaive", u"mercatne",
      u"forestta", u"fiumme", u"campanna"}},
}};

// `count` schema files of about 10 KB of prose with markers.
fs::path proseFolder(int count) {
    const fs::path folder =
        fs::temp_directory_path() / "lorekeep-bench-prose" / std::to_string(count);
    if (fs::exists(folder / fileName(count - 1))) {
        return folder;
    }
    fs::create_directories(folder);
    std::mt19937 random(20261125);
    for (int n = 0; n < count; ++n) {
        lorekeep::SchemaDocument document;
        document.font = u"Papyrus14";
        document.name = u"s" + lorekeep::fromUtf8(std::to_string(n));
        for (int i = 0; i < lorekeep::kLanguageCount; ++i) {
            const Prose& prose = kProse[static_cast<std::size_t>(i)];
            lorekeep::Text body;
            while (body.size() < 2400) {
                body += prose.sentences[random() % prose.sentences.size()];
                body += random() % 3 == 0 ? lorekeep::markup::kLineBreak : u"";
            }
            if (n % 10 == 0) {
                body += prose.typos[random() % prose.typos.size()];
            }
            document.entries[static_cast<std::size_t>(i)] = {lorekeep::Text(prose.title), body};
        }
        std::ofstream(folder / fileName(n), std::ios::binary)
            << lorekeep::composeSchemaBytes(document, {2026, 11, 25, 10, 0, 0});
    }
    return folder;
}

// Runs lorekeep-tool; returns how many lines it printed (its messages go
// nowhere).
std::size_t linesPrinted(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ofstream err("/dev/null");
    lorekeep::tool::runTool(arguments, out, err);
    const std::string printed = out.str();
    return static_cast<std::size_t>(std::count(printed.begin(), printed.end(), '\n'));
}

void BM_CheckSpelling(benchmark::State& state) {
    const fs::path folder = proseFolder(static_cast<int>(state.range(0)));
    std::size_t lines = 0;
    for (auto _ : state) {
        lines = linesPrinted({"check", "--spelling", folder.string()});
    }
    state.counters["files"] = static_cast<double>(state.range(0));
    state.counters["findings"] = static_cast<double>(lines);
}
BENCHMARK(BM_CheckSpelling)->Arg(1000)->Iterations(1)->Unit(benchmark::kMillisecond);

// lorekeep-tool replace over a fresh copy of the prose files: a word of
// every body replaced in every file, each file written through the safe
// save (the target: 1,000 files in under 2 s).
void BM_ReplaceFolder(benchmark::State& state) {
    const fs::path source = proseFolder(static_cast<int>(state.range(0)));
    const fs::path copy = fs::temp_directory_path() / "lorekeep-bench-replace";
    std::size_t changed = 0;
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove_all(copy);
        fs::copy(source, copy, fs::copy_options::recursive);
        state.ResumeTiming();
        changed = linesPrinted(
            {"replace", "--find", "lantern", "--with", "lamp", "--language", "en", copy.string()});
    }
    fs::remove_all(copy);
    state.counters["files_changed"] = static_cast<double>(changed);
}
BENCHMARK(BM_ReplaceFolder)->Arg(1000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
