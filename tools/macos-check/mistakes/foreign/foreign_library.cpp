// Links, but only with a library that no other machine has.
extern "C" int foreign();

int call() {
    return foreign();
}
