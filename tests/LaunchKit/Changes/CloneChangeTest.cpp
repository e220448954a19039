#include "LaunchKit/Changes/CloneChange.h"

#include "LaunchKit/Changes/CloneCreation.h"
#include "LaunchKit/Changes/CloneRevision.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/RunnerLocator.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "LaunchKit/Wrappers/WrapperNotes.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PropertyListFile.h"
#include "tests/LaunchKit/Changes/ChangedClones.h"
#include "tests/support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <future>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

// What several processes count, by kind.
class SharedCounts {
public:
    SharedCounts()
        : counts_(static_cast<std::atomic<int>*>(
              ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
    SharedCounts(const SharedCounts&) = delete;
    SharedCounts& operator=(const SharedCounts&) = delete;
    ~SharedCounts() { ::munmap(counts_, size); }

    std::atomic<int>& operator[](int kind) const { return counts_[kind]; }

private:
    static constexpr std::size_t size = 4096;
    std::atomic<int>* counts_;
};

class CloneChangeTest : public ::testing::Test, protected ChangedClones {};

TEST_F(CloneChangeTest, AnEditChangesWhatItSaysAndNothingElse) {
    const fs::path wrapper = make(webRequest());
    const auto before = treeOf(wrapper);
    const ChangedClone changed =
        editClone(wrapper, [](CloneSettings& s) { s.config.url = "https://new.test"; });
    EXPECT_TRUE(changed.isChanged);
    EXPECT_EQ(changed.record.config.url, "https://new.test");
    auto after = treeOf(wrapper);
    EXPECT_THAT(after["Contents/Resources/instance.json"], HasSubstr("new.test"));
    after["Contents/Resources/instance.json"] = before.at("Contents/Resources/instance.json");
    EXPECT_TRUE(after == before);
    EXPECT_EQ(std::distance(fs::directory_iterator(home / "Applications"), {}), 1);
}

TEST_F(CloneChangeTest, ACloneThatContainsWhatItRunsGetsTheProgramForTheMenuBar) {
    const fs::path wrapper = make(appRequest());
    const auto change = [&](bool isSelfContained, bool hasIcon, std::optional<fs::path> runner) {
        const CloneRevision clone(wrapper);
        WrapperRevision::Changes changes{.settings = clone.old().settings(),
                                         .isSelfContained = isSelfContained};
        changes.settings.config.menuBarIcon = hasIcon;
        changes.settings.runner = std::move(runner);
        return clone.replace(changes);
    };
    const fs::path program = statusItemOf(wrapper);
    (void)change(false, true, std::nullopt);
    EXPECT_FALSE(fs::exists(program));
    (void)change(true, false, std::nullopt);
    EXPECT_FALSE(fs::exists(program));
    (void)change(true, true, std::nullopt);
    const auto installed = RunnerLocator::locate(ApplicationFolders::current());
    ASSERT_TRUE(installed);
    EXPECT_TRUE(read(program) == read(installed->parent_path() / statusItemProgram));

    write(home / "new/runner", "runner");
    write(home / "new/quorvel-status-item", "program");
    (void)change(true, true, home / "new/runner");
    EXPECT_EQ(read(program), "program");
    EXPECT_EQ(fs::status(program).permissions(), fs::perms{0755});
    (void)change(true, false, std::nullopt);
    (void)change(true, true, std::nullopt);
    EXPECT_EQ(read(program), "program") << "it is there already";
}

TEST_F(CloneChangeTest, WhatIsNotForEditingStays) {
    const fs::path wrapper = make(webRequest());
    const InstanceConfig old = InstanceRegistry().record(wrapper)->config;
    const ChangedClone changed = editClone(wrapper, [](CloneSettings& s) {
        s.config.displayName = "Another";
        s.config.bundleId = "another";
        s.config.kind = ShortcutKind::file;
        s.config.targetAppPath = "/another";
        s.config.instanceHome = "/another";
    });
    EXPECT_FALSE(changed.isChanged);
    EXPECT_EQ(InstanceRegistry().record(wrapper)->config.json(), old.json());
}

TEST_F(CloneChangeTest, AnEditThatChangesNothingWritesNothing) {
    const fs::path wrapper = make(webRequest());
    const auto written = fs::last_write_time(wrapper / "Contents/Info.plist");
    EXPECT_FALSE(editClone(wrapper, [](CloneSettings&) {}).isChanged);
    EXPECT_EQ(fs::last_write_time(wrapper / "Contents/Info.plist"), written);
}

TEST_F(CloneChangeTest, AnEditThatThrowsChangesNothing) {
    const fs::path wrapper = make(webRequest());
    const auto before = treeOf(home.path());
    EXPECT_THROW((void)editClone(wrapper,
                                 [](CloneSettings& s) {
                                     s.config.url = "x";
                                     throw Error("no");
                                 }),
                 Error);
    EXPECT_THROW((void)editClone(wrapper, [](CloneSettings& s) { s.config.url = "\xFF"; }), Error);
    EXPECT_THROW((void)editClone(wrapper, [](CloneSettings& s) { s.runner = "/no/such"; }), Error);
    EXPECT_TRUE(treeOf(home.path()) == before);
}

TEST_F(CloneChangeTest, AChosenIconSurvivesChangesOfItsLabel) {
    WrapperFactory::Request request = webRequest();
    request.customIcon = writePicture("chosen.png", 200, 0xFF30A030U);
    const fs::path wrapper = make(request);
    const std::string chosen = iconIn(wrapper);
    setLabel(wrapper, "A");
    const std::string labelled = iconIn(wrapper);
    EXPECT_NE(labelled, chosen);
    setLabel(wrapper, "B");
    EXPECT_NE(iconIn(wrapper), labelled);
    setLabel(wrapper, "A");
    EXPECT_EQ(iconIn(wrapper), labelled) << "drawn onto the picture, not onto the other label";
    setLabel(wrapper, "");
    EXPECT_EQ(iconIn(wrapper), chosen);
}

TEST_F(CloneChangeTest, ALabelIsDrawnOntoTheTargetsIcon) {
    const fs::path wrapper = make(appRequest());
    const std::string own = iconIn(wrapper);
    setLabel(wrapper, "A");
    EXPECT_NE(iconIn(wrapper), own);
    setLabel(wrapper, "");
    EXPECT_EQ(iconIn(wrapper), own);
}

TEST_F(CloneChangeTest, AnIconCanBeChosenAndGivenBack) {
    const fs::path wrapper = make(appRequest());
    const std::string own = iconIn(wrapper);
    const fs::path chosen = writePicture("chosen.png", 200, 0xFF30A030U);
    (void)editClone(wrapper, [&](CloneSettings& s) {
        s.icon = IconChoice::file;
        s.iconFile = chosen;
    });
    EXPECT_EQ(iconIn(wrapper), fileHash(chosen));
    EXPECT_EQ(WrapperNotes::read(wrapper)->icon, IconSource::chosen);
    (void)editClone(wrapper, [](CloneSettings& s) { s.icon = IconChoice::target; });
    EXPECT_EQ(iconIn(wrapper), own);
    EXPECT_EQ(WrapperNotes::read(wrapper)->icon, IconSource::target);
    EXPECT_THROW((void)editClone(wrapper,
                                 [](CloneSettings& s) {
                                     s.icon = IconChoice::file;
                                     s.iconFile = "/no/such";
                                 }),
                 Error);
}

TEST_F(CloneChangeTest, AnIconThatTheUserReplacedStaysAndIsNamed) {
    const fs::path wrapper = make(appRequest());
    testing::write(wrapper / "Contents/Resources/AppIcon.icns", "the user's own");
    for (const char* label : {"A", "B"}) {
        EXPECT_THAT(setLabel(wrapper, label).kept, ElementsAre("the icon"));
        EXPECT_EQ(read(wrapper / "Contents/Resources/AppIcon.icns"), "the user's own");
    }
}

TEST_F(CloneChangeTest, EntriesThatTheUserMadeInThePropertyListStayAndAreNamed) {
    const fs::path wrapper = make(webRequest());
    PropertyListDictionary list = *readPropertyList(wrapper / "Contents/Info.plist");
    list["UsersKey"] = "mine";
    list.erase("LSMinimumSystemVersion");
    testing::write(wrapper / "Contents/Info.plist", PropertyList::xml(list));
    for (const bool browser : {true, false}) {
        const ChangedClone changed =
            editClone(wrapper, [&](CloneSettings& s) { s.config.registerAsBrowser = browser; });
        EXPECT_THAT(changed.kept, ElementsAre("“UsersKey” in Info.plist",
                                              "“LSMinimumSystemVersion” in Info.plist"));
        const auto found = *readPropertyList(wrapper / "Contents/Info.plist");
        EXPECT_EQ(found.at("UsersKey"), PropertyListValue("mine"));
        EXPECT_FALSE(found.contains("LSMinimumSystemVersion"));
        EXPECT_EQ(found.contains("CFBundleURLTypes"), browser);
    }
}

TEST_F(CloneChangeTest, FilesThatTheUserPutIntoTheWrapperStay) {
    const fs::path wrapper = make(webRequest());
    testing::write(wrapper / "Contents/Resources/notes/a.txt", "mine");
    fs::create_symlink("a.txt", wrapper / "Contents/Resources/notes/link");
    ASSERT_EQ(::setxattr(wrapper.c_str(), "user.quorvel.test", "kept", 4, 0), 0);
    ASSERT_EQ(::chmod(wrapper.c_str(), 0700), 0);
    (void)editClone(wrapper, [](CloneSettings& s) { s.config.url = "https://new.test"; });
    EXPECT_EQ(read(wrapper / "Contents/Resources/notes/a.txt"), "mine");
    EXPECT_EQ(fs::read_symlink(wrapper / "Contents/Resources/notes/link"), "a.txt");
    char value[8]{};
    EXPECT_EQ(::getxattr(wrapper.c_str(), "user.quorvel.test", value, sizeof value), 4);
    EXPECT_EQ(fs::status(wrapper).permissions(), fs::perms{0700});
}

TEST_F(CloneChangeTest, NothingIsWrittenThroughALinkInTheWrapper) {
    const fs::path wrapper = make(webRequest());
    const auto edit = [](CloneSettings& s) {
        s.config.url = "https://new.test";
        s.hidesIcon = true;
    };
    for (const char* name : {"Resources/instance.json", "Resources/wrapper.json", "Info.plist",
                             "PkgInfo", "Resources", "MacOS", "Frameworks"}) {
        const fs::path item = wrapper / "Contents" / name;
        if (!fs::exists(item)) {
            fs::create_directory(item);
        }
        fs::rename(item, home / "linked");
        for (const fs::path& target :
             {home / "linked", fs::relative(home / "linked", item.parent_path())}) {
            fs::create_symlink(target, item);
            const auto before = treeOf(home.path());
            try {
                (void)editClone(wrapper, edit);
                ADD_FAILURE() << name;
            } catch (const Error& error) {
                EXPECT_THAT(error.what(), HasSubstr("symbolic link")) << name;
            }
            EXPECT_TRUE(treeOf(home.path()) == before) << name;
            fs::remove(item);
        }
        fs::rename(home / "linked", item);
    }
    fs::remove(wrapper / "Contents/PkgInfo");
    fs::create_symlink(home / "missing", wrapper / "Contents/PkgInfo");
    EXPECT_THROW((void)editClone(wrapper, edit), Error);
    EXPECT_FALSE(fs::exists(home / "missing"));
}

TEST_F(CloneChangeTest, AWrapperThatCouldNotBeRemovedIsNamedAsSuch) {
    const TemporaryFolder folder;
    EXPECT_TRUE(asUnprivilegedUser(folder.path(), [&] {
        const fs::path wrapper = makeWrapper(folder / "Work.app", minimalConfig());
        write(wrapper / "Contents/mine/file", "x");
        fs::permissions(wrapper / "Contents/mine", fs::perms{0500});
        try {
            (void)editClone(wrapper, [](CloneSettings& s) { s.config.url = "https://new.test"; });
        } catch (const Error& error) {
            fs::permissions(wrapper / "Contents/mine", fs::perms{0700});
            return std::string(error.what()).find("removed afterwards") != std::string::npos;
        }
        return false;
    }));
}

TEST_F(CloneChangeTest, AnEditWinsOverAnOlderChangeOfThePropertyList) {
    const fs::path wrapper = make(webRequest());
    PropertyListDictionary list = *readPropertyList(wrapper / "Contents/Info.plist");
    list["LSMinimumSystemVersion"] = "12.0";
    list["LSUIElement"] = false;
    list["UsersKey"] = "mine";
    list.erase("CFBundleVersion");
    testing::write(wrapper / "Contents/Info.plist", PropertyList::xml(list));
    const ChangedClone changed = editClone(wrapper, [](CloneSettings& s) {
        s.hidesIcon = true;
        s.config.infoPlistOverrides["LSMinimumSystemVersion"] = "a 14";
        s.config.infoPlistOverrides["CFBundleVersion"] = "b 2";
    });
    EXPECT_THAT(changed.kept, ElementsAre("“UsersKey” in Info.plist"));
    const auto found = *readPropertyList(wrapper / "Contents/Info.plist");
    EXPECT_EQ(found.at("LSUIElement"), PropertyListValue(true));
    EXPECT_EQ(found.at("LSMinimumSystemVersion"), PropertyListValue("a 14"));
    EXPECT_EQ(found.at("CFBundleVersion"), PropertyListValue("b 2"));
    EXPECT_EQ(found.at("UsersKey"), PropertyListValue("mine"));
}

TEST_F(CloneChangeTest, AWrapperWithoutNotesKeepsItsPictureItsHidingAndItsArguments) {
    WrapperFactory::Request request = appRequest();
    request.customIcon = writePicture("chosen.png", 200, 0xFF30A030U);
    request.hideWrapperIcon = true;
    request.iconLabel = IconLabel{"Old", "#ff0000", IconLabel::Position::top};
    const fs::path wrapper = make(request);
    forgetNotes(wrapper);
    const std::string icon = iconIn(wrapper);
    const ChangedClone changed =
        editClone(wrapper, [](CloneSettings& s) { s.config.environment["A"] = "1"; });
    EXPECT_THAT(changed.kept, IsEmpty());
    EXPECT_EQ(iconIn(wrapper), icon);
    EXPECT_TRUE(readPropertyList(wrapper / "Contents/Info.plist")->contains("LSUIElement"));
    EXPECT_EQ(WrapperNotes::read(wrapper)->arguments, ArgumentSource::typed);
    EXPECT_THAT(setLabel(wrapper, "New").kept, ElementsAre("the icon"))
        << "the old label can't be taken off the picture";
    EXPECT_EQ(iconIn(wrapper), icon);
}

TEST_F(CloneChangeTest, AWrapperWithoutNotesIsRecognizedByItsTargetsIcon) {
    WrapperFactory::Request request = appRequest();
    request.iconLabel = IconLabel{"Old", "#ff0000", IconLabel::Position::top};
    const fs::path wrapper = make(request);
    const std::string icon = iconIn(wrapper);
    forgetNotes(wrapper);
    EXPECT_THAT(setLabel(wrapper, "New").kept, IsEmpty());
    EXPECT_NE(iconIn(wrapper), icon);
    EXPECT_EQ(WrapperNotes::read(wrapper)->icon, IconSource::target);
}

TEST_F(CloneChangeTest, ARunningCloneIsChangedForItsNextStart) {
    const fs::path wrapper = make(webRequest());
    const auto edit = [](const char* url) {
        return [url](CloneSettings& s) { s.config.url = url; };
    };
    EXPECT_FALSE(editClone(wrapper, edit("https://a.test/1")).isRunning);
    const auto lock = lockHome(InstanceRegistry().record(wrapper)->config);
    EXPECT_TRUE(editClone(wrapper, edit("https://a.test/2")).isRunning);
}

TEST_F(CloneChangeTest, TheCloneBehindALinkIsChangedAndNotTheLink) {
    const fs::path wrapper = make(webRequest());
    fs::create_directory_symlink(wrapper, home / "link.app");
    (void)editClone(home / "link.app", [](CloneSettings& s) { s.config.url = "https://l.test"; });
    EXPECT_TRUE(fs::is_symlink(home / "link.app"));
    EXPECT_EQ(InstanceRegistry().record(wrapper)->config.url, "https://l.test");
}

TEST_F(CloneChangeTest, WhatIsNotACloneIsRefused) {
    testing::write(home / "Applications/Mine.app/file", "x");
    for (const char* name : {"Applications/Mine.app", "Applications/None.app"}) {
        EXPECT_THROW((void)editClone(home / name, [](CloneSettings&) {}), Error) << name;
    }
    EXPECT_EQ(read(home / "Applications/Mine.app/file"), "x");
}

TEST_F(CloneChangeTest, ManyProcessesThatMakeEditAndDeleteOneCloneLeaveItWholeOrNone) {
    constexpr int processes = 20;
    constexpr int rounds = 5;
    const WrapperFactory factory(runnerProgram());
    const SharedCounts made;
    const auto tryOne = [&](int kind) {
        const fs::path wrapper = home / "Applications/Work.app";
        try {
            if (kind == 0) {
                (void)createClone(factory, webRequest(), {.existingClone = true});
            } else if (kind == 1) {
                (void)editClone(wrapper, [](CloneSettings& s) {
                    s.config.environment["K"] += "x";
                    s.hidesIcon = !s.hidesIcon;
                });
            } else if (const auto record = InstanceRegistry().record(wrapper)) {
                InstanceRegistry().remove(*record, false);
            } else {
                return; // nothing to delete
            }
            ++made[kind];
        } catch (const Error&) {
            return; // another one was first
        }
    };
    std::vector<pid_t> children;
    for (int number = 0; number < processes; ++number) {
        children.push_back(::fork());
        if (children.back() == 0) {
            for (int round = 0; round < rounds; ++round) {
                tryOne((number + round) % 3);
            }
            std::_Exit(0);
        }
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_GT(made[0], 0) << "made";
    EXPECT_GT(made[1], 0) << "edited";
    EXPECT_GT(made[2], 0) << "deleted";
    const auto clones = InstanceRegistry().list();
    const auto items = directoryEntries(home / "Applications").value();
    EXPECT_EQ(items.size(), clones.size()) << "nothing half is left";
    for (const InstanceRecord& clone : clones) {
        EXPECT_TRUE(WrapperNotes::read(clone.bundleURL));
        const auto list = readPropertyList(clone.bundleURL / "Contents/Info.plist");
        ASSERT_TRUE(list);
        EXPECT_EQ(list->contains("LSUIElement"), WrapperNotes::read(clone.bundleURL)->hidesIcon);
        EXPECT_EQ(fileHash(clone.bundleURL / "Contents/MacOS/runner"), fileHash(runnerProgram()));
    }
}

TEST_F(CloneChangeTest, EditsAtTheSameTimeAreAllMade) {
    const fs::path wrapper = make(webRequest());
    std::vector<std::future<void>> edits;
    for (int number = 0; number < 8; ++number) {
        edits.push_back(std::async(std::launch::async, [&, number] {
            (void)editClone(wrapper, [&](CloneSettings& s) {
                s.config.environment["K" + std::to_string(number)] = "1";
            });
        }));
    }
    for (auto& edit : edits) {
        edit.get();
    }
    EXPECT_EQ(InstanceRegistry().record(wrapper)->config.environment.size(), 8U);
}

} // namespace
} // namespace quorvel
