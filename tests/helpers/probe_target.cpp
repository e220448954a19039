// An application to be probed. Its actions are listed in its bundle, in Contents/Resources/plan:
// one step per line, in order; "~/" at the start of a path is $HOME.
//   write FILE          writes a file, with the folders above it
//   many FOLDER COUNT   writes that many files, a hundred per folder
//   report FILE         appends a line to a file
//   lock FILE           takes a lock, waiting while another process holds it
//   hand-over FILE      takes a lock, or quits if another process holds it
//   fork FILE           continues as a child, whose number is added to the file; the parent quits
//   helper              starts a copy of itself that waits
//   flood BYTES         prints that many bytes
//   ignore-termination, delete-home, crash, wait
//   exit STATUS
#include "Platform/files/FileWriting.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <sys/file.h>
#include <unistd.h>

namespace {
namespace fs = std::filesystem;

fs::path expanded(const std::string& path) {
    const char* home = std::getenv("HOME");
    return path.starts_with("~/") && home != nullptr ? home + path.substr(1) : path;
}

void writeFile(const fs::path& file) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "written by the probed application";
}

void writeMany(const fs::path& folder, int count) {
    for (int number = 0; number < count; ++number) {
        writeFile(folder / std::to_string(number / 100) / std::to_string(number));
    }
}

void report(const fs::path& file, const std::string& text) {
    std::ofstream(file, std::ios::app) << text << std::endl;
}

bool holdsLock(const fs::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

void waitForLock(const fs::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ::flock(descriptor, LOCK_EX);
}

[[noreturn]] void waitForever() {
    while (true) {
        ::pause();
    }
}

void flood(long bytes) {
    const std::string chunk(65536, 'x');
    for (long left = bytes; left > 0; left -= 65536) {
        std::cout.write(chunk.data(), std::min(left, 65536L));
    }
    std::cout.flush();
}

void take(const std::string& step, const std::string& argument, int count) {
    if (step == "write") {
        writeFile(expanded(argument));
    } else if (step == "many") {
        writeMany(expanded(argument), count);
    } else if (step == "report") {
        report(expanded(argument), "reported");
    } else if (step == "lock") {
        waitForLock(expanded(argument));
    } else if (step == "helper") {
        if (::fork() == 0) {
            waitForever();
        }
    } else if (step == "hand-over" && !holdsLock(expanded(argument))) {
        std::exit(0);
    } else if (step == "fork") {
        if (::fork() != 0) {
            std::exit(0);
        }
        report(expanded(argument), std::to_string(::getpid()));
    } else if (step == "flood") {
        flood(std::stol(argument));
    } else if (step == "ignore-termination") {
        std::signal(SIGTERM, SIG_IGN);
    } else if (step == "delete-home") {
        fs::remove_all(std::getenv("HOME"));
    } else if (step == "crash") {
        std::abort();
    } else if (step == "exit") {
        std::exit(std::stoi(argument));
    } else if (step == "wait") {
        waitForever();
    }
}

} // namespace

int main() {
    const fs::path bundle = fs::canonical("/proc/self/exe").parent_path().parent_path();
    std::ifstream plan(bundle / "Resources" / "plan");
    for (std::string line; std::getline(plan, line);) {
        // A path may contain spaces, so only what follows the last one is the count.
        const std::size_t space = line.find(' ');
        const std::string step = line.substr(0, space);
        std::string argument = space == std::string::npos ? "" : line.substr(space + 1);
        int count = 0;
        if (step == "many") {
            count = std::stoi(argument.substr(argument.rfind(' ') + 1));
            argument.resize(argument.rfind(' '));
        }
        take(step, argument, count);
    }
    return 0;
}
