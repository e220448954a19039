#include "QuorvelApp/model/NewCloneForm.h"

#include "QuorvelApp/model/FormTexts.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

const InstalledApp notes{.url = "/Applications/Notes.app", .name = "Notes", .bundleId = "a"};
const InstalledApp zoom{.url = "/Applications/zoom.app", .name = "zoom", .bundleId = "b"};

NewCloneForm formFor(ShortcutKind kind) {
    NewCloneForm form;
    form.shortcutType = kind;
    return form;
}

TEST(NewCloneFormTest, BeginsWithItsDefaults) {
    const NewCloneForm form;
    EXPECT_EQ(form.shortcutType, ShortcutKind::app);
    EXPECT_FALSE(form.selected);
    EXPECT_EQ(form.strategy, Strategy::homeOverride);
    EXPECT_TRUE(form.launchAfter);
    EXPECT_TRUE(form.shareUserFolders);
    EXPECT_FALSE(form.showAdvanced);
    EXPECT_EQ(form.iconLabelColor, "#FFFFFF");
    EXPECT_FALSE(form.detectNote);
    EXPECT_FALSE(form.canCreate());
}

TEST(NewCloneFormTest, HasATargetOnceTheFieldOfItsKindIsMoreThanBlank) {
    NewCloneForm form;
    EXPECT_FALSE(form.hasTarget());
    form.selected = notes;
    EXPECT_TRUE(form.hasTarget());
    const std::vector<std::pair<ShortcutKind, std::string NewCloneForm::*>> fields{
        {ShortcutKind::web, &NewCloneForm::webURL},
        {ShortcutKind::file, &NewCloneForm::filePath},
        {ShortcutKind::command, &NewCloneForm::commandPathText}};
    for (const auto& [kind, field] : fields) {
        form.shortcutType = kind;
        EXPECT_FALSE(form.hasTarget());
        form.*field = " \t ";
        EXPECT_FALSE(form.hasTarget());
        form.*field = " x";
        EXPECT_TRUE(form.hasTarget());
    }
}

TEST(NewCloneFormTest, CanCreateWithTargetAndNameUnlessACreationIsUnderWay) {
    NewCloneForm form;
    form.selected = notes;
    EXPECT_FALSE(form.canCreate());
    form.cloneName = "  ";
    EXPECT_FALSE(form.canCreate());
    form.cloneName = "Work";
    EXPECT_TRUE(form.canCreate());
    form.creating = true;
    EXPECT_FALSE(form.canCreate());
    form.creating = false;
    form.selected.reset();
    EXPECT_FALSE(form.canCreate());
}

TEST(NewCloneFormTest, SaysWhereTheCloneIsSaved) {
    NewCloneForm form;
    EXPECT_EQ(form.savedToText(), "Saved to ~/Applications/Name.app");
    form.cloneName = " Work\t";
    EXPECT_EQ(form.cloneNameOrPlaceholder(), "Work");
    EXPECT_EQ(form.savedToText(), "Saved to ~/Applications/Work.app");
}

