#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "tool/cli.hpp"

int main(int argc, char* argv[]) {
    // A file-size limit would otherwise kill the program in the middle of a
    // save; ignored, the write fails and the save reports it.
    std::signal(SIGXFSZ, SIG_IGN);
    std::vector<std::string> arguments(argv + 1, argv + argc);
    const int status = lorekeep::tool::runTool(arguments, std::cout, std::cerr);
    // Findings that never reached their reader (a full disk, a closed pipe)
    // are not a clean check.
    if (!std::cout.flush()) {
        std::cerr << "lorekeep-tool: standard output cannot be written\n";
        return status == 0 ? 1 : status;
    }
    return status;
}
