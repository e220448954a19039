#include "Platform/MainExecutable.h"
#include "Runner/Runner.h"

int main(int argc, char** argv) {
    return quorvel::runClone(quorvel::mainExecutable(), {argv + (argc > 0 ? 1 : 0), argv + argc});
}