TEST(NewCloneFormTest, SelectingAnAppNamesTheCloneAndResetsTheAdvancedOptions) {
    NewCloneForm form;
    form.cloneName = "typed by hand";
    form.strategy = Strategy::wrapperIdentity;
    form.detectNote = "old";
    form.selectedSandboxed = true;
    form.dataPath = form.argsText = form.envText = form.plistText = form.iconLabelText = "x";
    form.customIcon = "/x.icns";
    form.hideDockIcon = form.registerAsBrowser = form.openWithPassthrough = true;
    form.menuBarIcon = form.menuBarIconTemplate = true;
    form.iconLabelColor = "#FF0000";
    form.shareUserFolders = false;
    form.launchAfter = false;
    form.showAdvanced = true;
    form.webURL = "kept";
    form.select(notes, "Notes (2)");
    EXPECT_EQ(form.selected, notes);
    EXPECT_EQ(form.cloneName, "Notes (2)");
    EXPECT_EQ(form.strategy, Strategy::homeOverride);
    EXPECT_EQ(form.strategyCaption(), "Checking how Notes stores its data\u2026");
    EXPECT_FALSE(form.selectedSandboxed);
    const WrapperFactory::Request request = form.makeRequest();
    EXPECT_FALSE(request.instanceHome);
    EXPECT_FALSE(request.extraArgs);
    EXPECT_THAT(request.environment, IsEmpty());
    EXPECT_THAT(request.infoPlistOverrides, IsEmpty());
    EXPECT_FALSE(request.iconLabel);
    EXPECT_FALSE(request.customIcon);
    EXPECT_FALSE(request.hideWrapperIcon);
    EXPECT_FALSE(request.registerAsBrowser);
    EXPECT_FALSE(request.openWithPassthrough);
    EXPECT_FALSE(request.menuBarIcon);
    EXPECT_FALSE(request.menuBarIconTemplate);
    EXPECT_TRUE(request.shareUserFolders);
    EXPECT_EQ(form.iconLabelColor, "#FFFFFF");
    EXPECT_FALSE(form.launchAfter) << "kept";
    EXPECT_TRUE(form.showAdvanced) << "kept";
    EXPECT_EQ(form.webURL, "kept");
}

TEST(NewCloneFormTest, SelectingAnAppResetsEverySwitch) {
    for (const CloneSwitch& each : cloneSwitches) {
        NewCloneForm form;
        form.*each.member = !each.defaultValue();
        EXPECT_NE(each.valueIn(form.makeRequest()), each.defaultValue()) << each.key;
        form.select(notes, "Notes");
        EXPECT_EQ(each.valueIn(form.makeRequest()), each.defaultValue()) << each.key;
    }
}

TEST(NewCloneFormTest, LinksAreRequestedAndResetWithTheRest) {
    NewCloneForm form;
    EXPECT_EQ(form.makeRequest().links, std::nullopt);
    form.links = "inside";
    EXPECT_EQ(form.makeRequest().links, "inside");
    form.select(notes, "Notes");
    EXPECT_EQ(form.makeRequest().links, std::nullopt);
}

TEST(NewCloneFormTest, ShowsTheWholeCatalogForABlankSearch) {
    NewCloneForm form;
    EXPECT_THAT(form.filtered({notes, zoom}), ElementsAre(notes, zoom));
    form.search = "  ";
    EXPECT_THAT(form.filtered({notes, zoom}), ElementsAre(notes, zoom));
}

TEST(NewCloneFormTest, SearchesNamesIgnoringTheirCase) {
    NewCloneForm form;
    form.search = " NOTES ";
    EXPECT_THAT(form.filtered({notes, zoom}), ElementsAre(notes));
    form.search = "/Applications";
    EXPECT_THAT(form.filtered({notes, zoom}), IsEmpty()) << "paths are not searched";
}

TEST(NewCloneFormTest, SaysThatNothingMatchesWithTheTextAsTyped) {
    NewCloneForm form;
    EXPECT_EQ(form.noAppsText(), "No apps found.");
    form.search = " xyz ";
    EXPECT_EQ(form.noAppsText(), "No apps match \u201c xyz \u201d.");
}

TEST(NewCloneFormTest, AsksForAnAppByItsBundle) {
    NewCloneForm form;
    EXPECT_FALSE(form.makeRequest().targetApp);
    form.selected = notes;
    form.cloneName = " Work ";
    const auto request = form.makeRequest();
    EXPECT_EQ(request.kind, ShortcutKind::app);
    EXPECT_EQ(request.targetApp, notes.url);
    EXPECT_EQ(request.displayName, "Work");
    EXPECT_FALSE(request.outputDir);
    EXPECT_FALSE(request.bundleId);
    EXPECT_FALSE(request.url);
    EXPECT_FALSE(request.openPath);
    EXPECT_FALSE(request.commandPath);
}

TEST(NewCloneFormTest, AsksForAWebAddressAsTyped) {
    NewCloneForm form = formFor(ShortcutKind::web);
    form.selected = notes;
    form.webURL = " example.com ";
    form.commandArgsText = "a b";
    const auto request = form.makeRequest();
    EXPECT_EQ(request.url, "example.com");
    EXPECT_FALSE(request.targetApp);
    EXPECT_THAT(request.commandArgs, IsEmpty());
}

