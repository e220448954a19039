#include "tests/Packaging/Commands.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const std::string sourceFolder = QUORVEL_SOURCE;

// AppStream metadata made from a changelog.
class ReleasesTest : public ::testing::Test {
protected:
    void SetUp() override {
        write(folder_ / "metainfo.xml", "<component>\n  <id>a</id>\n</component>\n");
    }

    [[nodiscard]] Outcome from(const std::string& changelog,
                               const std::string& version = "2.0.0") const {
        write(folder_ / "CHANGELOG.md", changelog);
        return outcomeOf({sourceFolder + "/tools/appstream-releases",
                          (folder_ / "CHANGELOG.md").string(), (folder_ / "metainfo.xml").string(),
                          version, "/dev/stdout"});
    }

    // The message, without the temporary folder's path.
    [[nodiscard]] std::string errorOf(const std::string& changelog) const {
        const Outcome outcome = from(changelog);
        EXPECT_EQ(outcome.status, 1);
        const std::string file = (folder_ / "CHANGELOG.md").string() + ": ";
        EXPECT_THAT(outcome.output, ::testing::StartsWith(file));
        return outcome.output.substr(std::min(file.size(), outcome.output.size()));
    }

    TemporaryFolder folder_;
};

TEST_F(ReleasesTest, AreListedWithTheirEntriesAndWhatIsUnreleasedIsNot) {
    const Outcome outcome =
        from("# Changelog\n\nAn introduction.\n\n"
             "## Unreleased\n\n- Not yet.\n\n"
             "## 1.10.0 - 2026-03-04\n\n- `a` & <b>; [c]\n  goes on.\n- Two.\n\n"
             "## 1.9.0 - 2026-01-02\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "<component>\n  <id>a</id>\n"
                              "  <releases>\n"
                              "    <release version=\"1.10.0\" date=\"2026-03-04\">\n"
                              "      <description>\n"
                              "        <ul>\n"
                              "          <li>a &amp; &lt;b&gt;; [c] goes on.</li>\n"
                              "          <li>Two.</li>\n"
                              "        </ul>\n"
                              "      </description>\n"
                              "    </release>\n"
                              "    <release version=\"1.9.0\" date=\"2026-01-02\">\n"
                              "    </release>\n"
                              "  </releases>\n"
                              "</component>\n");
}

TEST_F(ReleasesTest, AreNoneBeforeTheFirst) {
    EXPECT_EQ(from("# Changelog\n\n## Unreleased\n\n- Not yet.\n").output,
              "<component>\n  <id>a</id>\n</component>\n");
}

TEST_F(ReleasesTest, MustHaveAHeadingOfTheirForm) {
    EXPECT_EQ(errorOf("# Changelog\n\n## 1.0 - 2026-01-02\n"),
              "line 3: a section must be \"## Unreleased\" or \"## VERSION - YYYY-MM-DD\": "
              "## 1.0 - 2026-01-02\n");
    EXPECT_THAT(errorOf("## Unreleased\n### Added\n"), HasSubstr("line 2: a section must be"));
    EXPECT_THAT(errorOf("## 1.0.0 - 2026-01-02\n## Unreleased\n"), HasSubstr("line 2:"));
}

TEST_F(ReleasesTest, MustBeOnADayThatExists) {
    EXPECT_THAT(errorOf("## 1.0.0 - 2026-02-30\n"), HasSubstr("line 1: day is out of range"));
}

TEST_F(ReleasesTest, MustComeInOrderAndNotBeNewerThanTheProject) {
    EXPECT_THAT(errorOf("## 1.9.0 - 2026-01-02\n## 1.10.0 - 2026-01-03\n"),
                HasSubstr("line 2: 1.10.0 comes after 1.9.0"));
    EXPECT_THAT(errorOf("## 2.0.1 - 2026-01-02\n"), HasSubstr("line 1: 2.0.1 is newer"));
}

TEST_F(ReleasesTest, HoldEntriesOnly) {
    EXPECT_THAT(errorOf("## 1.0.0 - 2026-01-02\nProse.\n"), HasSubstr("line 2: neither an entry"));
    EXPECT_THAT(errorOf("## Unreleased\n* Star.\n"), HasSubstr("line 2: neither an entry"));
}

TEST_F(ReleasesTest, NeedMetadataWithAComponentToGoInto) {
    const std::string file = (folder_ / "metainfo.xml").string() + ": ";
    write(folder_ / "metainfo.xml", "<other/>\n");
    const Outcome without = from("# Changelog\n");
    EXPECT_EQ(without.status, 1);
    EXPECT_EQ(without.output, file + "no </component> to put the releases before\n");
    std::filesystem::remove(folder_ / "metainfo.xml");
    const Outcome missing = from("# Changelog\n");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.output, file + "No such file or directory\n");
}

TEST_F(ReleasesTest, OfThisTreeAreWellFormed) {
    const Outcome outcome =
        outcomeOf({sourceFolder + "/tools/appstream-releases", sourceFolder + "/CHANGELOG.md",
                   sourceFolder + "/packaging/app.quorvel.Quorvel.metainfo.xml", QUORVEL_VERSION,
                   "/dev/stdout"});
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, Not(HasSubstr("Unreleased")));
}

TEST_F(ReleasesTest, LicenceIsSaidToBeMissingUntilOneIsChosen) {
    const std::string statement = "No licence has been chosen yet";
    EXPECT_THAT(read(sourceFolder + "/README.md"), HasSubstr(statement));
    EXPECT_THAT(read(sourceFolder + "/packaging/app.quorvel.Quorvel.metainfo.xml"),
                HasSubstr(statement));
}

} // namespace
} // namespace quorvel::testing
