// Spelling through the real window on an X display (run under xvfb-run):
// the program opens a French entry whose title is misspelt; its body is
// misspelt in one run and a correct sentence in the other. The screen must
// show the desktop's red underline under the title in both runs, and under
// the body only in the first.
//   x11_underline_check path/to/lorekeep
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

using namespace std::chrono_literals;

// One French entry: title and body as the file holds them.
void writeSchema(const std::string& path, const std::string& title, const std::string& body) {
    std::ofstream file(path, std::ios::binary);
    file << "VERSION 2.0\r\nTextEntry\r\nx\r\n";
    for (const char* key : {"lang_english", "lang_french", "lang_german", "lang_italian"}) {
        const bool french = std::string(key) == "lang_french";
        file << key
             << " 2026-11-25 10:00:00 \"\\n<font=Papyrus14>\\n\\n<title=" << (french ? title : "")
             << ">\\n"
             << (french ? body : "") << "\"\r\n";
    }
}

// The rows of the screen that hold the underline's red, grouped into bands
// of neighbouring rows: one band per underlined line.
int redBands(Display* display) {
    const Window root = DefaultRootWindow(display);
    XWindowAttributes attributes{};
    XGetWindowAttributes(display, root, &attributes);
    XImage* image = XGetImage(display, root, 0, 0, static_cast<unsigned>(attributes.width),
                              static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
    if (image == nullptr) {
        return -1;
    }
    int bands = 0;
    int lastRedRow = -10;
    for (int y = 0; y < attributes.height; ++y) {
        bool red = false;
        for (int x = 0; x < attributes.width && !red; ++x) {
            const unsigned long pixel = XGetPixel(image, x, y);
            const unsigned long r = (pixel >> 16) & 0xFF, g = (pixel >> 8) & 0xFF, b = pixel & 0xFF;
            red = r >= 220 && g <= 120 && b <= 120;  // the wave is drawn smoothed
        }
        if (red) {
            bands += y - lastRedRow > 3 ? 1 : 0;
            lastRedRow = y;
        }
    }
    XDestroyImage(image);
    return bands;
}

// Runs the editor on `file` with the French body in sight, until the screen
// shows `expected` bands of red (or 20 s); then looks once more after the
// program has had time to underline anything else. Returns what it saw.
int bandsShown(const char* editor, const std::string& file, int expected, Display* display) {
    const pid_t pid = fork();
    if (pid == 0) {
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        execl(editor, editor, "--goto", "fr:body:0", file.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    int seen = 0;
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (std::chrono::steady_clock::now() < deadline && seen < expected) {
        std::this_thread::sleep_for(100ms);
        seen = redBands(display);
    }
    std::this_thread::sleep_for(1s);
    seen = redBands(display);
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
    return seen;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: x11_underline_check path/to/lorekeep\n");
        return 2;
    }
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        std::fprintf(stderr, "no X display (run under xvfb-run)\n");
        return 2;
    }
    char folder[] = "/tmp/lorekeep-x11-XXXXXX";
    if (mkdtemp(folder) == nullptr) {
        return 2;
    }
    const std::string misspelt = std::string(folder) + "/misspelt.sch";
    const std::string correct = std::string(folder) + "/correct.sch";
    writeSchema(misspelt, "La Tourr", "Le mondde est grand.");
    writeSchema(correct, "La Tourr", "Le monde est grand, l'homme aussi.\\n<br>\\nBonjour.");
    const int misspeltBands = bandsShown(argv[1], misspelt, 2, display);
    const int correctBands = bandsShown(argv[1], correct, 1, display);
    std::remove(misspelt.c_str());
    std::remove(correct.c_str());
    rmdir(folder);
    XCloseDisplay(display);
    std::printf(
        "red underlines: %d with a misspelt body (2 expected), %d with a correct one "
        "(1 expected, the title's)\n",
        misspeltBands, correctBands);
    return misspeltBands == 2 && correctBands == 1 ? 0 : 1;
}
