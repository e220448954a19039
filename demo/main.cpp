// A small application with an account: it writes its settings, a note and a line of its log into
// its home, as applications do, and runs until it is asked to quit.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

std::string accountFrom(int argc, char** argv) {
    constexpr std::string_view option = "--account=";
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        if (argument.starts_with(option)) {
            return std::string(argument.substr(option.size()));
        }
    }
    return "nobody";
}

void write(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

volatile std::sig_atomic_t quitting = 0;

} // namespace

int main(int argc, char** argv) {
    const char* home = std::getenv("HOME");
    if (home == nullptr) {
        std::cerr << "Notes: the home folder is unknown\n";
        return 1;
    }
    const std::filesystem::path folder = home;
    const std::string account = accountFrom(argc, argv);
    std::signal(SIGTERM, [](int) { quitting = 1; });

    write(folder / "Library" / "Preferences" / "com.example.notes.json",
          "{ \"account\": \"" + account + "\" }\n");
    write(folder / "Documents" / "Welcome.txt", "This note belongs to " + account + ".\n");
    std::cout << "Notes: signed in as " << account << std::endl;

    while (quitting == 0) {
        ::usleep(50'000);
    }
    std::cout << "Notes: signed out" << std::endl;
    return 0;
}
