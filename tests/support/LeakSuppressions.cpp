// The font configuration library keeps what it read to the end of the process.
// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer looks for this name.
extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}
// NOLINTEND(bugprone-reserved-identifier)