TEST(NewCloneFormTest, AsksForAFile) {
    NewCloneForm form = formFor(ShortcutKind::file);
    form.filePath = " /a b.pdf\t";
    EXPECT_EQ(form.makeRequest().openPath, "/a b.pdf");
}

TEST(NewCloneFormTest, RequestsACommandWithItsArguments) {
    NewCloneForm form = formFor(ShortcutKind::command);
    form.commandPathText = " /bin/ls ";
    form.commandArgsText = " -l\t-a \n x";
    const auto request = form.makeRequest();
    EXPECT_EQ(request.commandPath, "/bin/ls");
    EXPECT_THAT(request.commandArgs, ElementsAre("-l", "-a", "x"));
    EXPECT_FALSE(request.workingDirectory);
}

TEST(NewCloneFormTest, PassesAWorkingDirectoryOnUntrimmed) {
    NewCloneForm form = formFor(ShortcutKind::command);
    form.workdir = " /tmp";
    EXPECT_EQ(form.makeRequest().workingDirectory, " /tmp");
    form.workdir = "  ";
    EXPECT_EQ(form.makeRequest().workingDirectory, "  ");
    form.shortcutType = ShortcutKind::web;
    EXPECT_FALSE(form.makeRequest().workingDirectory);
}

TEST(NewCloneFormTest, ABlankDataLocationCountsAsNone) {
    NewCloneForm form;
    form.dataPath = "   ";
    EXPECT_FALSE(form.makeRequest().instanceHome);
    form.dataPath = " /data ";
    EXPECT_EQ(form.makeRequest().instanceHome, "/data");
}

TEST(NewCloneFormTest, NoArgumentsMeansTheDefaultArguments) {
    NewCloneForm form;
    form.argsText = " \n ";
    EXPECT_FALSE(form.makeRequest().extraArgs);
    form.argsText = "--a  --b\tc";
    EXPECT_THAT(*form.makeRequest().extraArgs, ElementsAre("--a", "--b", "c"));
    form.argsText = "\"two words\"";
    EXPECT_THAT(*form.makeRequest().extraArgs, ElementsAre("\"two", "words\""));
    form.shortcutType = ShortcutKind::web;
    EXPECT_TRUE(form.makeRequest().extraArgs) << "for every kind";
}

TEST(NewCloneFormTest, MakesAnIconLabelOfTextAndColor) {
    NewCloneForm form;
    form.iconLabelText = "  ";
    EXPECT_FALSE(form.makeRequest().iconLabel);
    form.iconLabelText = " WORK ";
    EXPECT_EQ(form.makeRequest().iconLabel,
              (IconLabel{
                  .text = "WORK", .colorHex = "#FFFFFF", .position = IconLabel::Position::bottom}));
    form.iconLabelColor = "#FF8000";
    EXPECT_EQ(form.makeRequest().iconLabel->colorHex, "#FF8000");
}

TEST(NewCloneFormTest, PassesEverySwitchOn) {
    NewCloneForm form;
    form.hideDockIcon = form.registerAsBrowser = form.openWithPassthrough = true;
    form.menuBarIcon = form.menuBarIconTemplate = true;
    form.shareUserFolders = false;
    form.customIcon = "/x.icns";
    form.strategy = Strategy::wrapperIdentity;
    form.shortcutType = ShortcutKind::web;
    form.envText = "A=1";
    form.plistText = "LSUIElement=true";
    const auto request = form.makeRequest();
    EXPECT_TRUE(request.hideWrapperIcon);
    EXPECT_TRUE(request.registerAsBrowser);
    EXPECT_TRUE(request.openWithPassthrough);
    EXPECT_TRUE(request.menuBarIcon);
    EXPECT_TRUE(request.menuBarIconTemplate);
    EXPECT_FALSE(request.shareUserFolders) << "also for kinds that hide the choice";
    EXPECT_EQ(request.customIcon, "/x.icns");
    EXPECT_EQ(request.strategy, Strategy::wrapperIdentity) << "also for kinds that hide it";
    EXPECT_THAT(request.environment, ElementsAre(Pair("A", "1")));
    EXPECT_THAT(request.infoPlistOverrides, ElementsAre(Pair("LSUIElement", "true")));
}

