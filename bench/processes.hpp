#pragma once

// What the benchmarks read of processes: memory figures from /proc, and
// programs started afresh on a chosen Qt platform.
#include <spawn.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

extern char** environ;

namespace lorekeep::bench {

// A memory figure of /proc/PROCESS/status in MB: "VmHWM:" the peak since the
// last reset, "VmRSS:" what is resident now. `process` is a pid or "self".
inline double statusMegabytes(const std::string& key, const std::string& process = "self") {
    std::ifstream status("/proc/" + process + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key)) {
            return std::stod(line.substr(key.size())) / 1024.0;
        }
    }
    return 0;
}

// Starts `args` with this environment but QT_QPA_PLATFORM=`platform`;
// 0 when it cannot be started.
inline pid_t startOnPlatform(std::vector<std::string> args, const std::string& platform) {
    std::vector<std::string> env{"QT_QPA_PLATFORM=" + platform};
    for (char** e = environ; *e != nullptr; ++e) {
        if (!std::string(*e).starts_with("QT_QPA_PLATFORM=")) {
            env.emplace_back(*e);
        }
    }
    std::vector<char*> argv;
    std::vector<char*> envp;
    for (auto& a : args) {
        argv.push_back(a.data());
    }
    for (auto& e : env) {
        envp.push_back(e.data());
    }
    argv.push_back(nullptr);
    envp.push_back(nullptr);
    pid_t pid = 0;
    return posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), envp.data()) == 0 ? pid : 0;
}

}  // namespace lorekeep::bench
