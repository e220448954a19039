#include "QuorvelApp/model/EditedClone.h"

#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Targets/AppEngine.h"
#include "tests/QuorvelApp/UnusualClones.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryHome.h"

#include <QImage>

#include <fstream>
#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class EditedCloneTest : public ::testing::Test {
protected:
    [[nodiscard]] InstanceRecord make(ShortcutKind kind) {
        WrapperFactory::Request request = unusualRequest(kind);
        if (kind == ShortcutKind::app) {
            request.targetApp = makeAppBundle(home_ / "Thing.app");
        }
        return makeClone(request);
    }

    // The clone after the form was changed and saved.
    static InstanceConfig saved(const fs::path& wrapper,
                                const std::function<void(NewCloneForm&)>& change) {
        const EditedClone clone = EditedClone::read(wrapper);
        NewCloneForm form = clone.form();
        change(form);
        return clone.save(clone.edits(form)).record.config;
    }

    [[nodiscard]] fs::path icon(const std::string& name, Qt::GlobalColor color) const {
        QImage picture(128, 128, QImage::Format_ARGB32);
        picture.fill(color);
        write(home_ / name, icnsOf({icnsEntry("ic07", pngOf(picture))}));
        return home_ / name;
    }

    TemporaryHome home_{};
};

TEST_F(EditedCloneTest, SavingWithoutAChangeChangesNoByte) {
    for (const ShortcutKind kind : allCases<ShortcutKind>()) {
        const std::string name(rawString(kind));
        const InstanceRecord record = make(kind);
        const auto before = treeOf(record.bundleURL);
        const EditedClone clone = EditedClone::read(record.bundleURL);
        EXPECT_THAT(clone.edits(clone.form()), IsEmpty()) << name;
        EXPECT_FALSE(clone.save(clone.edits(clone.form())).isChanged);
        EXPECT_EQ(treeOf(record.bundleURL), before) << name;
        fs::remove_all(record.bundleURL);
    }
}

TEST_F(EditedCloneTest, OnlyWhatIsChangedIsSaved) {
    const InstanceRecord record = make(ShortcutKind::command);
    InstanceConfig expected = record.config;
    const auto expect = [&](const std::function<void(NewCloneForm&)>& change) {
        EXPECT_EQ(saved(record.bundleURL, change).json(), expected.json());
    };
    expected.commandArgs.emplace_back("two words");
    expect([](NewCloneForm& form) { form.commandArgsText += " \"two words\""; });
    expected.commandPath = "/bin/false";
    expect([](NewCloneForm& form) { form.commandPathText = " /bin/false "; });
    expected.workingDirectory.reset();
    expect([](NewCloneForm& form) { form.workdir.clear(); });
    expected.extraArgs = {"a", "b c"};
    expect([](NewCloneForm& form) { form.argsText = "a \"b c\""; });
    expected.extraArgs.clear();
    expect([](NewCloneForm& form) { form.argsText = " "; });
    expected.strategy = Strategy::wrapperIdentity;
    expect([](NewCloneForm& form) { form.strategy = Strategy::wrapperIdentity; });
    expected.links = "inside";
    expect([](NewCloneForm& form) { form.links = "inside"; });
    expected.registerAsBrowser = !expected.registerAsBrowser;
    expected.shareUserFolders = !expected.shareUserFolders;
    expect([](NewCloneForm& form) {
        form.registerAsBrowser = !form.registerAsBrowser;
        form.shareUserFolders = !form.shareUserFolders;
    });
}

TEST_F(EditedCloneTest, EntriesThatTheFormCantShowStayWhenOthersChange) {
    const InstanceRecord record = make(ShortcutKind::web);
    const NewCloneForm form = EditedClone::read(record.bundleURL).form();
    EXPECT_TRUE(form.edited->hidesVariables);
    EXPECT_TRUE(form.edited->hidesEntries);
    InstanceConfig expected = record.config;
    expected.environment.erase("A");
    expected.environment["B"] = "new";
    expected.environment["C"] = "3";
    expected.infoPlistOverrides["Lines"] = "one";
    EXPECT_EQ(saved(record.bundleURL,
                    [](NewCloneForm& changed) {
                        changed.envText = "B=new\nC=3\nEMPTY=\nNBSP=a\u00A0b\n";
                        changed.plistText += "\nLines=one";
                    })
                  .json(),
              expected.json());
}

TEST_F(EditedCloneTest, OnlyTheChangedPartsOfTheLabelAreSaved) {
    const fs::path wrapper = make(ShortcutKind::file).bundleURL;
    using Position = IconLabel::Position;
    EXPECT_EQ(
        saved(wrapper, [](auto& form) { form.iconLabelPosition = Position::center; }).iconLabel,
        (IconLabel{" W ", "a1b2c3", Position::center}));
    EXPECT_EQ(saved(wrapper, [](auto& form) { form.iconLabelColor = "#FF0000"; }).iconLabel,
              (IconLabel{" W ", "#FF0000", Position::center}));
    EXPECT_EQ(saved(wrapper, [](auto& form) { form.iconLabelText = "X "; }).iconLabel,
              (IconLabel{"X", "#FF0000", Position::center}));
    EXPECT_EQ(saved(wrapper, [](auto& form) { form.iconLabelText = " "; }).iconLabel, std::nullopt);
    EXPECT_EQ(saved(wrapper,
                    [](auto& form) {
                        form.iconLabelText = "N";
                        form.iconLabelColor = "#00FF00";
                    })
                  .iconLabel,
              (IconLabel{"N", "#00FF00", Position::bottom}));
}

