// The font configuration library keeps what it read to the end of the process.
extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}