TEST(NewCloneFormTest, KeepsTheTemplateChoiceWithoutAMenuBarIcon) {
    NewCloneForm form;
    form.menuBarIconTemplate = true;
    EXPECT_FALSE(form.makeRequest().menuBarIcon);
    EXPECT_TRUE(form.makeRequest().menuBarIconTemplate);
}

TEST(NewCloneFormTest, ParseKeyValuesSkipsWhatIsNotAnEntryAndKeepsTheLastOfAKey) {
    EXPECT_THAT(parseKeyValues("A=1\n\n B = 2 \nnoequals\n=x\nA=3"),
                ElementsAre(Pair("A", "3"), Pair("B", " 2 ")));
    EXPECT_THAT(parseKeyValues(" \t=x"), IsEmpty());
    EXPECT_THAT(parseKeyValues(""), IsEmpty());
}

TEST(NewCloneFormTest, ParseKeyValuesSplitsAtTheFirstEqualsSign) {
    EXPECT_THAT(parseKeyValues("KEY=a=b"), ElementsAre(Pair("KEY", "a=b")));
    EXPECT_THAT(parseKeyValues("KEY="), ElementsAre(Pair("KEY", "")));
}

TEST(NewCloneFormTest, ParseKeyValuesKnowsEveryLineBreak) {
    EXPECT_THAT(parseKeyValues("A=1\rB=2\r\nC=3\vD=4\fE=5\u0085F=6\u2028G=7\u2029H=8"),
                ElementsAre(Pair("A", "1"), Pair("B", "2"), Pair("C", "3"), Pair("D", "4"),
                            Pair("E", "5"), Pair("F", "6"), Pair("G", "7"), Pair("H", "8")));
}

TEST(NewCloneFormTest, AutomaticNamingCapitalizesTheWordsOfAHost) {
    NewCloneForm form = formFor(ShortcutKind::web);
    form.webURL = "www.mail.host.test";
    form.autoNameIfNeeded();
    EXPECT_EQ(form.cloneName, "Mail.Host.Test");
}

struct Address {
    std::string typed;
    std::string name;
};

TEST(NewCloneFormTest, AutomaticNamingTakesTheHostAlone) {
    for (const Address& address :
         std::vector<Address>{{"https://mail.example.org/inbox?x=www.a.b", "Mail.Example.Org"},
                              {"http://user:pw@www.example.org:8080/", "Example.Org"},
                              {"WWW-docs.Example.ORG", "Www-Docs.Example.Org"},
                              {"ftp://files.example.org", "Files.Example.Org"},
                              {"a b", ""},
                              {"https://", ""},
                              {"", ""},
                              {"   ", ""},
                              {"file:///etc/passwd", ""},
                              {"http://[::1]/", "::1"}}) {
        NewCloneForm form = formFor(ShortcutKind::web);
        form.webURL = address.typed;
        form.autoNameIfNeeded();
        EXPECT_EQ(form.cloneName, address.name) << address.typed;
    }
}

TEST(NewCloneFormTest, AutomaticNamingLeavesANameAlone) {
    NewCloneForm form = formFor(ShortcutKind::web);
    form.cloneName = "Mine";
    form.webURL = "example.com";
    form.autoNameIfNeeded();
    EXPECT_EQ(form.cloneName, "Mine");
    form.cloneName = " ";
    form.autoNameIfNeeded();
    EXPECT_EQ(form.cloneName, "Example.Com") << "a blank name counts as none";
}

TEST(NewCloneFormTest, AutomaticNamingNamesACommandAfterItsFile) {
    for (const Address& path : std::vector<Address>{{"/usr/local/bin/my-tool", "My-Tool"},
                                                    {"my_script.sh", "My_Script.Sh"},
                                                    {"/opt/o'neil's/it's", "It's"},
                                                    {"/bin/", "Bin"},
                                                    {"/usr/bin/\u00e9COLE", "\u00c9cole"},
                                                    {"", ""}}) {
        NewCloneForm form = formFor(ShortcutKind::command);
        form.chooseCommand(path.typed);
        EXPECT_EQ(form.cloneName, path.name) << path.typed;
        EXPECT_EQ(form.commandPathText, path.typed);
    }
}

