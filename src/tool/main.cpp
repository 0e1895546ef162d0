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
    return lorekeep::tool::runTool(arguments, std::cout, std::cerr);
}
