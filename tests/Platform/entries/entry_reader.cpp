// entry_reader FILE: prints the command of a desktop entry, one word per line. It links only what
// reads entries, and so shows what that needs.
#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/ExecLine.h"

#include <iostream>

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: " << arguments[0] << " FILE\n";
        return 2;
    }
    try {
        const quorvel::DesktopEntry entry = quorvel::readDesktopEntry(arguments[1]);
        const quorvel::ExecLine line = quorvel::ExecLine::parse(entry.exec);
        std::cout << line.program << "\n";
        for (const std::string& word : line.toArguments({}, {})) {
            std::cout << word << "\n";
        }
    } catch (const quorvel::Error& error) {
        std::cerr << error.description() << "\n";
        return 1;
    }
    return 0;
}
