#include <iostream>
#include <string>
#include <vector>

#include "tool/cli.hpp"

int main(int argc, char* argv[]) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    return lorekeep::tool::runTool(arguments, std::cout, std::cerr);
}
