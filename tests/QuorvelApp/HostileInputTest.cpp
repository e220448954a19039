#include "QuorvelApp/QtText.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QLabel>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

class HostileInputTest : public WindowTest {};

TEST_F(HostileInputTest, NamesFromFilesAreShownAsTheirCharacters) {
    const std::string name = "<img src=x><b>hi";
    InstanceConfig config = minimalConfig(name);
    makeWrapper(folder / "x.app", config);
    open();
    window->content().sidebar().select((folder / "x.app").string());
    EXPECT_TRUE(shown(qtText(name)));
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
    }
    button(u"Delete"_s)->click();
    EXPECT_TRUE(shown(u"Delete “<img src=x><b>hi”?"_s));
}

TEST_F(HostileInputTest, SurvivesThousandsOfClonesWithNamesOfFileSize) {
    for (int number = 0; number < 2000; ++number) {
        InstanceConfig config = minimalConfig(std::string(250, 'x') + std::to_string(number));
        makeWrapper(folder / (std::to_string(number) + ".app"), config);
    }
    open();
    window->grab();
    EXPECT_EQ(stubs.model().clones().size(), 2000U);
    window->content().sidebar().select((folder / "1000.app").string());
    fs::remove_all(folder / "1000.app");
    stubs.model().reload();
    EXPECT_TRUE(shown(u"Select a clone to manage it."_s));
}

} // namespace
} // namespace quorvel::testing
