#include "support/syscall_faults.hpp"

#include <dlfcn.h>
#include <unistd.h>

namespace lorekeep::testing {
namespace {
FsyncFault& fsyncFault() {
    static FsyncFault fault;
    return fault;
}
}  // namespace

void setFsyncFault(FsyncFault fault) {
    fsyncFault() = std::move(fault);
}

}  // namespace lorekeep::testing

extern "C" int fsync(int fd) {
    if (const auto& fault = lorekeep::testing::fsyncFault(); fault) {
        if (const auto result = fault(fd)) {
            return *result;
        }
    }
    using Real = int (*)(int);
    static const auto real = reinterpret_cast<Real>(dlsym(RTLD_NEXT, "fsync"));
    return real(fd);
}
