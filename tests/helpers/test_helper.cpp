// Does what a test needs in another process, one step per word, in order:
//   print TEXT, complain TEXT   a line on standard output, standard error
//   arguments                   prints the number of arguments after this word, then each on a line
//   environment                 prints the environment, unsorted
//   directory                   prints the working directory
//   descriptors                 prints the numbers of the open file descriptors
//   write FILE TEXT             writes a file; "~/" at its start is $HOME
//   flood BYTES                 prints that many bytes
//   exit STATUS, signal N       ends with that status or signal
//   wait                        waits for a signal to end it
//   trap FILE                   from now on SIGTERM, SIGINT and SIGHUP write their number into FILE
//                               and end the process with status 0
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fstream>
#include <iostream>
#include <string>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace {

std::string trapFile;

std::string expanded(const std::string& path) {
    const char* home = std::getenv("HOME");
    return path.starts_with("~/") && home != nullptr ? home + path.substr(1) : path;
}

void onSignal(int signal) {
    std::ofstream(trapFile) << signal;
    std::_Exit(0);
}

void printDescriptors() {
    DIR* folder = ::opendir("/proc/self/fd");
    const int own = folder == nullptr ? -1 : ::dirfd(folder);
    while (const dirent* entry = folder == nullptr ? nullptr : ::readdir(folder)) {
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && name != std::to_string(own)) {
            std::cout << name << '\n';
        }
    }
    if (folder != nullptr) {
        ::closedir(folder);
    }
}

} // namespace

int main(int argc, char** argv) {
    for (int index = 1; index < argc; ++index) {
        const std::string step = argv[index];
        const auto next = [&] { return std::string(index + 1 < argc ? argv[++index] : ""); };
        if (step == "print") {
            std::cout << next() << std::endl;
        } else if (step == "complain") {
            std::cerr << next() << std::endl;
        } else if (step == "arguments") {
            std::cout << argc - index - 1 << '\n';
            while (index + 1 < argc) {
                std::cout << next() << '\n';
            }
        } else if (step == "environment") {
            for (char** entry = environ; *entry != nullptr; ++entry) {
                std::cout << *entry << '\n';
            }
        } else if (step == "directory") {
            char folder[4096];
            std::cout << (::getcwd(folder, sizeof folder) != nullptr ? folder : "?") << std::endl;
        } else if (step == "descriptors") {
            printDescriptors();
        } else if (step == "write") {
            const std::string file = expanded(next());
            std::ofstream(file) << next();
        } else if (step == "flood") {
            const std::string chunk(65536, 'x');
            for (long left = std::stol(next()); left > 0; left -= 65536) {
                std::cout.write(chunk.data(), std::min(left, 65536L));
            }
        } else if (step == "exit") {
            std::cout.flush();
            return std::stoi(next());
        } else if (step == "signal") {
            std::cout.flush();
            ::raise(std::stoi(next()));
        } else if (step == "trap") {
            trapFile = expanded(next());
            for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
                std::signal(signal, onSignal);
            }
        } else if (step == "wait") {
            std::cout.flush();
            while (true) {
                ::pause();
            }
        }
    }
    return 0;
}