TEST(NewCloneFormTest, AutomaticNamingDoesNothingForAppsAndFiles) {
    for (const ShortcutKind kind : {ShortcutKind::app, ShortcutKind::file}) {
        NewCloneForm form = formFor(kind);
        form.webURL = "example.com";
        form.commandPathText = "/bin/ls";
        form.filePath = "/a.pdf";
        form.autoNameIfNeeded();
        EXPECT_EQ(form.cloneName, "");
    }
}

TEST(NewCloneFormTest, ChoosingAFileNamesANamelessCloneAfterItsStem) {
    NewCloneForm form = formFor(ShortcutKind::file);
    form.chooseFile("/Users/u/Report.pdf");
    EXPECT_EQ(form.filePath, "/Users/u/Report.pdf");
    EXPECT_EQ(form.cloneName, "Report");
    form.chooseFile("/Users/u/other.txt");
    EXPECT_EQ(form.cloneName, "Report") << "a name stays";
}

TEST(NewCloneFormTest, ChoosingADataFolderAppendsTheClonesName) {
    NewCloneForm form;
    form.chooseDataFolder("/Volumes/Ext");
    EXPECT_EQ(form.dataPath, "/Volumes/Ext/Name");
    form.cloneName = " Work ";
    form.chooseDataFolder("/Volumes/Ext/");
    EXPECT_EQ(form.dataPath, "/Volumes/Ext/Work");
    form.chooseDataFolder("/");
    EXPECT_EQ(form.dataPath, "/Work");
}

TEST(NewCloneFormTest, DetectionTakesTheRecommendationAndSaysSo) {
    NewCloneForm form;
    form.detectNote = "old";
    form.beginDetecting();
    EXPECT_TRUE(form.detecting);
    EXPECT_FALSE(form.detectNote);
    form.detected(Strategy::containerRedirect);
    EXPECT_FALSE(form.detecting);
    EXPECT_EQ(form.strategy, Strategy::containerRedirect);
    EXPECT_EQ(form.strategyCaption(), "Detected: Container redirect (B).");
}

TEST(NewCloneFormTest, DetectionLeavesTheStrategyForAnAppThatResists) {
    NewCloneForm form;
    form.strategy = Strategy::wrapperIdentity;
    form.beginDetecting();
    form.detected(Strategy::unsupported);
    EXPECT_EQ(form.strategy, Strategy::wrapperIdentity);
    EXPECT_EQ(form.strategyCaption(),
              "This app resists cloning (singleton). It may not stay isolated.");
    EXPECT_FALSE(form.detecting);
}

TEST(NewCloneFormTest, DetectionAddsTheVariablesThatAreNotSet) {
    NewCloneForm form;
    form.addEnvironment({{"A", "1"}, {"B", "x=y"}});
    EXPECT_EQ(form.envText, "A=1\nB=x=y");
    form.envText = "B=mine";
    form.addEnvironment({{"A", "1"}, {"B", "2"}});
    EXPECT_EQ(form.envText, "B=mine\nA=1");
    form.addEnvironment({{"C", "3"}});
    form.envText += "\n";
    form.addEnvironment({{"D", "4"}});
    EXPECT_EQ(form.envText, "B=mine\nA=1\nC=3\nD=4");
}

TEST(NewCloneFormTest, DetectionShowsAFailure) {
    NewCloneForm form;
    form.strategyReason = "reason";
    EXPECT_EQ(form.strategyCaption(), "reason");
    form.beginDetecting();
    form.detectionFailed("Not a readable .app: /x");
    EXPECT_EQ(form.strategyCaption(), "Couldn't detect: Not a readable .app: /x");
    EXPECT_FALSE(form.detecting);
}

} // namespace
} // namespace quorvel::testing
