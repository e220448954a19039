#include "tests/Packaging/Commands.h"

#include <gmock/gmock.h>

#include <map>
#include <sstream>

namespace quorvel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A small tree of sources whose figures can be counted by hand.
class FiguresTest : public ::testing::Test {
protected:
    void source(const std::string& name, const std::string& text) { write(tree_ / name, text); }

    [[nodiscard]] Outcome figures(std::vector<std::string> arguments = {}) const {
        std::vector<std::string> command{QUORVEL_SOURCE "/scripts/figures", "--root",
                                         tree_.path().string()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return outcomeOf(command);
    }

    [[nodiscard]] std::string figure(const std::string& title) const {
        std::istringstream lines(figures().output);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with(title + " ")) {
                return line.substr(line.find_first_not_of(' ', title.size()));
            }
        }
        return "no such row";
    }

    [[nodiscard]] std::vector<std::string> places(const std::string& name) const {
        const Outcome listing = figures({"--list", name});
        EXPECT_EQ(listing.status, 0) << listing.output;
        std::istringstream lines(listing.output);
        std::vector<std::string> result;
        for (std::string line; std::getline(lines, line);) {
            result.push_back(line);
        }
        return result;
    }

    void expectFunctions(const std::string& count, const std::string& lines) const {
        EXPECT_EQ(figure("functions"), count);
        EXPECT_EQ(figure("function lines median / p90 / max"), lines);
    }

private:
    TemporaryFolder tree_;
};

TEST_F(FiguresTest, CountFilesAndLinesOfSourcesAndOfTests) {
    source("Platform/A.h", "one\ntwo\n");
    source("Platform/A.cpp", "one\ntwo\nthree\n");
    source("tests/Platform/ATest.cpp", "TEST(A, Works) {\n}\n");
    source("demo/demo.cpp", "neither\n");
    EXPECT_EQ(figure("source files / lines"), "2 / 5");
    EXPECT_EQ(figure("headers: lines median / p90 / max"), "2 / 2 / 2");
    EXPECT_EQ(figure("test files / lines"), "1 / 2");
    EXPECT_EQ(figure("test lines per source line"), "0.40");
    EXPECT_EQ(figure("tests"), "1");
}

TEST_F(FiguresTest, MeasureAFunctionFromItsSignatureToItsLastBrace) {
    source("Platform/A.cpp", "namespace q {\n"
                             "int little() { return 1; }\n"
                             "\n"
                             "// Not a part of it {\n"
                             "int\n"
                             "large(int a, std::map<int, int> b) {\n"
                             "    const char* brace = \"}\"; // }\n"
                             "    return a;\n"
                             "}\n"
                             "}\n");
    expectFunctions("2", "1 / 5 / 5 (large, Platform/A.cpp)");
    EXPECT_EQ(figure("most parameters"), "2 (large, Platform/A.cpp)");
}

TEST_F(FiguresTest, FindConstructorsWhoseMembersAreInitialisedInBraces) {
    source("Platform/A.cpp", "A::A(int size)\n"
                             "    : size_{size}, name_(\"a\") {\n"
                             "    if (size) {\n"
                             "    }\n"
                             "}\n"
                             "const std::map<int, int> table{{1, 2}};\n"
                             "const auto made = make({1, 2});\n");
    expectFunctions("1", "5 / 5 / 5 (A, Platform/A.cpp)");
}

TEST_F(FiguresTest, CountDecisionsButNotRvalueReferences) {
    source("Platform/A.cpp", "bool f(std::string&& text) {\n"
                             "    for (auto&& c : text) {\n"
                             "        if (c == 'a' && text != \"if\") { return true; }\n"
                             "    }\n"
                             "    return text.empty() ? true : false; // if\n"
                             "}\n");
    EXPECT_EQ(figure("complexity median / p90 / p99 / max"), "5 / 5 / 5 / 5 (f, Platform/A.cpp)");
}

TEST_F(FiguresTest, ListIncludesOfAHigherLayerAndOfAnotherFrontEnd) {
    source("Platform/A.h", "#include \"LaunchKit/B.h\"\n#include \"Platform/C.h\"\n");
    source("LaunchKit/B.h", "#include \"Platform/A.h\"\n");
    source("CommandLine/D.cpp", "#include \"QuorvelApp/E.h\"\n#include \"ProbeKit/F.h\"\n");
    EXPECT_THAT(places("upward"), ElementsAre("CommandLine/D.cpp: includes QuorvelApp/",
                                              "Platform/A.h: includes LaunchKit/"));
    EXPECT_EQ(figure("includes that go up"), "2");
}