TEST_F(EditedCloneTest, TheIconIsKeptChangedAndGivenBack) {
    WrapperFactory::Request request = unusualRequest(ShortcutKind::web);
    request.iconLabel.reset();
    request.customIcon = icon("first.icns", Qt::blue);
    const InstanceRecord record = makeClone(request);
    const fs::path shown = record.iconURL().value();
    EXPECT_EQ(EditedClone::read(record.bundleURL).form().edited->ownIcon, shown);
    const fs::path second = icon("second.icns", Qt::red);
    (void)saved(record.bundleURL, [&](NewCloneForm& form) { form.customIcon = second; });
    EXPECT_TRUE(read(shown) == read(second));
    (void)saved(record.bundleURL, [](NewCloneForm& form) { form.clearIcon(); });
    EXPECT_FALSE(record.iconURL()) << "a site has none that is known";
    const NewCloneForm form = EditedClone::read(record.bundleURL).form();
    EXPECT_EQ(form.edited->ownIcon, std::nullopt);
}

TEST_F(EditedCloneTest, AChosenIconIsGivenUpBeforeTheClonesOwn) {
    NewCloneForm form;
    form.edited = EditedCloneFacts{.ownIcon = "/own"};
    form.customIcon = "/chosen";
    form.clearIcon();
    EXPECT_EQ(form.customIcon, std::nullopt);
    EXPECT_EQ(form.edited->ownIcon, fs::path("/own"));
    form.clearIcon();
    EXPECT_EQ(form.edited->ownIcon, std::nullopt);
}

TEST_F(EditedCloneTest, BlankArgumentsOfAnAppAreTheEnginesAgain) {
    const fs::path app = makeAppBundle(home_ / "Thing.app");
    fs::create_directories(app / "Contents/Frameworks/Electron Framework.framework");
    WrapperFactory::Request request;
    request.displayName = "Work";
    request.targetApp = app;
    const InstanceRecord record = makeClone(request);
    const std::vector<std::string> engines = record.config.extraArgs;
    ASSERT_THAT(engines, SizeIs(1));
    const auto blank = [](NewCloneForm& form) { form.argsText = " "; };
    const EditedClone fresh = EditedClone::read(record.bundleURL);
    EXPECT_EQ(fresh.form().argsText, engines.front());
    NewCloneForm cleared = fresh.form();
    blank(cleared);
    EXPECT_THAT(fresh.edits(cleared), IsEmpty()) << "they are the engine's already";
    const auto type = [](NewCloneForm& form) { form.argsText += " --incognito"; };
    EXPECT_EQ(saved(record.bundleURL, type).extraArgs,
              (std::vector<std::string>{engines.front(), "--incognito"}));
    EXPECT_EQ(EditedClone::read(record.bundleURL).settings.arguments, ArgumentSource::typed);
    EXPECT_EQ(saved(record.bundleURL, blank).extraArgs, engines);
    EXPECT_EQ(EditedClone::read(record.bundleURL).settings.arguments, ArgumentSource::engine);
}

TEST_F(EditedCloneTest, WhatWasChangedMeanwhileIsNotOverwritten) {
    const fs::path wrapper = make(ShortcutKind::web).bundleURL;
    const EditedClone clone = EditedClone::read(wrapper);
    (void)saved(wrapper, [](NewCloneForm& form) { form.hideDockIcon = false; });
    const auto before = treeOf(wrapper);
    NewCloneForm form = clone.form();
    form.webURL = "b.test";
    try {
        (void)clone.save(clone.edits(form));
        FAIL() << "saved";
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), HasSubstr("“Odd” has been changed in the meantime."));
    }
    EXPECT_EQ(treeOf(wrapper), before);
}

TEST_F(EditedCloneTest, OnAFullDiskTheCloneStaysAsItWas) {
    fs::create_directories(home_ / "Applications");
    const auto size = "size=" + std::to_string(fs::file_size(runnerProgram()) + 200'000);
    const auto problem = onSmallDisk(home_ / "Applications", size, [&]() -> std::string {
        WrapperFactory::Request request = unusualRequest(ShortcutKind::web);
        const fs::path wrapper = makeClone(request).bundleURL;
        const auto before = treeOf(wrapper);
        for (std::ofstream filler(home_ / "Applications/filler"); filler.good();) {
            filler << std::string(4096, 'x') << std::flush;
        }
        try {
            (void)saved(wrapper, [](NewCloneForm& form) { form.webURL = "b.test"; });
            return "saved";
        } catch (const std::exception& error) {
            return treeOf(wrapper) == before ? "" : std::string("changed: ") + error.what();
        }
    });
    if (!problem) {
        GTEST_SKIP() << "no private mounts here";
    }
    EXPECT_EQ(*problem, "");
}

TEST_F(EditedCloneTest, AnOpenQuoteAndNoTargetAreInvalid) {
    NewCloneForm form = EditedClone::read(make(ShortcutKind::command).bundleURL).form();
    EXPECT_TRUE(isValidEdit(form));
    NewCloneForm broken = form;
    broken.argsText += " \"";
    EXPECT_FALSE(isValidEdit(broken));
    broken = form;
    broken.commandArgsText += " \"";
    EXPECT_FALSE(isValidEdit(broken));
    broken = form;
    broken.commandPathText = " ";
    EXPECT_FALSE(isValidEdit(broken));
}

} // namespace
} // namespace quorvel::testing
