// The store of documents alone, and the option for its directory.
#include "television/device/state_store.h"

#include <sys/stat.h>

#include <filesystem>

#include "core/error.h"
#include "simulator_fixture.h"

namespace hbbtv::test {
namespace {

using sim::Fatal;
using sim::Refused;
using sim::StateStore;

Json::Value Loaded(const StateStore& store, const std::string& name) {
    Json::Value found;
    store.Load(name, [&](const Json::Value& document) { found = document; });
    return found;
}

Json::Value Document(const std::string& text) {
    Json::Value document;
    document["text"] = text;
    return document;
}

TEST(StateStores, LoadWhatWasSavedLast) {
    const ScratchDirectory directory;
    {
        const StateStore store(directory / "state");
        EXPECT_TRUE(Loaded(store, "a").isNull());
        store.Save("a", Document("first"));
        store.Save("a", Document("second"));
        store.Save("b", Document("other"));
        EXPECT_EQ(Loaded(store, "a"), Document("second"));
    }
    const StateStore again(directory / "state");
    EXPECT_EQ(Loaded(again, "a"), Document("second"));
    EXPECT_EQ(Loaded(again, "b"), Document("other"));
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory / "state")) {
        EXPECT_TRUE(entry.path().filename() == "a.json" || entry.path().filename() == "b.json");
        ++files;
    }
    EXPECT_EQ(files, 2u);
}

TEST(StateStores, WithoutADirectoryForget) {
    const StateStore store("");
    store.Save("a", Document("x"));
    EXPECT_TRUE(Loaded(store, "a").isNull());
}

TEST(StateStores, SetAsideWhatItsReaderRefuses) {
    const ScratchDirectory directory;
    const StateStore store(directory.Path());
    for (const std::string aside : {"a.json.damaged-1", "a.json.damaged-2"}) {
        store.Save("a", Document(aside));
        store.Load("a", [](const Json::Value&) { throw Refused("no"); });
        EXPECT_TRUE(Loaded(store, "a").isNull());
        EXPECT_EQ(Parsed(ContentOf(directory / aside)), Document(aside));
    }
}

TEST(StateStores, ReplaceWhatAnUnfinishedSaveLeftBehind) {
    const ScratchDirectory directory;
    WriteFile(directory / "a.json.new", "half a docu");
    const StateStore store(directory.Path());
    EXPECT_TRUE(Loaded(store, "a").isNull());
    store.Save("a", Document("whole"));
    EXPECT_EQ(Loaded(store, "a"), Document("whole"));
    EXPECT_FALSE(std::filesystem::exists(directory / "a.json.new"));
}

TEST(StateStores, FollowNoLinkOutOfTheirDirectoryWhenTheySave) {
    const ScratchDirectory directory;
    WriteFile(directory / "precious", "mine");
    std::filesystem::create_directory(directory / "state");
    std::filesystem::create_symlink(directory / "precious", directory / "state/a.json.new");
    const StateStore store(directory / "state");
    EXPECT_THROW(store.Save("a", Document("x")), Refused);
    EXPECT_EQ(ContentOf(directory / "precious"), "mine");
}

TEST(StateStores, RefuseADocumentOfMoreThan64MebibytesAndKeepTheEarlierOne) {
    const ScratchDirectory directory;
    const StateStore store(directory.Path());
    store.Save("a", Document("small"));
    EXPECT_THROW(store.Save("a", Document(std::string(64u << 20, 'x'))), Refused);
    EXPECT_EQ(Loaded(store, "a"), Document("small"));
}

TEST(StateStores, HaveTheirDirectoryForThemselves) {
    const ScratchDirectory directory;
    {
        const StateStore store(directory.Path());
        EXPECT_THROW(StateStore(directory.Path()), Fatal);
    }
    EXPECT_NO_THROW(StateStore(directory.Path()));
}

class StateOption : public SimulatorFixture {
  protected:
    void ExpectRefused(const std::string& state, int exitCode, const std::string& sentence) {
        ExpectEnd({"--state", state}, exitCode, sentence);
        EXPECT_FALSE(std::filesystem::exists(RequestSocket()));
    }
};

TEST_F(StateOption, CreatesTheDirectoryAndPrintsItsPath) {
    const std::string state = mDirectory / "state";
    Start({"--state", state});
    EXPECT_TRUE(std::filesystem::is_directory(state));
    EXPECT_TRUE(std::filesystem::is_empty(state)) << "nothing was committed";
    EXPECT_NE(mSimulator->Output().find("state: " + state + "\n"), std::string::npos) << mSimulator->Output();
}

TEST_F(StateOption, ThatCannotBeUsedExitsWithCode5AndTheReason) {
    ExpectRefused(mDirectory / "no/such", 5, "/no/such cannot be used: No such file or directory");
    const std::string file = mDirectory / "file";
    WriteFile(file, "precious");
    ExpectRefused(file, 5, "/file cannot be used: Not a directory");
    EXPECT_EQ(std::filesystem::file_size(file), 8u);
    ExpectRefused("", 2, "the state directory is empty");
}

TEST_F(StateOption, WithADocumentThatIsNotAFileExitsWithCode5) {
    const std::string state = mDirectory / "state";
    std::filesystem::create_directories(state + "/favourites.json");
    ExpectRefused(state, 5, "favourites.json cannot be read: it is not a regular file");
    std::filesystem::remove(state + "/favourites.json");
    ASSERT_EQ(mkfifo((state + "/favourites.json").c_str(), 0600), 0);
    ExpectRefused(state, 5, "favourites.json cannot be read: it is not a regular file");
}

}  // namespace
}  // namespace hbbtv::test