TEST_F(FiguresTest, ListIncludesOfALayerThatIsNotBelow) {
    source("Presentation/A.h", "#include \"ProbeKit/B.h\"\n#include \"WebHost/C.h\"\n"
                               "#include \"LaunchKit/D.h\"\n");
    source("QuorvelApp/E.h", "#include \"WebHost/C.h\"\n#include \"Presentation/A.h\"\n");
    source("Runner/F.h", "#include \"WebHost/C.h\"\n#include \"ProbeKit/B.h\"\n");
    EXPECT_THAT(places("upward"),
                ElementsAre("Presentation/A.h: includes ProbeKit/",
                            "Presentation/A.h: includes WebHost/",
                            "QuorvelApp/E.h: includes WebHost/", "Runner/F.h: includes ProbeKit/"));
}

TEST_F(FiguresTest, ListLongFilesOfSourcesAndOfTests) {
    std::string text;
    for (int line = 0; line < 450; ++line) {
        text += "\n";
    }
    source("Platform/Long.cpp", text);
    source("tests/Platform/TooLongTest.cpp", text + "\n");
    EXPECT_THAT(places("files"), ElementsAre("tests/Platform/TooLongTest.cpp: 451"));
}

TEST_F(FiguresTest, ReadFunctionsBesideAnObjectiveCInterface) {
    source("WebHost/A_macos.h", "@class Other;\n@protocol Later;\n"
                                "@interface Thing : NSObject\n"
                                "@property(nonatomic, readonly) BOOL isRunning;\n"
                                "- (void)stop;\n@end\n\n"
                                "namespace q {\nint bare(int a);\n}\n");
    source("WebHost/A_macos.mm", "");
    EXPECT_THAT(places("undocumented"), ElementsAre("WebHost/A_macos.h:9: bare"));
}

TEST_F(FiguresTest, ListOperatingSystemCodeOutsidePlatform) {
    source("Platform/A.cpp", "#include <unistd.h>\n");
    source("Runner/View_linux.cpp", "#include <unistd.h>\n");
    source("LaunchKit/B.cpp", "#include <sys/stat.h>\n#include <string>\n");
    source("LaunchKit/C.cpp", "#if defined(__APPLE__)\n#endif\n#include <sys/inotify.h>\n");
    source("ProbeKit/D.cpp", "#include <sys/stat.h>\n#include <mach/mach.h>\n");
    EXPECT_THAT(places("system"),
                ElementsAre("LaunchKit/C.cpp: asks for the operating system while compiling",
                            "LaunchKit/C.cpp: includes <sys/inotify.h>",
                            "ProbeKit/D.cpp: includes <sys/stat.h>",
                            "ProbeKit/D.cpp: includes <mach/mach.h>"));
}

TEST_F(FiguresTest, ListHeadersThatAreImplementedInASourceOfAnotherName) {
    source("Platform/A.h", "namespace q {\nint here();\nint there();\n"
                           "class Thing {\npublic:\n    void go();\n};\n}\n");
    source("Platform/A_linux.cpp", "#include \"Platform/A.h\"\nint q::here() { return 1; }\n");
    source("Platform/B.cpp", "#include \"Platform/A.h\"\nnamespace q {\n"
                             "namespace {\nvoid here() {\n}\n}\n"
                             "int there() { return 2; }\nvoid Thing::go() {}\n}\n");
    EXPECT_THAT(places("elsewhere"), ElementsAre("Platform/A.h: there is in Platform/B.cpp",
                                                 "Platform/A.h: go is in Platform/B.cpp"));
    EXPECT_EQ(figure("headers / functions implemented elsewhere"), "1 / 2");
}

TEST_F(FiguresTest, ListHeadersWithoutASourceOfTheirOwnName) {
    const std::string declaration = "namespace q {\nint far();\n}\n";
    source("Platform/Owned.h", declaration);
    source("Platform/Owned_linux.cpp", "");
    source("Platform/files/Other.h", declaration);
    source("Platform/Other.cpp", "");
    source("Platform/Alone.h", declaration);
    source("Platform/NeedsNone.h", "inline int one() { return 1; }\n"
                                   "class A {\npublic:\n    virtual void draw() = 0;\n"
                                   "    A(const A&) = delete;\n    ~A() = default;\n"
                                   "Q_SIGNALS:\n    void changed();\n};\n");
    EXPECT_THAT(places("sourceless"),
                ElementsAre("Platform/Alone.h: far", "Platform/files/Other.h: far"));
    EXPECT_EQ(figure("headers without a source of their own name"), "2");
}

