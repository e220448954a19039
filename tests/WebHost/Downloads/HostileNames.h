#pragma once

#include <string>
#include <utility>
#include <vector>

namespace quorvel::testing {

/// What a server may call a file, and what it must be called on the disk.
inline std::vector<std::pair<std::string, std::string>> hostileNames() {
    const std::string umlauts = [] {
        std::string text;
        for (int count = 0; count < 200; ++count) {
            text += "ä";
        }
        return text;
    }();
    return {
        {"", "download"},
        {".", "download"},
        {"..", "download"},
        {"...", "download"},
        {"/", "download"},
        {"//", "download"},
        {"   ", "download"},
        {" . ", "download"},
        {"../../x/evil.sh", "evil.sh"},
        {"/etc/passwd", "passwd"},
        {"..\\..\\evil.exe", "evil.exe"},
        {"C:\\Windows\\evil.exe", "evil.exe"},
        {"a/", "download"},
        {".bashrc", "bashrc"},
        {"..bashrc", "bashrc"},
        {".config/autostart/x.desktop", "x.desktop"},
        {" .profile", "profile"},
        {"-rf", "_rf"},
        {"--help", "_-help"},
        {"~", "_"},
        {"~root", "_root"},
        {"a\nb", "ab"},
        {"a\tb.txt", "ab.txt"},
        {"a\x1b[31mb", "a[31mb"},
        {"a\x7f.txt", "a.txt"},
        {std::string("a\0b.txt", 7), "ab.txt"},
        {"evil\u202etxt.exe", "eviltxt.exe"},
        {"a\u2066b\u2069.txt", "ab.txt"},
        {"a\u200bb.txt", "ab.txt"},
        {"\ufeffa.txt", "a.txt"},
        {"\u2028a.txt", "a.txt"},
        {"a\xff\xfe.txt", "a.txt"},
        {"\xc3", "download"},
        {"a*?\"<>|:b", "a_______b"},
        {"a:stream.txt", "a_stream.txt"},
        {"a.txt.", "a.txt"},
        {"a.txt ", "a.txt"},
        {std::string(300, 'x'), std::string(240, 'x')},
        {std::string(300, 'x') + ".pdf", std::string(236, 'x') + ".pdf"},
        {"x." + std::string(300, 'y'), "x." + std::string(238, 'y')},
        {umlauts + ".txt", umlauts.substr(0, 236) + ".txt"},
        {"x" + umlauts + ".txt", "x" + umlauts.substr(0, 234) + ".txt"},
    };
}

} // namespace quorvel::testing
