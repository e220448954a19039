#include "Base/PathText.h"
#include "LinkDoor/LinkDoor.h"

int main(int argc, char** argv) {
    const std::vector<std::string> arguments{argv + (argc > 0 ? 1 : 0), argv + argc};
    const bool isXdgOpen = argc > 0 && quorvel::lastPathComponent(argv[0]) == "xdg-open";
    return isXdgOpen ? quorvel::openAsXdgOpen(arguments) : quorvel::openLinkOutside(arguments);
}
