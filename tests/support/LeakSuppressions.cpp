// The font configuration library keeps what it read to the end of the process.
// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer looks for these names.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_options();

extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}

// A list of what it ignored would appear among a program's own lines.
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}
// NOLINTEND(bugprone-reserved-identifier)