TEST_F(FiguresTest, ListPublicFunctionsWithoutAComment) {
    source("Platform/A.h", "/// A thing.\n"
                           "class A : public B {\n"
                           "    Q_OBJECT\n"
                           "public:\n"
                           "    explicit A(int size);\n"
                           "    ~A();\n"
                           "    A& operator=(const A&) = delete;\n"
                           "    [[nodiscard]] int size() const { return size_; }\n"
                           "    void draw() override;\n"
                           "    void bare(std::function<void(int)> then);\n"
                           "    /// Says so.\n"
                           "    template<class T> void told(T value);\n"
                           "    void told(int value);\n"
                           "    void beside(); ///< Says so.\n"
                           "Q_SIGNALS:\n"
                           "    void changed();\n"
                           "private:\n"
                           "    void hidden();\n"
                           "    struct Inner { int alsoHidden(); };\n"
                           "    int size_{1};\n"
                           "    std::function<void(int)> then_;\n"
                           "};\n"
                           "int free(int);\n");
    source("Platform/A.cpp", "int inASource(int a) { return a; }\n");
    EXPECT_THAT(places("undocumented"),
                ElementsAre("Platform/A.h:10: bare", "Platform/A.h:23: free"));
    EXPECT_EQ(figure("undocumented public functions / all of them"), "2 / 5");
}

TEST_F(FiguresTest, CountLinesThatOccurTwice) {
    const std::string six = "a = 1;\nb = 2;\nc = 3;\nd = 4;\ne = 5;\nf = 6;\n";
    source("Platform/A.cpp", "#include <a>\n" + six);
    source("LaunchKit/B.cpp", "g = 7;\n" + six);
    source("LaunchKit/C.cpp", six.substr(0, six.find('f')));
    EXPECT_EQ(figure("shared lines"), "12");
}

TEST_F(FiguresTest, CountRawNewAndDeleteButNotDeletedFunctions) {
    source("QuorvelApp/A.cpp", "auto* a = new QLabel(this); // new Line\nauto b = \"new Text\";\n");
    source("LaunchKit/B.cpp", "auto* a = new Thing;\ndelete a;\nB(const B&) = delete;\n");
    EXPECT_EQ(figure("raw new in QuorvelApp"), "1");
    EXPECT_EQ(figure("raw new in the other layers"), "1");
    EXPECT_EQ(figure("raw delete"), "1");
}

// What the rules in CONTRIBUTING.md forbid, in this tree itself.
TEST_F(FiguresTest, FindNothingForbiddenInThisTree) {
    const Outcome found =
        outcomeOf({QUORVEL_SOURCE "/scripts/figures", "--list", "files", "long", "upward", "system",
                   "elsewhere", "sourceless", "undocumented"});
    EXPECT_EQ(found.status, 0);
    // There the web host does without ICU, which is a hundred times as large.
    EXPECT_EQ(found.output,
              "Base/Text.h: firstCapture is in WebHost/Notifications/FirstCapture_macos.mm\n");
}

TEST_F(FiguresTest, KnowNoFolderThatIsNotALayer) {
    source("QuorvelApp/A.cpp", "#include \"Extras/B.h\"\n#include \"Base/C.h\"\n");
    source("Extras/B.h", "#include \"QuorvelApp/A.h\"\n");
    EXPECT_THAT(places("upward"), ElementsAre("QuorvelApp/A.cpp: includes Extras/"));
}

TEST_F(FiguresTest, ListThePlacesOfSeveralRows) {
    source("Platform/A.h", "#include \"LaunchKit/B.h\"\nint bare(int a);\n");
    EXPECT_THAT(figures({"--list", "upward", "undocumented"}).output,
                HasSubstr("Platform/A.h: includes LaunchKit/\nPlatform/A.h:2: bare\n"));
    EXPECT_THAT(figures({"--list", "upward", "beauty"}).output, HasSubstr("not beauty"));
}

TEST_F(FiguresTest, AcceptAnEmptyTree) {
    EXPECT_EQ(figures().status, 0);
    EXPECT_EQ(figure("source files / lines"), "0 / 0");
    EXPECT_THAT(places("long"), IsEmpty());
}

TEST_F(FiguresTest, RefuseAnUnknownList) {
    const Outcome refusal = figures({"--list", "beauty"});
    EXPECT_EQ(refusal.status, 2);
    EXPECT_THAT(refusal.output, HasSubstr("not beauty"));
}

} // namespace
} // namespace quorvel::testing
