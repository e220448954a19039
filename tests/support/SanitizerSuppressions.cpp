// What the sanitizers find in other people's libraries.
// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizers look for these names.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_options();
extern "C" const char* __tsan_default_suppressions();

// The font configuration library keeps what it read to the end of the process.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}

// A list of what it ignored would appear among a program's own lines.
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}

// None of these is built with the sanitizer, so it can't see how they guard what they share. The
// C++ library counts who holds an exception; whoever is last deletes it.
extern "C" const char* __tsan_default_suppressions() {
    return "called_from_lib:libQt6Core.so\n"
           "called_from_lib:libQt6DBus.so\n"
           "called_from_lib:libQt6Gui.so\n"
           "called_from_lib:libQt6Widgets.so\n"
           "called_from_lib:libdbus-1.so\n"
           "called_from_lib:libgio-2.0.so\n"
           "called_from_lib:libglib-2.0.so\n"
           "called_from_lib:libgobject-2.0.so\n"
           "race:libQt6Core.so\n"
           "race:libQt6DBus.so\n"
           "race:libQt6Gui.so\n"
           "race:libQt6Widgets.so\n"
           "race:libQt6XcbQpa.so\n"
           "race:libdbus-1.so\n"
           "race:libgio-2.0.so\n"
           "race:libglib-2.0.so\n"
           "race:libgobject-2.0.so\n"
           "race:libharfbuzz.so\n"
           "race:std::runtime_error::~runtime_error\n"
           "mutex:libatspi.so\n"
           "mutex:libgobject-2.0.so\n";
}
// NOLINTEND(bugprone-reserved-identifier)
